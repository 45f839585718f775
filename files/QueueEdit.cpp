// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/QueueEdit.h"
#include "engine/record/FileQueue.h"

#include "engine/record/FileName.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr std::size_t LongestHistory = 10;

/// A directory as it counts when paths are compared: some stand with a separator at their end, some without.
QStringView withoutSeparator(QStringView directory) {
    if (directory.size() > 1 &&
        (directory.back() == u'/' || (directory.back() == u'\\' && IsWindowsPath(directory)))) {
        directory.chop(1);
    }
    return directory;
}

/// The paths of the queue as a set of entry numbers, which holds no text of its own.
class PathSet {
  public:
    PathSet(const CTarnelData& data, std::size_t more) : data(data) {
        std::size_t size = 16;
        while (size < 2 * (data.FileNames.size() + more)) {
            size *= 2;
        }
        table.assign(size, Empty);
        for (std::size_t entry = 0; entry < data.FileNames.size(); ++entry) {
            Insert(data.FileDirs[entry], data.FileNames[entry], static_cast<std::uint32_t>(entry));
        }
    }
    /// False when an entry of that path is there already.
    bool Insert(QStringView directory, QStringView name, std::uint32_t entry) {
        directory = withoutSeparator(directory);
        // Neighbours mostly lie in one folder.
        if (directory != lastDirectory) {
            lastDirectory = directory;
            directoryHash = qHash(directory);
        }
        const std::size_t mask = table.size() - 1;
        std::size_t at = (qHash(name) ^ (directoryHash * 0x9E3779B97F4A7C15U)) & mask;
        for (; table[at] != Empty; at = (at + 1) & mask) {
            if (data.FileNames[table[at]] == name &&
                withoutSeparator(data.FileDirs[table[at]]) == directory) {
                return false;
            }
        }
        table[at] = entry;
        return true;
    }

  private:
    static constexpr std::uint32_t Empty = ~0U;
    const CTarnelData& data;
    std::vector<std::uint32_t> table;
    QStringView lastDirectory;
    std::size_t directoryHash = qHash(QStringView());
};

/// Puts the entries into another order; position k gets the entry that order names.
void rearrange(CTarnelData& data, const std::vector<std::uint32_t>& order) {
    CheckedArray<QString> names, directories;
    CheckedArray<std::uint32_t> statuses;
    names.reserve(order.size());
    directories.reserve(order.size());
    statuses.reserve(order.size());
    for (const std::uint32_t entry : order) {
        names.push_back(std::move(data.FileNames[entry]));
        directories.push_back(std::move(data.FileDirs[entry]));
        statuses.push_back(EntryStatus(data, entry));
    }
    data.FileNames = std::move(names);
    data.FileDirs = std::move(directories);
    data.FileStatus = std::move(statuses);
}

}  // namespace

void AddToQueue(CTarnelData& data, const std::vector<QString>& paths) {
    // The set looks into the arrays, and the texts that it remembers must not move.
    data.FileNames.reserve(data.FileNames.size() + paths.size());
    data.FileDirs.reserve(data.FileDirs.size() + paths.size());
    PathSet known(data, paths.size());
    QString shared;
    for (const QString& path : paths) {
        const qsizetype nameStart = NameOffset(path);
        const QStringView directory = QStringView(path).first(nameStart);
        const QStringView name = QStringView(path).sliced(nameStart);
        const auto entry = static_cast<std::uint32_t>(data.FileNames.size());
        if (!known.Insert(directory, name, entry)) {
            continue;
        }
        if (shared != directory) {
            shared = directory.toString();
        }
        data.FileDirs.push_back(shared);
        data.FileNames.push_back(name.toString());
        SetEntryStatus(data, entry, ToDo);
    }
}

void RemoveFromQueue(CTarnelData& data, const std::vector<std::uint32_t>& entries) {
    std::vector<bool> goes(data.FileNames.size());
    for (const std::uint32_t entry : entries) {
        goes.at(entry) = true;
    }
    std::vector<std::uint32_t> stays;
    for (std::uint32_t entry = 0; entry < goes.size(); ++entry) {
        if (!goes[entry]) {
            stays.push_back(entry);
        }
    }
    rearrange(data, stays);
}

void SetStatusOfEntries(CTarnelData& data, const std::vector<std::uint32_t>& entries, std::uint32_t status) {
    for (const std::uint32_t entry : entries) {
        SetEntryStatus(data, entry, status);
    }
}

std::vector<std::uint32_t> EntriesOfStatus(const CTarnelData& data, std::uint32_t status) {
    std::vector<std::uint32_t> entries;
    for (std::uint32_t entry = 0; entry < data.FileNames.size(); ++entry) {
        if (EntryStatus(data, entry) == status) {
            entries.push_back(entry);
        }
    }
    return entries;
}

bool FlattenOrder(CTarnelData& data) {
    if (data.SortIdx == 6 && data.SortReverse == 0) {
        return false;
    }
    const bool wasSorted = data.SortIdx != 6;
    rearrange(data, {data.FileOrder.begin(), data.FileOrder.end()});
    data.SortIdx = 6;
    data.SortReverse = 0;
    return wasSorted;
}

RowRange MoveRows(CTarnelData& data, const std::vector<int>& rows, int targetRow) {
    const auto count = static_cast<int>(data.FileNames.size());
    std::vector<bool> moves(data.FileNames.size());
    for (const int row : rows) {
        moves.at(static_cast<std::size_t>(row)) = true;
    }
    std::vector<std::uint32_t> order;
    RowRange moved;
    for (int row = 0; row < count; ++row) {
        if (!moves[static_cast<std::size_t>(row)]) {
            order.push_back(static_cast<std::uint32_t>(row));
        }
        if (row == targetRow) {
            moved = {static_cast<int>(order.size()), static_cast<int>(rows.size())};
            order.insert(order.end(), rows.begin(), rows.end());
        }
    }
    rearrange(data, order);
    return moved;
}

std::vector<int> ShiftRows(CTarnelData& data, const std::vector<int>& rows, int direction) {
    const auto count = static_cast<int>(data.FileNames.size());
    std::vector<std::uint32_t> order(data.FileNames.size());
    std::iota(order.begin(), order.end(), 0U);
    std::vector<int> now = rows;
    if (direction > 0) {
        std::reverse(now.begin(), now.end());
    }
    int limit = direction > 0 ? count - 1 : 0;
    for (int& row : now) {
        if (row == limit) {
            limit -= direction;
            continue;
        }
        std::swap(order[static_cast<std::size_t>(row)], order[static_cast<std::size_t>(row + direction)]);
        row += direction;
    }
    rearrange(data, order);
    std::sort(now.begin(), now.end());
    return now;
}

void RememberFolder(CTarnelData& data, const QByteArray& folder) {
    std::deque<QByteArray>& history = data.PreviousDirectories;
    // The argument may be one of the history's own.
    const QByteArray front = folder;
    history.erase(std::remove(history.begin(), history.end(), front), history.end());
    history.push_front(front);
    if (history.size() > LongestHistory) {
        history.resize(LongestHistory);
    }
}
