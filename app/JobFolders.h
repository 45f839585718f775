#pragma once
// The folders of the hosts that share a queue: "job-1", "job-2" … in the data folder, each with a whole data
// folder of its own inside. They live from the dealing out of the queue until the results are back in the
// data folder's own files. When the front is killed in between they stay, and the next run takes the results
// in first, so that all other code only ever sees one queue, one log and one archive.
#include "app/DataFolder.h"

#include <string>
#include <vector>

/// What the host of a share gets as XDG_DATA_HOME; numbers count from 1.
std::string JobHome(const DataFolder& folder, std::size_t number);
/// The data folder in it.
std::string JobData(const DataFolder& folder, std::size_t number);
/// What it gets as XDG_STATE_HOME.
std::string JobLogs(const DataFolder& folder, std::size_t number);

/// True when results wait in folders of shares.
bool HasJobs(const DataFolder& folder);
/// Brings the results of all shares into the data folder's own files and removes the folders. Of a drawing
/// that is no longer ToDo in the data folder the status stays. False with one line when something cannot be
/// read or written; the folders then stay, and a later call goes on.
bool GatherJobs(const DataFolder& folder, std::string* error);
/// Removes the folders with what is in them.
void DropJobs(const DataFolder& folder);
