// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Where the records may go. Their file is replaced whole, so a slip on the command line, such as --json in
// front of the drawings with its own file forgotten, must not cost a drawing, a script, a list or the state.
#include <string>
#include <vector>

/// False with one line when the file is a drawing by its name, one of these files under any name, or lies in
/// one of these folders, which need not exist.
bool CheckRecordSpares(const std::string& file, const std::vector<std::string>& files,
                       const std::vector<std::string>& folders, std::string* error);
