// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// `tarnel merge` from its options to its exit status: the results of runs over parts of a list, each in a
// data folder of its own, become one state, one run log, one archive and one set of records, as if one run
// had done it all. Whatever would lose or double a drawing is refused before anything is written.
#include "app/ExitStatus.h"

#include <string>
#include <vector>

struct MergeOptions {
    /// Folders that hold "Ovrix", as given to the runs.
    std::vector<std::string> Folders;
    /// Where the result goes; empty is the user's folder.
    std::string DataDir;
    std::string JsonFile;
    /// Also take runs with drawings that still wait, or some of the shares: what waits stays ToDo.
    bool Unfinished = false;
    bool Quiet = false;
};

ExitStatus MergeRuns(const MergeOptions& options);
