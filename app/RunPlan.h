// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A run from what the user asks for to what stands on the disk: queue, script, limits and options become one
// record, and record, description and journal are put into the data folder in one change, before any host
// starts. Until then the folder holds the run before, whole.
#include "app/DataFolder.h"
#include "app/Options.h"
#include "app/RunDescription.h"
#include "app/RunJournal.h"
#include "engine/record/TarnelData.h"

#include <string>

struct RunPlan {
    CTarnelData Record;
    RunDescription Description;
    /// Of the run that this one goes on with.
    JournalContent Journal;
    /// What is no drawing, by its place in the queue: it ends as FailOpen without having been near a host.
    std::vector<std::optional<DrawingRecord>> Refused;
    /// What a host must find in the state.
    std::string Digest;
    /// The queue that is gone on with is that of the description, so its log is of this run.
    bool IsKnown = true;
    /// What is on the disk is not yet what stands here.
    bool Changed = true;
};

/// What messages call a script: its file, or where else it comes from.
std::string ScriptName(const RunOptions& options);

/// A new queue out of what the options name. Nothing is written and the folder is not looked at. The exit
/// status with one line when that does not go.
ExitStatus PlanNewRun(const RunOptions& options, RunPlan* plan, std::string* error);
/// Puts a new run into the folder, which is taken; description is what it holds of the run before.
bool CommitNewRun(const DataFolder& folder, const std::optional<RunDescription>& before, RunPlan* plan,
                  std::string* error);

/// The queue on disk, with what --resume and --retry set back and what the options change. Nothing is
/// written.
ExitStatus PlanToGoOn(const RunOptions& options, const DataFolder& folder,
                      const std::optional<RunDescription>& description, RunPlan* plan, std::string* error);
/// The drawings of the run that this one goes on with whose entries its log must hold.
std::vector<std::string> LoggedEarlier(const RunPlan& plan);
/// Writes what has changed.
bool CommitToGoOn(const RunOptions& options, const DataFolder& folder, RunPlan* plan, std::string* error);
