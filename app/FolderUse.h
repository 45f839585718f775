// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How a command takes a data folder: it locks it and finishes what an earlier command that was killed has
// begun there.
#include "app/DataFolder.h"
#include "app/RunDescription.h"

#include <optional>
#include <string>

/// Whether a run was ever started in a folder; looks only.
bool HoldsRun(const DataFolder& folder);

/// Locks a folder. The description is that of the run in it; nothing when there is none. False with one line.
bool TakeFolder(DataFolder* folder, std::optional<RunDescription>* description, std::string* error);

/// The same, and brings together what several hosts have left: for commands that look at the run.
bool TakeWholeRun(DataFolder* folder, std::optional<RunDescription>* description, std::string* error);

/// Locks a folder for a new run. What is damaged of the run before is kept under another name, which standard
/// error tells. False with one line.
bool TakeForNewRun(DataFolder* folder, std::optional<RunDescription>* description, std::string* error);
