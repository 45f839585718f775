// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// `tarnel install`: what the desktop calls to open a file ".iscr", a script that somebody has sent.
#include "app/ExitStatus.h"

#include <string>

/// Puts a script among the user's own, in the folder "Scripts" of the data folder, and prints where. One that
/// is there under the same name with another text is only replaced when that is asked for.
ExitStatus InstallScript(const std::string& file, const std::string& dataDir, bool replace);
