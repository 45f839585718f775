// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/QueueEntry.h"

#include "engine/record/FileName.h"
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<const char*, 7> Words = {"ToDo",   "Done",  "FailOpen", "Timeout",
                                              "Locked", "Error", "Canceled"};
static_assert(static_cast<unsigned>(DrawingStatus::Done) == FileStatusValue::Done &&
              static_cast<unsigned>(DrawingStatus::Error) == FileStatusValue::Error &&
              static_cast<unsigned>(DrawingStatus::Canceled) == FileStatusValue::Canceled);

}  // namespace

const char* StatusWord(DrawingStatus status) {
    return Words[static_cast<std::size_t>(status)];
}

bool StatusFromWord(const std::string& word, DrawingStatus* status) {
    const auto found = std::find(Words.begin(), Words.end(), word);
    if (found == Words.end()) {
        return false;
    }
    *status = static_cast<DrawingStatus>(found - Words.begin());
    return true;
}

RunQueue QueueOf(const CTarnelData& record) {
    RunQueue queue;
    queue.reserve(record.FileOrder.size());
    for (const std::uint32_t entry : record.FileOrder) {
        const std::uint32_t status = EntryStatus(record, entry);
        queue.push_back({EntryPath(record, entry).toStdString(),
                         status < Words.size() ? DrawingStatus(status) : DrawingStatus::Error});
    }
    return queue;
}

void SetQueue(CTarnelData* record, const RunQueue& queue) {
    record->FileNames.clear();
    record->FileDirs.clear();
    record->FileStatus.clear();
    record->FileOrder.clear();
    record->SortIdx = 6;
    record->SortReverse = 0;
    for (const QueueEntry& entry : queue) {
        // Split as the reader of the state file does it, so that the two put together are the path again.
        const QString path = QString::fromStdString(entry.Path);
        const qsizetype name = NameOffset(path);
        record->FileOrder.push_back(static_cast<std::uint32_t>(record->FileNames.size()));
        record->FileDirs.push_back(path.first(name));
        record->FileNames.push_back(path.sliced(name));
        record->FileStatus.push_back(static_cast<std::uint32_t>(entry.Status));
    }
}

std::size_t CountOf(const RunQueue& queue, DrawingStatus status) {
    return static_cast<std::size_t>(std::count_if(
        queue.begin(), queue.end(), [status](const QueueEntry& entry) { return entry.Status == status; }));
}

std::vector<std::string> PathsOf(const RunQueue& queue) {
    std::vector<std::string> paths;
    paths.reserve(queue.size());
    for (const QueueEntry& entry : queue) {
        paths.push_back(entry.Path);
    }
    return paths;
}
