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
