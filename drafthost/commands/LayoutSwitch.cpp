// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/LayoutSwitch.h"

#include <vector>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"

namespace drafthost::commands {

namespace {

const Layout* activePaperLayout(const Drawing& drawing) {
    for (const Layout& layout : layouts(drawing)) {
        if (isActivePaper(layout)) {
            return &layout;
        }
    }
    return nullptr;
}

/// A copy of a record's tags behind another record; the original goes.
RecordId moveRecord(Drawing& drawing, RecordId record, RecordId behind) {
    std::vector<std::pair<int, Value>> tags;
    {
        Record source = drawing.record(record);
        for (size_t i = 1; i < source.size(); ++i) {
            tags.emplace_back(source.code(i), source.value(i));
        }
    }
    std::string type(drawing.type(record));
    drawing.deleteRecord(record);
    RecordId copy = drawing.insertRecord(behind, type);
    drawing.setPlaceNow(record, copy);
    for (const auto& [code, value] : tags) {
        drawing.appendTag(copy, code, value);
    }
    return copy;
}

/// The records of the active paper space in the ENTITIES section, with their sub-entities.
std::vector<RecordId> activePaperRecords(const Drawing& drawing) {
    std::vector<RecordId> records;
    bool taken = false;
    RecordId last = lastEntity(drawing);
    bool pastLast = last == NoRecord;
    for (RecordId entity = firstEntity(drawing); entity != NoRecord;
         entity = nextEntity(drawing, entity, true)) {
        bool main = !isSubEntity(drawing, entity);
        if (main) {
            if (pastLast) {
                break;
            }
            const Layout* layout = layoutOf(drawing, entity);
            taken = layout && isActivePaper(*layout);
            pastLast = entity == last;
        }
        if (taken) {
            records.push_back(entity);
        }
    }
    return records;
}

std::vector<RecordId> blockRecords(const Drawing& drawing, const Block& block) {
    std::vector<RecordId> records;
    const RecordId past = pastEntities(drawing, block.end);
    for (RecordId record = drawing.next(block.begin); record != NoRecord && record != past;
         record = drawing.next(record)) {
        records.push_back(record);
    }
    return records;
}

void renameBlock(Drawing& drawing, RecordId begin, RecordId blockRecord, const std::string& name) {
    drawing.put(begin, 2, name);
    drawing.put(begin, 3, name, {2, 10, 20, 30});
    if (blockRecord != NoRecord) {
        drawing.put(blockRecord, 2, name);
    }
}

/// Last record of the ENTITIES section, or its beginning when it is empty.
RecordId endOfEntities(const Drawing& drawing) {
    for (RecordId record = drawing.first(); record != NoRecord; record = drawing.next(record)) {
        if (drawing.type(record) == "SECTION" && drawing.record(record).textOr(2, "") == "ENTITIES") {
            RecordId last = record;
            for (RecordId next = drawing.next(record); next != NoRecord && drawing.type(next) != "ENDSEC";
                 next = drawing.next(next)) {
                last = next;
            }
            return last;
        }
    }
    return NoRecord;
}

/// Exchanges the places of the active paper space and of another layout's block.
bool swapPaperSpaces(Drawing& drawing, const std::string& activeName, const std::string& otherName) {
    const Block* active = findBlock(drawing, activeName);
    const Block* other = findBlock(drawing, otherName);
    RecordId end = endOfEntities(drawing);
    if (!active || !other || end == NoRecord) {
        return false;
    }
    Block oldActive = *active;
    Block newActive = *other;
    auto leaving = activePaperRecords(drawing);
    auto entering = blockRecords(drawing, newActive);
    RecordId behind = end;
    for (RecordId record : entering) {
        behind = moveRecord(drawing, record, behind);
        // Outside a block nothing but this tells paper space.
        if (drawing.record(behind).integerOr(67, 0) != 1 && drawing.type(behind) != "SEQEND") {
            drawing.put(behind, 67, std::int64_t{1}, {410, 100, 330, 5});
        }
    }
    behind = oldActive.begin;
    for (RecordId record : leaving) {
        behind = moveRecord(drawing, record, behind);
    }
    renameBlock(drawing, oldActive.begin, oldActive.blockRecord, newActive.name);
    renameBlock(drawing, newActive.begin, newActive.blockRecord, oldActive.name);
    return true;
}

}  // namespace

std::string currentLayoutName(const Drawing& drawing) {
    if (modelIsCurrent(drawing)) {
        return "Model";
    }
    const Layout* layout = activePaperLayout(drawing);
    return layout ? layout->name : "Layout1";
}

bool makeLayoutCurrent(Drawing& drawing, std::string_view name, std::string& reason) {
    const Layout* wanted = nullptr;
    for (const Layout& layout : layouts(drawing)) {
        if (foldCase(layout.name) == foldCase(name)) {
            wanted = &layout;
        }
    }
    if (!wanted) {
        reason = "There is no layout \"" + std::string(name) + "\" in the drawing.";
        return false;
    }
    drawing.setActiveViewport(NoRecord);
    if (!wanted->model && !isActivePaper(*wanted)) {
        const Layout* active = activePaperLayout(drawing);
        std::string activeBlock = active ? active->blockName : "*Paper_Space";
        std::string wantedBlock = wanted->blockName;
        if (!swapPaperSpaces(drawing, activeBlock, wantedBlock)) {
            reason = "The layout \"" + std::string(name) + "\" has no block in the drawing.";
            return false;
        }
        setHeader(drawing, "$TILEMODE", 70, std::int64_t{0});
        return true;
    }
    setHeader(drawing, "$TILEMODE", 70, std::int64_t{wanted->model ? 1 : 0});
    return true;
}

std::vector<RecordId> layoutViewports(const Drawing& drawing) {
    std::vector<RecordId> result;
    if (modelIsCurrent(drawing)) {
        return result;
    }
    for (const RecordId id : activePaperRecords(drawing)) {
        if (drawing.type(id) == "VIEWPORT" && id != sheetViewport(drawing)) {
            result.push_back(id);
        }
    }
    return result;
}

RecordId sheetViewport(const Drawing& drawing) {
    for (const RecordId id : activePaperRecords(drawing)) {
        // Files of others leave the number out; the sheet's own one comes first.
        if (drawing.type(id) == "VIEWPORT") {
            return drawing.record(id).integerOr(69, 1) == 1 ? id : NoRecord;
        }
    }
    return NoRecord;
}

bool enterViewport(Drawing& drawing, int number) {
    if (modelIsCurrent(drawing)) {
        return false;
    }
    if (number == 1) {
        drawing.setActiveViewport(NoRecord);
        return true;
    }
    for (const RecordId id : layoutViewports(drawing)) {
        if (drawing.record(id).integerOr(69, 0) == number) {
            drawing.setActiveViewport(id);
            return true;
        }
    }
    return false;
}

}  // namespace drafthost::commands
