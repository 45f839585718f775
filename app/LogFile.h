// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Run logs and traces as files of the front: read whole, or an error that says why not, since what is read
// here replaces its sources and a log that cannot be read must not pass for an empty one.
#include "log/RunLogText.h"

#include <string>
#include <unordered_map>

/// False with one line.
bool ReadLog(const std::string& path, RunLogContent* log, std::string* error);
/// The logs in an archive, and whether there is anything in them.
using PackedLogNames = std::unordered_map<std::string, bool>;
/// No archive is an empty one. False with one line.
bool ReadPackedNames(const std::string& file, PackedLogNames* names, std::string* error);

/// Writes beside the file and puts that in its place. False with one line, and the old file left.
bool WriteLog(const std::string& path, const QByteArray& bytes, std::string* error);

/// Joins the traces in data folders into one in the folder `to`. The trace is a comfort: when it cannot be
/// written, that is told on standard error in one line, and there is none.
void JoinTraces(const std::vector<std::string>& folders, const std::string& to);
