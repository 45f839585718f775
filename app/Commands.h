// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The commands of the front, each from its options to its exit status.
#include "app/Options.h"

#include <string>
#include <vector>

/// `tarnel run`.
ExitStatus RunDrawings(const RunOptions& options);

/// `tarnel merge`: the results of runs over parts of a list, each in a data folder of its own, become one
/// state, one run log, one archive and one set of records, as if one run had done it all. Whatever would lose
/// or double a drawing is refused before anything is written.
ExitStatus MergeRuns(const MergeOptions& options);

/// `tarnel check`: what can be seen wrong in scripts without running them, a line each on standard output.
/// SomeNotDone when there is one, BrokenOff when a file cannot be read.
ExitStatus CheckScripts(const std::vector<std::string>& files);

/// `tarnel desk`: the host with its window, with the module loaded. It takes the place of this process, so
/// that the terminal, signals and the exit status are the window's own. Does not return when the window could
/// be started; else one line on standard error and the exit status.
int OpenDesk(const std::vector<std::string>& drawings);

/// `tarnel bundle`: packs what support needs of the last run in a data folder and prints where the archive
/// lies.
ExitStatus MakeBundle(const std::string& dataDir, const char* version);

/// `tarnel install`, what the desktop calls to open a file ".iscr", a script that somebody has sent: puts it
/// among the user's own, in the folder "Scripts" of the data folder, and prints where. One that is there
/// under the same name with another text is only replaced when that is asked for.
ExitStatus InstallScript(const std::string& file, const std::string& dataDir, bool replace);
