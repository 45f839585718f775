#pragma once
// Joins the run logs and the archives of several hosts into one of each, as if one host had done it all. The
// module empties its log when a run starts, so what a host that died has written is set aside before the next
// one starts; and the logs that the host kept of its drawings are packed here, since it cannot do that any
// more.

#include <string>
#include <vector>

/// Moves the run log and the archive in a data folder to names of their own, and packs the host's logs that
/// the run log links to. hostLogs is the folder in which the host keeps them; those of the drawings that were
/// finished are deleted once they are packed. False with one line when something cannot be moved or written.
bool SetLogsAside(const std::string& folder, const std::string& hostLogs, std::string* error);

/// Forgets what was set aside in a data folder.
void DropLogsAside(const std::string& folder);
bool HasLogsAside(const std::string& folder);

/// Writes one run log and one archive to the folder target out of those of the folders and what was set aside
/// in them; target may be one of them. Lines stand in the order of their times. What was set aside in target
/// is gone afterwards. False with one line, and everything left as it was, when that fails.
bool MergeLogs(const std::vector<std::string>& folders, const std::string& target, std::string* error);

/// Adds the trace in one data folder to that in another. False with one line.
bool AppendTrace(const std::string& from, const std::string& to, std::string* error);

/// Where the host keeps the logs of its drawings, given its XDG_STATE_HOME or, when that is empty, ours.
std::string HostLogFolder(const std::string& stateHome);
