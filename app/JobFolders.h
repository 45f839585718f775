// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Where the hosts of a run with several of them work: each has a data folder of its own inside the run's,
// with its share of the queue. They stand only while the run goes on; what is in them afterwards goes into
// the state, run log, archive and trace of the data folder, in one change. When the run itself was killed the
// next command does that. The description of the run says how many there are: a folder that it does not name
// is somebody else's.
#include "app/DataFolder.h"
#include "app/RunDescription.h"
#include "app/Shares.h"

#include <string>
#include <vector>

struct CTarnelData;

/// What a host gets as XDG_DATA_HOME.
std::string JobHome(const DataFolder& folder, std::size_t number);
/// Where its state, log and archive are.
std::string JobData(const DataFolder& folder, std::size_t number);

/// Makes the folders of all shares with their states. The record is that of the whole queue and is left as it
/// was. False with one line.
bool MakeJobs(const DataFolder& folder, CTarnelData* record, const std::vector<JobShare>& shares,
              RunDescription* description, std::string* error);
/// Brings the results of all hosts into the data folder's own files and removes the folders. False with one
/// line; a later call goes on.
bool GatherJobs(const DataFolder& folder, RunDescription* description, std::string* error);
/// Removes so many folders with what is in them. False with one line.
bool DropJobs(const DataFolder& folder, std::size_t count, std::string* error);
