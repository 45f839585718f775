// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Files ".iscr" are script packages. The program that unpacks them stands beside the module; here they are
// only made known to the host's registry. To the desktop they are made known by what is installed, never by a
// run: a file in the user's folders would stay when the program goes.

/// Writes the association where it is not there yet. With no right to write nothing happens.
void InstallScriptHandler();
