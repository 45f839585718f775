// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the user does to the queue before a run, as functions over the record's arrays. All three arrays of an
// entry change together. Each function costs a few passes over the queue, however many entries it is about;
// the order in which the entries are shown is built by whoever calls.
#include "engine/record/TarnelData.h"

#include <vector>

/// Appends, as ToDo, those of the paths that are not in the queue: what is there already keeps its place and
/// its status. Directories keep their separator at the end.
void AddToQueue(CTarnelData& data, const std::vector<QString>& paths);
/// Takes entries out. Each index names an entry, in any order.
void RemoveFromQueue(CTarnelData& data, const std::vector<std::uint32_t>& entries);
void SetStatusOfEntries(CTarnelData& data, const std::vector<std::uint32_t>& entries, std::uint32_t status);
std::vector<std::uint32_t> EntriesOfStatus(const CTarnelData& data, std::uint32_t status);

/// Makes the order shown into the order of the entries themselves. True when the queue was sorted, so that
/// the user should hear of the change.
bool FlattenOrder(CTarnelData& data);

/// Rows first to first + count - 1.
struct RowRange {
    int First = 0;
    int Count = 0;
};
/// Moves rows, given from top to bottom, behind the row that they were dropped on; they keep their order
/// among themselves and end up side by side. The queue is in its own order. Returns where they are now.
RowRange MoveRows(CTarnelData& data, const std::vector<int>& rows, int targetRow);
/// Moves each of the rows, given from top to bottom, one up (-1) or down (1), those that are at the end
/// already stay. Returns the rows as they are now.
std::vector<int> ShiftRows(CTarnelData& data, const std::vector<int>& rows, int direction);

/// Puts a folder at the front of the history of visited ones: an equal one goes, and there are at most ten.
void RememberFolder(CTarnelData& data, const QByteArray& folder);
