#pragma once
// A JSON record for each drawing: what programs read at the end of a run. The data folder keeps one too,
// since how long a drawing took and what the host said of it stand nowhere else, and a later command may need
// it.
#include "app/DataFolder.h"
#include "app/RunLedger.h"

#include <string>
#include <vector>

/// Where the data folder keeps the records of its last run.
std::string RecordFile(const DataFolder& folder);

/// Writes an array with path, status, seconds (null when the drawing was not in work) and message, and host
/// where it died. False with one line when it cannot be written; an earlier file then stays.
bool WriteRecords(const std::vector<DrawingRecord>& records, const std::string& file, std::string* error);

/// Reads what WriteRecords wrote. False with one line when the file is not there or is something else.
bool ReadRecords(const std::string& file, std::vector<DrawingRecord>* records, std::string* error);

/// Whether a file can be written there, so that a long run does not end in a surprise.
bool CheckRecordTarget(const std::string& file, std::string* error);
