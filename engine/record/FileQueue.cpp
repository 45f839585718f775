// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/FileQueue.h"
#include "engine/record/FileName.h"

#include <cstdlib>

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

int CompareEntries(const CTarnelData& data, std::uint32_t left, std::uint32_t right) {
    if (data.SortReverse) {
        std::swap(left, right);
    }
    const auto byName = [&] {
        return QString::compare(data.FileNames[left], data.FileNames[right], Qt::CaseInsensitive);
    };
    const auto byDirectory = [&] {
        return QString::compare(data.FileDirs[left], data.FileDirs[right], Qt::CaseInsensitive);
    };
    const auto byStatus = [&] {
        const std::uint32_t a = EntryStatus(data, left);
        const std::uint32_t b = EntryStatus(data, right);
        return a < b ? -1 : a > b ? 1 : 0;
    };
    const auto first = [](int a, auto second, auto third) {
        if (a == 0) {
            a = second();
        }
        return a == 0 ? third() : a;
    };
    switch (data.SortIdx) {
        case 0:
            return first(byName(), byDirectory, byStatus);
        case 1:
            return first(byName(), byStatus, byDirectory);
        case 2:
            return first(byDirectory(), byName, byStatus);
        case 3:
            return first(byDirectory(), byStatus, byName);
        case 4:
            return first(byStatus(), byName, byDirectory);
        case 5:
            return first(byStatus(), byDirectory, byName);
        default:
            return 0;
    }
}

void BuildFileOrder(CTarnelData& data) {
    const auto count = static_cast<std::uint32_t>(data.FileNames.size());
    const bool backwards = data.SortIdx == 6 && data.SortReverse;
    data.FileOrder.resize(count);
    for (std::uint32_t k = 0; k < count; ++k) {
        data.FileOrder[k] = backwards ? count - 1 - k : k;
    }
    if (data.SortIdx == 6 || count == 0) {
        return;
    }
    qsort_r(
        &data.FileOrder[0], count, sizeof(std::uint32_t),
        [](const void* left, const void* right, void* context) {
            return CompareEntries(*static_cast<const CTarnelData*>(context),
                                  *static_cast<const std::uint32_t*>(left),
                                  *static_cast<const std::uint32_t*>(right));
        },
        &data);
}
