// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/FileInWork.h"

#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"

#include <algorithm>
#include <iterator>

FileInWork::FileInWork(const CTarnelData& data) {
    const auto position = static_cast<std::size_t>(data.CurrentFile);
    if (data.CurrentFile < 0 || position >= data.FileOrder.size()) {
        return;
    }
    entry = data.FileOrder[position];
    path = EntryPath(data, entry);
    known = true;
}

void FileInWork::FindAgain(CTarnelData& data) const {
    if (!known) {
        return;
    }
    // The same path may stand in the queue twice, so the entry at the old index comes first.
    const auto isHere = [&](std::uint32_t index) {
        return index < data.FileNames.size() && EntryPath(data, index) == path;
    };
    auto found = data.FileOrder.end();
    if (isHere(entry)) {
        found = std::find(data.FileOrder.begin(), data.FileOrder.end(), entry);
    } else {
        found = std::find_if(data.FileOrder.begin(), data.FileOrder.end(), isHere);
    }
    data.CurrentFile =
        found == data.FileOrder.end() ? -1 : static_cast<int>(std::distance(data.FileOrder.begin(), found));
}
