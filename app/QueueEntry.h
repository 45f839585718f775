// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The queue as the front looks at it: the module's record holds it in parallel arrays and in an order of its
// own, and here it is a list in the order of the run. An entry is known by its place in that list, since two
// entries may have the same path.
#include <string>
#include <vector>

struct CTarnelData;

/// The states of a drawing, with their numbers in the state file.
enum class DrawingStatus : unsigned { ToDo, Done, FailOpen, Timeout, Locked, Error, Canceled };

/// The word for a status, as users see it everywhere.
const char* StatusWord(DrawingStatus status);
/// The status of a word; false when it is none.
bool StatusFromWord(const std::string& word, DrawingStatus* status);

struct QueueEntry {
    std::string Path;
    DrawingStatus Status = DrawingStatus::ToDo;
};

using RunQueue = std::vector<QueueEntry>;

/// The queue of a record in the order of the run. A status that is none counts as Error.
RunQueue QueueOf(const CTarnelData& record);
/// Makes a queue the record's, in its order.
void SetQueue(CTarnelData* record, const RunQueue& queue);

std::size_t CountOf(const RunQueue& queue, DrawingStatus status);
/// The paths of a queue, in its order.
std::vector<std::string> PathsOf(const RunQueue& queue);
