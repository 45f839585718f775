// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Blocks.h"

#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/Structure.h"

#include <algorithm>

namespace drafthost {

namespace {

bool endsEntities(std::string_view type) {
    return type == "ENDSEC" || type == "ENDBLK" || type == "SECTION" || type == "BLOCK" || type == "EOF";
}

// First entity of the layouts' own blocks from the layout `index` on; those of the model and of the active
// paper space are in the ENTITIES section and their blocks are empty.
RecordId firstOfLayouts(const Drawing& drawing, std::size_t index) {
    const std::vector<Layout>& all = layouts(drawing);
    for (; index < all.size(); ++index) {
        // Of two layouts that claim one block the first has it.
        const bool taken = std::any_of(
            all.begin(), all.begin() + std::ptrdiff_t(index),
            [&](const Layout& l) { return foldCase(l.blockName) == foldCase(all[index].blockName); });
        if (taken) {
            continue;
        }
        const Block* block = all[index].model ? nullptr : findBlock(drawing, all[index].blockName);
        const RecordId entity = block != nullptr ? firstInBlock(drawing, *block) : NoRecord;
        if (entity != NoRecord) {
            return entity;
        }
    }
    return NoRecord;
}

std::string activePaperName(const Drawing& drawing) {
    return findBlock(drawing, "*Paper_Space") != nullptr || drawing.versionNumber() >= 1012 ? "*Paper_Space"
                                                                                            : "$PAPER_SPACE";
}

// Between the end of a section and EOF, or wherever a section of that name belongs.
RecordId makeEntitiesSection(Drawing& drawing) {
    const Structure& structure = drawing.structure();
    RecordId behind = structure.blocksSection.end;
    if (behind == NoRecord) {
        const RecordId next =
            structure.objectsSection.begin != NoRecord ? structure.objectsSection.begin : structure.eof;
        behind = drawing.previous(next);
    }
    if (behind == NoRecord) {
        return NoRecord;
    }
    const RecordId section = drawing.insertRecord(behind, "SECTION");
    drawing.appendTag(section, 2, "ENTITIES");
    drawing.insertRecord(section, "ENDSEC");
    return section;
}

}  // namespace

const std::vector<Block>& blocks(const Drawing& drawing) {
    return drawing.structure().blocks;
}

const Block* findBlock(const Drawing& drawing, std::string_view name) {
    const Structure& structure = drawing.structure();
    const auto found = structure.blockByName.find(foldCase(name));
    return found != structure.blockByName.end() ? &structure.blocks[found->second] : nullptr;
}

const std::vector<Layout>& layouts(const Drawing& drawing) {
    const Structure& structure = drawing.structure();
    std::vector<Layout>& result = structure.layouts;
    if (!result.empty()) {
        return result;
    }
    const std::vector<RecordId>& records = structure.table(Table::BlockRecord).entries;
    for (const RecordId id : structure.layoutObjects) {
        const Record record = drawing.record(id);
        Layout layout;
        layout.object = id;
        const std::size_t from = record.subclass("AcDbLayout");
        const auto name = record.find(1, from);
        const auto order = record.find(71, from);
        const auto owner = record.find(330, from);
        layout.name = name ? record.text(*name) : "";
        layout.tabOrder = order ? static_cast<int>(record.integer(*order)) : 0;
        const std::uint64_t handle = owner ? record.handle(*owner) : 0;
        const auto found = std::find_if(records.begin(), records.end(),
                                        [&](RecordId entry) { return drawing.handle(entry) == handle; });
        if (handle != 0 && found != records.end()) {
            layout.blockRecord = *found;
            layout.blockName = entryName(drawing, *found);
        }
        layout.model = foldCase(layout.blockName) == "*model_space" ||
                       (layout.blockRecord == NoRecord && foldCase(layout.name) == "model");
        result.push_back(std::move(layout));
    }
    const bool hasModel = std::any_of(result.begin(), result.end(), [](const Layout& l) { return l.model; });
    if (!hasModel) {
        Layout model{"Model",        NoRecord, findEntry(drawing, Table::BlockRecord, "*Model_Space"),
                     "*Model_Space", 0,        true};
        result.insert(result.begin(), std::move(model));
    }
    if (result.size() == 1) {
        result.push_back({"Layout1", NoRecord, findEntry(drawing, Table::BlockRecord, "*Paper_Space"),
                          activePaperName(drawing), 1, false});
    }
    std::stable_sort(result.begin(), result.end(), [](const Layout& a, const Layout& b) {
        return a.model != b.model ? a.model : a.tabOrder < b.tabOrder;
    });
    return result;
}

RecordId firstEntity(const Drawing& drawing) {
    const Structure::Section& section = drawing.structure().entitiesSection;
    if (section.begin != NoRecord) {
        const RecordId id = drawing.next(section.begin);
        if (id != NoRecord && !endsEntities(drawing.type(id))) {
            return id;
        }
    }
    return firstOfLayouts(drawing, 0);
}

RecordId nextEntity(const Drawing& drawing, RecordId entity, bool subEntities) {
    RecordId id = drawing.next(entity);
    while (id != NoRecord) {
        const std::string_view type = drawing.type(id);
        if (endsEntities(type)) {
            // A block that lacks its ENDBLK ends with its last entity.
            const RecordId last = drawing.previous(id);
            const std::vector<Layout>& all = layouts(drawing);
            for (std::size_t i = 0; i < all.size(); ++i) {
                const Block* block = all[i].model ? nullptr : findBlock(drawing, all[i].blockName);
                if (block != nullptr && (block->end == id || block->end == last)) {
                    return firstOfLayouts(drawing, i + 1);
                }
            }
            return type == "ENDBLK" || type == "BLOCK" ? NoRecord : firstOfLayouts(drawing, 0);
        }
        if (subEntities || !isSubEntity(drawing, id)) {
            return id;
        }
        id = drawing.next(id);
    }
    return NoRecord;
}

RecordId lastEntity(const Drawing& drawing) {
    const Structure::Section& section = drawing.structure().entitiesSection;
    if (section.begin == NoRecord) {
        return NoRecord;
    }
    RecordId id = drawing.type(section.end) == "ENDSEC" ? drawing.previous(section.end) : section.end;
    while (id != section.begin && isSubEntity(drawing, id)) {
        id = drawing.previous(id);
    }
    return id == section.begin ? NoRecord : id;
}

RecordId firstInBlock(const Drawing& drawing, const Block& block) {
    const RecordId id = drawing.next(block.begin);
    return id == NoRecord || endsEntities(drawing.type(id)) ? NoRecord : id;
}

std::vector<RecordId> entitiesOf(const Drawing& drawing, const Block& block) {
    std::vector<RecordId> result;
    const std::string name = foldCase(block.name);
    const bool model = name == foldCase("*Model_Space") || name == foldCase("$MODEL_SPACE");
    const bool paper = name == foldCase("*Paper_Space") || name == foldCase("$PAPER_SPACE");
    const Structure::Section& section = drawing.structure().entitiesSection;
    const bool inSection = (model || paper) && section.begin != NoRecord;
    RecordId id = drawing.next(inSection ? section.begin : block.begin);
    for (; id != NoRecord && !endsEntities(drawing.type(id)); id = drawing.next(id)) {
        if (!isSubEntity(drawing, id) &&
            (!inSection || (drawing.record(id).integerOr(67, 0) != 0) == paper)) {
            result.push_back(id);
        }
    }
    return result;
}

RecordId pastEntities(const Drawing& drawing, RecordId end) {
    return end == NoRecord || endsEntities(drawing.type(end)) ? end : drawing.next(end);
}

bool isSubEntity(const Drawing& drawing, RecordId record) {
    const std::string_view type = drawing.type(record);
    return type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
}

bool isActivePaper(const Layout& layout) {
    const std::string block = foldCase(layout.blockName);
    return !layout.model && (block == foldCase("*Paper_Space") || block == foldCase("$PAPER_SPACE"));
}

const Layout* layoutOf(const Drawing& drawing, RecordId entity) {
    const std::vector<Layout>& all = layouts(drawing);
    const Structure& structure = drawing.structure();
    const auto named = [&](std::string_view blockName) -> const Layout* {
        const std::string folded = foldCase(blockName);
        for (const Layout& layout : all) {
            if (foldCase(layout.blockName) == folded) {
                return &layout;
            }
        }
        return nullptr;
    };
    if (drawing.isWithin(entity, structure.entitiesSection.begin, structure.entitiesSection.end)) {
        if (drawing.record(entity).integerOr(67, 0) == 0) {
            return &all.front();
        }
        const Layout* active = named(activePaperName(drawing));
        return active != nullptr ? active : &all.back();
    }
    for (const Layout& layout : all) {
        const Block* block = findBlock(drawing, layout.blockName);
        if (block != nullptr && drawing.isWithin(entity, block->begin, block->end)) {
            return &layout;
        }
    }
    return nullptr;
}

RecordId addEntity(Drawing& drawing, std::string_view type, std::string_view layer, bool paper) {
    if (drawing.structure().entitiesSection.begin == NoRecord && makeEntitiesSection(drawing) == NoRecord) {
        return NoRecord;
    }
    if (drawing.type(drawing.structure().entitiesSection.end) != "ENDSEC") {
        drawing.insertRecord(drawing.structure().entitiesSection.end, "ENDSEC");
    }
    const std::string ownerName = paper ? "*Paper_Space" : "*Model_Space";
    const RecordId owner = findEntry(drawing, Table::BlockRecord, ownerName);
    const RecordId id = drawing.insertRecord(drawing.previous(drawing.structure().entitiesSection.end), type);
    if (drawing.hasHandles()) {
        drawing.appendTag(id, 5, formatHandle(drawing.allocateHandle()));
    }
    if (drawing.versionNumber() >= 1015 && owner != NoRecord) {
        drawing.appendTag(id, 330, formatHandle(drawing.handle(owner)));
    }
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 100, "AcDbEntity");
    }
    if (paper) {
        drawing.appendTag(id, 67, 1);
    }
    drawing.appendTag(id, 8, std::string(layer));
    return id;
}

std::vector<RecordId> deleteEntity(Drawing& drawing, RecordId entity) {
    std::vector<RecordId> removed{entity};
    const std::string_view type = drawing.type(entity);
    RecordId id = type == "POLYLINE" || type == "INSERT" ? drawing.next(entity) : NoRecord;
    while (id != NoRecord && isSubEntity(drawing, id)) {
        removed.push_back(id);
        const bool last = drawing.type(id) == "SEQEND";
        id = last ? NoRecord : drawing.next(id);
    }
    for (std::size_t i = removed.size(); i-- > 0;) {
        const std::vector<RecordId> owned = ownedObjects(drawing, removed[i]);
        removed.insert(removed.end(), owned.begin(), owned.end());
    }
    for (const RecordId record : removed) {
        drawing.deleteRecord(record);
    }
    return removed;
}

}  // namespace drafthost
