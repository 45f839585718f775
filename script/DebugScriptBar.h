// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The docking window of the step-through. There is at most one; while it stands the current drawing stays
// too, and the host asks on its command line instead of in dialogs.

/// The command TNL_DEBUG: opens the window, or shows it again. Nothing in a host without a frame.
void DebugScriptCommand();
enum class AfterDebugScript { MainDialog, Nothing };
/// Closes the window, if there is one, and gives the main dialog back by typing its command. Nothing is typed
/// where the dialog comes anyway, or cannot come.
void KillDebugScript(AfterDebugScript after = AfterDebugScript::MainDialog);
bool IsDebugScriptVisible();
