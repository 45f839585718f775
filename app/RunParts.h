// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The hosts of a run: one over the data folder itself, or several over shares of the queue. Both give the
// same things: monitors, each with a ledger, whose records together are those of the queue.
#include "app/Options.h"
#include "app/RunMonitor.h"
#include "app/RunPlan.h"
#include "app/Shares.h"

#include <memory>
#include <vector>

struct RunParts {
    std::vector<std::unique_ptr<RunLedger>> Ledgers;
    std::vector<MonitorSettings> Settings;
    /// Where the drawings of each ledger stand in the whole queue.
    std::vector<JobShare> Places;
};

/// What does the run with one host. Empty with one line when something cannot be written.
RunParts OneHost(const RunOptions& options, const DataFolder& folder, const RunPlan& plan,
                 RunJournal* journal, MonitorSettings common, std::string* error);

/// The same with several hosts, each with its share.
RunParts SeveralHosts(const RunOptions& options, const DataFolder& folder, RunPlan* plan, RunJournal* journal,
                      const MonitorSettings& common, std::string* error);
