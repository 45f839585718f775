// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The record of a run as the front reads and writes it: with the module's own code, whole, and only while no
// host is at work on the file.
#include <string>

struct CTarnelData;

/// What a file must hold to count as a record.
enum class RecordForm {
    /// Options and queue, as every save of the module has them.
    State,
    /// A queue is enough, for lists that people or other programs made.
    List,
};

/// Reads a state file. False with one line naming the file and the cause when it cannot be read or holds no
/// state; the record is then not to be used.
bool ReadRecord(const std::string& file, CTarnelData* record, std::string* error,
                RecordForm form = RecordForm::State);
/// Writes a state file: at once over the old one, and on the disk when this comes back. False with one line;
/// the old file is then as it was.
bool WriteRecord(const std::string& file, CTarnelData& record, std::string* error);

/// What the host of a run is to find in its state, for the variable TARNEL_RUN. Empty with one line when the
/// file cannot be read.
std::string RunDigestOf(const std::string& file, std::string* error);
