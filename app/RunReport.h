// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What stands at the end of a run for people: a table by status, and how to go on.
#include "app/Options.h"
#include "app/RunLedger.h"

#include <optional>
#include <string>
#include <vector>

/// Prints the counts, the drawings that are not Done with the host's last message, and the commands that go
/// on with them. Quiet prints nothing when all are Done.
void PrintReport(const std::vector<DrawingRecord>& records, const RunOptions& options,
                 std::optional<double> seconds);

/// The command line that goes on with a run: "tarnel run --resume --data-dir …".
std::string FollowUpCommand(const RunOptions& options, const std::string& what);
