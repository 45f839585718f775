// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a script may not do to the run that it is part of. A host that a program has started for one run does
// that run as it was described, to its end: a script that changed it would change what becomes of drawings
// that still wait. Each function is true, with one line for the user, when the call is to fail. In every
// other host nothing is refused.

/// A run would begin or be left while one goes on.
bool RefusesCommand();
/// The call would set something, during the run.
bool RefusesSetting();
/// A script cancels the run; whoever has started the host may.
bool RefusesCancel();
