// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/DrawOrder.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Objects.h"

namespace drafthost {

namespace {

constexpr const char* Part = "AcDbSortentsTable";

/// The table of the block, made when it is missing.
RecordId provideTable(Drawing& drawing, RecordId blockRecord) {
    RecordId dictionary = extensionDictionary(drawing, blockRecord);
    if (dictionary == NoRecord) {
        dictionary = makeExtensionDictionary(drawing, blockRecord);
    }
    if (dictionary == NoRecord) {
        return NoRecord;
    }
    const RecordId there = findInDictionary(drawing, dictionary, "ACAD_SORTENTS");
    if (there != NoRecord) {
        return there;
    }
    const RecordId made = addObject(drawing, "SORTENTSTABLE", Part, dictionary);
    if (made != NoRecord) {
        drawing.appendTag(made, 330, formatHandle(drawing.handle(blockRecord)));
        addDictionaryEntry(drawing, dictionary, "ACAD_SORTENTS", made);
    }
    return made;
}

}  // namespace

std::vector<RecordId> readDrawOrder(const Drawing& drawing, RecordId table) {
    const Record r = drawing.record(table);
    std::unordered_map<std::uint64_t, std::uint64_t> sortHandles;
    std::uint64_t owner = 0;
    for (std::size_t i = r.subclass(Part); i < r.size(); ++i) {
        if (r.code(i) == 330) {
            owner = r.handle(i);
        } else if (r.code(i) == 331 && i + 1 < r.size() && r.code(i + 1) == 5) {
            sortHandles[r.handle(i)] = r.handle(i + 1);
        }
    }
    const RecordId blockRecord = drawing.findHandle(owner);
    std::vector<RecordId> all;
    for (const Block& block : blocks(drawing)) {
        if (blockRecord != NoRecord && block.blockRecord == blockRecord) {
            all = entitiesOf(drawing, block);
        }
    }
    const auto place = [&](RecordId id) {
        const auto given = sortHandles.find(drawing.handle(id));
        return given == sortHandles.end() ? drawing.handle(id) : given->second;
    };
    std::stable_sort(all.begin(), all.end(), [&](RecordId a, RecordId b) { return place(a) < place(b); });
    return all;
}

void writeDrawOrder(Drawing& drawing, RecordId table, const std::vector<RecordId>& order) {
    std::vector<std::uint64_t> handles;
    handles.reserve(order.size());
    for (const RecordId id : order) {
        handles.push_back(drawing.handle(id));
    }
    std::vector<std::uint64_t> places = handles;
    std::sort(places.begin(), places.end());
    for (std::size_t i = drawing.record(table).size(); i-- > 1;) {
        const int code = drawing.record(table).code(i);
        const bool own = code == 5 && i < drawing.record(table).find(100).value_or(0);
        if (code == 331 || (code == 5 && !own)) {
            drawing.removeTag(table, i);
        }
    }
    for (std::size_t i = 0; i < handles.size(); ++i) {
        drawing.appendTag(table, 331, formatHandle(handles[i]));
        drawing.appendTag(table, 5, formatHandle(places[i]));
    }
}

void reorder(std::vector<RecordId>& order, const std::vector<RecordId>& moved, RecordId target, bool above) {
    const std::unordered_set<RecordId> among(moved.begin(), moved.end());
    const auto isMoved = [&](RecordId id) { return among.contains(id); };
    std::vector<RecordId> taken;
    std::copy_if(order.begin(), order.end(), std::back_inserter(taken), isMoved);
    std::erase_if(order, isMoved);
    auto place = above ? order.end() : order.begin();
    if (target != NoRecord) {
        place = std::find(order.begin(), order.end(), target);
        if (place != order.end() && above) {
            ++place;
        }
    }
    order.insert(place, taken.begin(), taken.end());
}

bool changeDrawOrder(Drawing& drawing, const std::vector<RecordId>& moved, OrderPlace place,
                     const std::vector<RecordId>& references) {
    if (drawing.versionNumber() < 1015 || moved.empty()) {
        return false;
    }
    const Block* block = findBlock(drawing, targetOf(drawing, moved.front()).block);
    const RecordId table = block == nullptr || block->blockRecord == NoRecord
                               ? NoRecord
                               : provideTable(drawing, block->blockRecord);
    if (table == NoRecord) {
        return false;
    }
    std::vector<RecordId> order = readDrawOrder(drawing, table);
    const bool above = place == OrderPlace::Front || place == OrderPlace::Above;
    RecordId target = NoRecord;
    // Above all of the references is above the last of them, under all is under the first.
    for (const RecordId id : order) {
        const bool isReference = std::find(references.begin(), references.end(), id) != references.end() &&
                                 std::find(moved.begin(), moved.end(), id) == moved.end();
        if (isReference && (above || target == NoRecord)) {
            target = id;
        }
    }
    reorder(order, moved, target, above);
    writeDrawOrder(drawing, table, order);
    return true;
}

}  // namespace drafthost
