// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The help of the module: pages beside it, copied to the user's data folder and opened in the desktop's
// browser. Nothing is shown, and nothing said, when they are not there.

/// Shows the help.
void ShowHelp();
