// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The queue of the record: its entries, their statuses and the order in which they are processed.
#include "engine/record/TarnelData.h"

/// Full path of entry i: directory, separator unless it ends in one, name.
QString EntryPath(const CTarnelData& data, std::size_t index);
/// Status of entry i. One of an old group may have none, when the group names a status that never was: it
/// counts as Error, so that it is neither worked on nor taken for done.
inline std::uint32_t EntryStatus(const CTarnelData& data, std::size_t index) {
    return index < data.FileStatus.size() ? data.FileStatus[index] : static_cast<std::uint32_t>(Error);
}
/// Gives entry i a status, and those in front of it that have none what EntryStatus says.
inline void SetEntryStatus(CTarnelData& data, std::size_t index, std::uint32_t status) {
    while (data.FileStatus.size() <= index) {
        data.FileStatus.push_back(Error);
    }
    data.FileStatus[index] = status;
}

/// Fills FileOrder by SortIdx and SortReverse. The start of a run and the file list call it.
void BuildFileOrder(CTarnelData& data);
/// Compares two entries by SortIdx (0 to 5), names and directories without regard to case.
int CompareEntries(const CTarnelData& data, std::uint32_t left, std::uint32_t right);
/// Appends a path to the queue as ToDo, and its index to FileOrder.
void AppendEntry(CTarnelData& data, const QString& path);
