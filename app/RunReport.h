#pragma once
// What stands at the end of a run: a table by status for people, and a JSON record per drawing for programs.
#include "app/RunLedger.h"
#include "app/RunOptions.h"

#include <string>
#include <vector>

/// Prints the counts, the drawings that are not Done with the host's last message, and the commands that go
/// on with them. Quiet prints nothing when all are Done.
void PrintReport(const std::vector<DrawingRecord>& records, const RunOptions& options, double seconds);

/// Writes an array with path, status, seconds (null when the drawing was not in work) and message, and host
/// where it died. False with one line when it cannot be written; an earlier file then stays.
bool WriteJson(const std::vector<DrawingRecord>& records, const std::string& file, std::string* error);

/// Whether a JSON file can be written there, so that a long run does not end in a surprise.
bool CheckJsonTarget(const std::string& file, std::string* error);

/// The command line that goes on with a run: "tarnel run --resume --data-dir …".
std::string FollowUpCommand(const RunOptions& options, const std::string& what);
