// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/FileQueue.h"
#include "engine/record/FileName.h"

#include <algorithm>
#include <compare>
#include <numeric>
#include <vector>

QString EntryPath(const CTarnelData& data, std::size_t index) {
    return JoinPath(data.FileDirs[index], data.FileNames[index]);
}

void AppendEntry(CTarnelData& data, const QString& path) {
    const CFileName name(path);
    const QString directory = TrimSeparators(name.GetDirectory());
    // Trimming must not make a drawing in the root folder one of the current folder.
    data.FileDirs.push_back(
        directory.isEmpty() && !name.GetDirectory().isEmpty() ? name.GetDirectory().left(1) : directory);
    data.FileNames.push_back(name.GetNameExt());
    SetEntryStatus(data, data.FileNames.size() - 1, ToDo);
    data.FileOrder.push_back(static_cast<std::uint32_t>(data.FileNames.size() - 1));
}

namespace {

/// An entry as it is sorted: texts without regard to case, made once. Directories are told apart by their
/// rank among all of them, since many entries share one.
struct SortKey {
    QString Name;
    std::uint32_t DirectoryRank = 0;
    std::uint32_t Status = 0;
    std::uint32_t Entry = 0;
};

std::vector<std::uint32_t> directoryRanks(const CTarnelData& data) {
    std::vector<QString> names;
    std::vector<std::uint32_t> numbers(data.FileDirs.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        // Neighbours mostly lie in one directory.
        if (i == 0 || data.FileDirs[i] != data.FileDirs[i - 1]) {
            names.push_back(data.FileDirs[i].toCaseFolded());
        }
        numbers[i] = static_cast<std::uint32_t>(names.size() - 1);
    }
    std::vector<std::uint32_t> byName(names.size());
    std::iota(byName.begin(), byName.end(), 0U);
    std::sort(byName.begin(), byName.end(), [&](auto a, auto b) { return names[a] < names[b]; });
    std::vector<std::uint32_t> ranks(names.size());
    std::uint32_t rank = 0;
    for (std::size_t i = 0; i < byName.size(); ++i) {
        rank += i > 0 && names[byName[i]] != names[byName[i - 1]] ? 1 : 0;
        ranks[byName[i]] = rank;
    }
    for (std::uint32_t& number : numbers) {
        number = ranks[number];
    }
    return numbers;
}

std::vector<SortKey> sortKeys(const CTarnelData& data) {
    const std::vector<std::uint32_t> directories = directoryRanks(data);
    std::vector<SortKey> keys(data.FileNames.size());
    for (std::uint32_t entry = 0; entry < keys.size(); ++entry) {
        keys[entry] = {data.FileNames[entry].toCaseFolded(), directories[entry], EntryStatus(data, entry),
                       entry};
    }
    return keys;
}

/// Sorts by three results in turn. Entries that are equal in all of them keep their places, in both
/// directions.
template <class First, class Second, class Third>
void sortBy(std::vector<SortKey>& keys, bool backwards, First first, Second second, Third third) {
    const auto before = [&](const SortKey& a, const SortKey& b) {
        const SortKey& left = backwards ? b : a;
        const SortKey& right = backwards ? a : b;
        if (const auto order = first(left, right); order != 0) {
            return order < 0;
        }
        if (const auto order = second(left, right); order != 0) {
            return order < 0;
        }
        const auto order = third(left, right);
        return order != 0 ? order < 0 : a.Entry < b.Entry;
    };
    // Looking costs little beside sorting, and a queue that is shown again is mostly in order.
    if (!std::is_sorted(keys.begin(), keys.end(), before)) {
        std::sort(keys.begin(), keys.end(), before);
    }
}

}  // namespace

void BuildFileOrder(CTarnelData& data) {
    const auto count = static_cast<std::uint32_t>(data.FileNames.size());
    const bool backwards = data.SortReverse != 0;
    data.FileOrder.resize(count);
    if (data.SortIdx < 0 || data.SortIdx >= 6) {
        for (std::uint32_t k = 0; k < count; ++k) {
            data.FileOrder[k] = backwards && data.SortIdx == 6 ? count - 1 - k : k;
        }
        return;
    }
    std::vector<SortKey> keys = sortKeys(data);
    const auto name = [](const SortKey& a, const SortKey& b) { return a.Name.compare(b.Name); };
    const auto directory = [](const SortKey& a, const SortKey& b) {
        return a.DirectoryRank <=> b.DirectoryRank;
    };
    const auto status = [](const SortKey& a, const SortKey& b) { return a.Status <=> b.Status; };
    switch (data.SortIdx) {
        case 0:
            sortBy(keys, backwards, name, directory, status);
            break;
        case 1:
            sortBy(keys, backwards, name, status, directory);
            break;
        case 2:
            sortBy(keys, backwards, directory, name, status);
            break;
        case 3:
            sortBy(keys, backwards, directory, status, name);
            break;
        case 4:
            sortBy(keys, backwards, status, name, directory);
            break;
        default:
            sortBy(keys, backwards, status, directory, name);
    }
    for (std::uint32_t k = 0; k < count; ++k) {
        data.FileOrder[k] = keys[k].Entry;
    }
}
