// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The parts of a run's log. The module empties its log when a run starts, so what a host that died has
// written is set aside before the next one starts, and the logs of the drawings that this host can pack no
// more are packed with it. Each of these steps can be broken off anywhere and done again.
#include <string>
#include <vector>

/// Stands behind the name of a log of the host that lacks text, on the disk and in the archive.
inline constexpr const char* CutLog = ".cut";

/// A run log with the archive that belongs to it.
struct LogPart {
    std::string Log;
    std::string Archive;
};

/// What was set aside in a data folder, oldest first.
std::vector<LogPart> LogsAside(const std::string& folder);
/// That, and what stands there under the usual names.
std::vector<LogPart> LogParts(const std::string& folder);
LogPart LogNames(const std::string& folder);

/// Moves the run log and the archive in a data folder to names of their own, and packs the host's logs that
/// the run logs link to, which are deleted once they are packed. False with one line when something cannot be
/// moved or written.
bool SetLogsAside(const std::string& folder, std::string* error);

/// Sets what a folder holds aside, with a part that has an entry for each of these drawings, whose host died
/// before it came to the log; the log of such an entry says that. False with one line.
bool SetEntriesAside(const std::string& folder, const std::vector<std::string>& drawings, std::string* error);

/// Forgets what was set aside in a data folder.
void DropLogsAside(const std::string& folder);
bool HasLogsAside(const std::string& folder);

/// What the host of a data folder gets as XDG_STATE_HOME. Its logs are the data folder's, so that one that
/// can be written is all that a run needs, and nothing of it lies elsewhere.
std::string HostStateHome(const std::string& folder);
/// Where it then keeps the logs of its drawings.
std::string HostLogFolder(const std::string& folder);
/// Makes that folder. False with one line.
bool MakeHostLogFolder(const std::string& folder, std::string* error);
/// Removes it when nothing is in it.
void DropHostLogFolder(const std::string& folder);
