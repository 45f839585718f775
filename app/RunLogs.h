// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The logs of a run at its end: one run log with one archive, whatever became of the hosts that wrote them.
#include "app/LogFile.h"
#include "app/LogParts.h"
#include "app/MergedLogs.h"
#include "app/RunLedger.h"

#include <string>
#include <vector>

/// Sets a log aside that the module has not ended, or not with all of its host's logs in the archive, so that
/// it is joined with what was set aside before. False with one line.
bool SetUnfinishedAside(const std::string& folder, std::string* error);

/// The drawings that have no entry in a folder's log; one that stands in the list twice has two.
std::vector<std::string> MissingIn(const std::string& folder, const std::vector<std::string>& drawings);

/// Looks whether a log tells all of a run: it has its end, an entry for each of the drawings, each
/// entry's log is in the archive, and the last one of each drawing is not empty. False with one line that
/// says what is missing.
bool CheckLogs(const std::string& folder, const std::vector<std::string>& drawings, std::string* error);

/// The same for a run that earlier commands have worked off: each drawing that came to its end must be in the
/// log and the archive, unless its entry stood in an earlier log. Whether the log has an end is not asked.
bool CheckKeptLogs(const std::string& folder, const std::vector<DrawingRecord>& records, std::string* error);
