// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// LISP functions that set a run up. All but the chain switch act on what the state file says and write it
// back, so they work before any dialog was open.

void DoSetRecoverMode();
void DoProcessReadOnly();
void DoDisableScriptChain();
void DoSetScript();
void DoSetMask();
/// With a list of paths it takes them for the queue and starts a run; else it is the command.
void DoBatchLisp();
