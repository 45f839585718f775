// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/EntityCopy.h"

#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/Structure.h"
#include "drafthost/drawing/View.h"

namespace drafthost {

namespace {

bool isModel(std::string_view block) {
    const std::string name = foldCase(block);
    return name == foldCase("*Model_Space") || name == foldCase("$MODEL_SPACE");
}
bool isPaper(std::string_view block) {
    const std::string name = foldCase(block);
    return name == foldCase("*Paper_Space") || name == foldCase("$PAPER_SPACE");
}

/// Gives a record that stands somewhere in the drawing handle, owner and marker.
void appendHead(Drawing& drawing, RecordId id, RecordId owner) {
    if (drawing.hasHandles()) {
        drawing.appendTag(id, 5, formatHandle(drawing.allocateHandle()));
    }
    if (drawing.versionNumber() >= 1015 && owner != NoRecord) {
        drawing.appendTag(id, 330, formatHandle(drawing.handle(owner)));
    }
}

/// Everything of a record behind handle and owner; extension dictionaries and reactors stay with the
/// original.
void appendRest(Drawing& drawing, RecordId from, RecordId to, bool skipSpace) {
    bool inGroup = false;
    bool ownerSeen = false;
    for (std::size_t i = 1; i < drawing.record(from).size(); ++i) {
        const Record record = drawing.record(from);
        const int code = record.code(i);
        if (code == 102) {
            const bool opens = record.raw(i).find('{') != std::string_view::npos;
            const bool closes = !opens && inGroup;
            inGroup = opens;
            if (opens || closes) {
                continue;
            }
        }
        const bool head = i < record.find(100).value_or(record.size()) || drawing.versionNumber() < 1012;
        if (inGroup || code == 5 || code == 999 || (skipSpace && (code == 67 || code == 410))) {
            continue;
        }
        if (code == 330 && head && !ownerSeen) {
            ownerSeen = true;
            continue;
        }
        drawing.appendTag(to, code, record.value(i));
    }
}

RecordId recordBehind(Drawing& drawing, const BlockTarget& target, RecordId& owner) {
    owner = findEntry(drawing, Table::BlockRecord, target.block);
    if (isModel(target.block) || isPaper(target.block)) {
        const Structure::Section& section = drawing.structure().entitiesSection;
        if (section.begin == NoRecord || drawing.type(section.end) != "ENDSEC") {
            return NoRecord;
        }
        return drawing.previous(section.end);
    }
    const Block* block = findBlock(drawing, target.block);
    if (block == nullptr) {
        return NoRecord;
    }
    return drawing.type(block->end) == "ENDBLK" ? drawing.previous(block->end) : block->end;
}

}  // namespace

BlockTarget targetOf(const Drawing& drawing, RecordId entity) {
    if (const Layout* layout = layoutOf(drawing, entity)) {
        return {layout->blockName};
    }
    for (const Block& block : blocks(drawing)) {
        if (drawing.isWithin(entity, block.begin, block.end)) {
            return {block.name};
        }
    }
    return {"*Model_Space"};
}

BlockTarget currentTarget(const Drawing& drawing) {
    return {modelSpaceIsCurrent(drawing) ? "*Model_Space" : "*Paper_Space"};
}

RecordId addEntityTo(Drawing& drawing, const BlockTarget& target, std::string_view type,
                     std::string_view layer) {
    if (isModel(target.block) || isPaper(target.block)) {
        return addEntity(drawing, type, layer, isPaper(target.block));
    }
    RecordId owner = NoRecord;
    const RecordId behind = recordBehind(drawing, target, owner);
    if (behind == NoRecord) {
        return NoRecord;
    }
    const RecordId id = drawing.insertRecord(behind, type);
    appendHead(drawing, id, owner);
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 100, "AcDbEntity");
    }
    drawing.appendTag(id, 8, std::string(layer));
    return id;
}

RecordId addPart(Drawing& drawing, RecordId main, RecordId behind, std::string_view type,
                 const std::string& layer) {
    const RecordId id = drawing.insertRecord(behind, type);
    if (drawing.hasHandles()) {
        drawing.appendTag(id, 5, formatHandle(drawing.allocateHandle()));
    }
    if (drawing.versionNumber() >= 1015) {
        drawing.appendTag(id, 330, formatHandle(drawing.handle(main)));
    }
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 100, std::string("AcDbEntity"));
    }
    if (drawing.record(main).integerOr(67, 0) == 1) {
        drawing.appendTag(id, 67, std::int64_t{1});
    }
    drawing.appendTag(id, 8, layer);
    return id;
}

RecordId copyEntity(Drawing& drawing, RecordId entity, const BlockTarget& target) {
    RecordId owner = NoRecord;
    RecordId behind = recordBehind(drawing, target, owner);
    if (behind == NoRecord) {
        return NoRecord;
    }
    std::vector<RecordId> sources{entity};
    const std::string type(drawing.type(entity));
    if (type == "POLYLINE" || type == "INSERT") {
        for (RecordId id = drawing.next(entity); id != NoRecord && isSubEntity(drawing, id);
             id = drawing.next(id)) {
            sources.push_back(id);
            if (drawing.type(id) == "SEQEND") {
                break;
            }
        }
    }
    RecordId made = NoRecord;
    for (const RecordId source : sources) {
        const RecordId id = drawing.insertRecord(behind, std::string(drawing.type(source)));
        appendHead(drawing, id, made == NoRecord ? owner : made);
        appendRest(drawing, source, id, true);
        if (isPaper(target.block)) {
            const auto marker = drawing.record(id).find(100);
            drawing.insertTag(id, marker ? *marker + 1 : drawing.record(id).find(8).value_or(1), 67,
                              std::int64_t{1});
        }
        behind = id;
        made = made == NoRecord ? id : made;
    }
    if (type == "DIMENSION") {
        const std::string picture = drawing.record(entity).textOr(2, "");
        if (picture.starts_with("*D") && findBlock(drawing, picture) != nullptr) {
            const std::string fresh = anonymousName(drawing, 'D');
            if (addBlock(drawing, fresh, {})) {
                for (const RecordId part : entitiesOf(drawing, *findBlock(drawing, picture))) {
                    copyEntity(drawing, part, {fresh});
                }
                drawing.put(made, 2, fresh);
            }
        }
    }
    return made;
}

std::string anonymousName(const Drawing& drawing, char kind) {
    for (int number = 1;; ++number) {
        std::string name = std::string("*") + kind + std::to_string(number);
        if (findBlock(drawing, name) == nullptr) {
            return name;
        }
    }
}

namespace {

// The BLOCKS section, made behind the tables where there is none.
Structure::Section blocksSection(Drawing& drawing) {
    if (drawing.structure().blocksSection.begin == NoRecord && tablesSection(drawing) != NoRecord &&
        drawing.type(drawing.structure().tablesSection.end) == "ENDSEC") {
        const RecordId section = drawing.insertRecord(drawing.structure().tablesSection.end, "SECTION");
        drawing.appendTag(section, 2, "BLOCKS");
        drawing.insertRecord(section, "ENDSEC");
    }
    return drawing.structure().blocksSection;
}

}  // namespace

bool addBlock(Drawing& drawing, const std::string& name, const Point& base) {
    const Structure::Section section = blocksSection(drawing);
    if (section.begin == NoRecord || drawing.type(section.end) != "ENDSEC") {
        return false;
    }
    const bool marked = drawing.versionNumber() >= 1012;
    RecordId owner = NoRecord;
    if (marked) {
        owner = findEntry(drawing, Table::BlockRecord, name);
        owner = owner == NoRecord ? addEntry(drawing, Table::BlockRecord, name) : owner;
    }
    const RecordId begin = drawing.insertRecord(drawing.previous(section.end), "BLOCK");
    appendHead(drawing, begin, owner);
    if (marked) {
        drawing.appendTag(begin, 100, "AcDbEntity");
    }
    drawing.appendTag(begin, 8, "0");
    if (marked) {
        drawing.appendTag(begin, 100, "AcDbBlockBegin");
    }
    drawing.appendTag(begin, 2, name);
    drawing.appendTag(begin, 70, std::int64_t{name.starts_with('*') ? 1 : 0});
    drawing.appendTag(begin, 10, base.x);
    drawing.appendTag(begin, 20, base.y);
    drawing.appendTag(begin, 30, base.z);
    drawing.appendTag(begin, 3, name);
    if (marked) {
        drawing.appendTag(begin, 1, "");
    }
    const RecordId end = drawing.insertRecord(begin, "ENDBLK");
    appendHead(drawing, end, owner);
    if (marked) {
        drawing.appendTag(end, 100, "AcDbEntity");
    }
    drawing.appendTag(end, 8, "0");
    if (marked) {
        drawing.appendTag(end, 100, "AcDbBlockEnd");
    }
    return true;
}

void deleteBlock(Drawing& drawing, const std::string& name) {
    const Block* found = findBlock(drawing, name);
    if (found == nullptr) {
        return;
    }
    const Block block = *found;
    std::vector<RecordId> records;
    for (RecordId id = block.begin; id != NoRecord; id = drawing.next(id)) {
        records.push_back(id);
        if (id == block.end) {
            break;
        }
    }
    for (const RecordId id : records) {
        for (const RecordId object : ownedObjects(drawing, id)) {
            drawing.deleteRecord(object);
        }
        drawing.deleteRecord(id);
    }
    if (block.blockRecord != NoRecord) {
        deleteEntry(drawing, Table::BlockRecord, block.blockRecord);
    }
}

}  // namespace drafthost
