// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A JSON record for each drawing: what programs read at the end of a run.
#include "app/RunLedger.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

nlohmann::ordered_json RecordToJson(const DrawingRecord& record);
/// False when it is no record. One without a path has an empty one.
bool RecordFromJson(const nlohmann::ordered_json& one, DrawingRecord* record);

/// Writes an array with path, status, seconds (null when the drawing was not in work) and message, and host
/// where it died. False with one line when it cannot be written; an earlier file then stays.
bool WriteRecords(const std::vector<DrawingRecord>& records, const std::string& file, std::string* error);

/// Whether a file can be written there, so that a long run does not end in a surprise.
bool CheckRecordTarget(const std::string& file, std::string* error);

/// Where the records may go. Their file is replaced whole, so a slip on the command line, such as --json in
/// front of the drawings with its own file forgotten, must not cost a drawing, a script, a list or the state.
/// False with one line when the file is a drawing by its name, one of these files under any name, or lies in
/// one of these folders, which need not exist.
bool CheckRecordSpares(const std::string& file, const std::vector<std::string>& files,
                       const std::vector<std::string>& folders, std::string* error);
