// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Joins the run logs and the archives of several hosts into one of each, as if one host had done it all.
#include <string>
#include <vector>

/// Writes one run log and one archive to the folder target out of those of the folders and what was set aside
/// in them; target may be one of them. Lines stand in the order of their times. drawings is the queue: a path
/// has as many entries as it stands there, its last ones, since a drawing whose host was killed is begun
/// twice. The folders stay as they are. False with one line when that fails; it can be done again.
bool MergeLogs(const std::vector<std::string>& folders, const std::string& target,
               const std::vector<std::string>& drawings, std::string* error);
