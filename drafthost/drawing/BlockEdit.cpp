// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/BlockEdit.h"

#include <algorithm>
#include <array>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Import.h"

namespace drafthost {

namespace {

/// Metres in one unit, by the numbers of INSUNITS (help page of the variable); 0: no unit.
constexpr std::array<double, 25> MetresInUnit = {0,
                                                 0.0254,
                                                 0.3048,
                                                 1609.344,
                                                 0.001,
                                                 0.01,
                                                 1,
                                                 1000,
                                                 2.54e-8,
                                                 2.54e-5,
                                                 0.9144,
                                                 1e-10,
                                                 1e-9,
                                                 1e-6,
                                                 0.1,
                                                 10,
                                                 100,
                                                 1e9,
                                                 1.495978707e11,
                                                 9.4607304725808e15,
                                                 3.08567758149137e16,
                                                 1200.0 / 3937,
                                                 100.0 / 3937,
                                                 3600.0 / 3937,
                                                 1609.347218694437};

double metres(std::int64_t units) {
    return units > 0 && units < static_cast<std::int64_t>(MetresInUnit.size())
               ? MetresInUnit[static_cast<std::size_t>(units)]
               : 0;
}

bool emptyBlock(Drawing& drawing, const std::string& name, const Point& base) {
    if (const Block* block = findBlock(drawing, name)) {
        drawing.putPoint(block->begin, 10, base, true, {70, 2});
        clearBlock(drawing, name);
        return true;
    }
    return addBlock(drawing, name, base);
}

}  // namespace

void clearBlock(Drawing& drawing, const std::string& name) {
    const Block* block = findBlock(drawing, name);
    if (block == nullptr) {
        return;
    }
    const std::vector<RecordId> contents = entitiesOf(drawing, *block);
    for (const RecordId id : contents) {
        deleteEntity(drawing, id);
    }
}

bool loadBlock(Drawing& drawing, const std::string& path, const std::string& name, std::string& error) {
    const auto other = Drawing::open(path, error);
    if (other == nullptr) {
        return false;
    }
    constexpr const char* Aside = "$TARNEL_LOADING";
    const bool redefines = findBlock(drawing, name) != nullptr;
    const std::string made = redefines ? Aside : name;
    if (!Importer(*other, drawing).drawingAsBlock(made)) {
        error = path + ": the drawing has no section for blocks";
        return false;
    }
    const Point base = headerPoint(*other, "$INSBASE", {});
    if (redefines) {
        const std::vector<RecordId> contents = entitiesOf(drawing, *findBlock(drawing, made));
        emptyBlock(drawing, name, base);
        for (const RecordId id : contents) {
            copyEntity(drawing, id, {name});
        }
        deleteBlock(drawing, made);
    }
    const Block* block = findBlock(drawing, name);
    const std::int64_t units = headerInteger(*other, "$INSUNITS", 0);
    if (block->blockRecord != NoRecord && units != 0 && drawing.versionNumber() >= 1021) {
        drawing.put(block->blockRecord, 70, units, {340, 2});
    }
    return true;
}

bool defineBlock(Drawing& drawing, const std::string& name, const Point& base,
                 const std::vector<RecordId>& entities) {
    if (!emptyBlock(drawing, name, base)) {
        return false;
    }
    bool attributes = false;
    for (const RecordId id : entities) {
        attributes = attributes || drawing.type(id) == "ATTDEF";
        copyEntity(drawing, id, {name});
    }
    const Block* block = findBlock(drawing, name);
    const std::int64_t flags = drawing.record(block->begin).integerOr(70, 0);
    drawing.put(block->begin, 70, attributes ? flags | 2 : flags & ~std::int64_t{2}, {2});
    const std::int64_t units = headerInteger(drawing, "$INSUNITS", 0);
    if (block->blockRecord != NoRecord && units != 0 && drawing.versionNumber() >= 1021) {
        drawing.put(block->blockRecord, 70, units, {340, 2});
    }
    return true;
}

bool leadsTo(const Drawing& drawing, const std::vector<RecordId>& entities, const std::string& name) {
    std::vector<std::string> open;
    std::vector<RecordId> left = entities;
    while (!left.empty()) {
        const RecordId id = left.back();
        left.pop_back();
        if (drawing.type(id) != "INSERT") {
            continue;
        }
        const std::string inner = foldCase(drawing.record(id).textOr(2, ""));
        if (inner == foldCase(name)) {
            return true;
        }
        const Block* block = findBlock(drawing, inner);
        if (block != nullptr && std::find(open.begin(), open.end(), inner) == open.end()) {
            open.push_back(inner);
            for (const RecordId part : entitiesOf(drawing, *block)) {
                left.push_back(part);
            }
        }
    }
    return false;
}

std::vector<RecordId> referencesTo(const Drawing& drawing, const std::string& name) {
    const std::string folded = foldCase(name);
    std::vector<RecordId> result;
    const auto look = [&](RecordId id) {
        if (drawing.type(id) == "INSERT" && foldCase(drawing.record(id).textOr(2, "")) == folded) {
            result.push_back(id);
        }
    };
    for (const Block& block : blocks(drawing)) {
        for (const RecordId id : entitiesOf(drawing, block)) {
            look(id);
        }
    }
    // Old drawings keep no blocks for their spaces.
    if (findBlock(drawing, "*Model_Space") == nullptr && findBlock(drawing, "$MODEL_SPACE") == nullptr) {
        for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
            look(id);
        }
    }
    return result;
}

double unitFactor(const Drawing& drawing, const std::string& name) {
    const Block* block = findBlock(drawing, name);
    if (block == nullptr || block->blockRecord == NoRecord) {
        return 1;
    }
    const double own = metres(drawing.record(block->blockRecord).integerOr(70, 0));
    const double wanted = metres(headerInteger(drawing, "$INSUNITS", 0));
    return own > 0 && wanted > 0 ? own / wanted : 1;
}

std::unique_ptr<Drawing> drawingOf(const Drawing& drawing, const std::vector<RecordId>& entities,
                                   const Point& base) {
    const bool metric = headerInteger(drawing, "$MEASUREMENT", 1) == 1;
    auto made = Drawing::createNew(metric);
    Importer importer(drawing, *made);
    for (const RecordId id : entities) {
        importer.entity(id, {"*Model_Space"});
    }
    for (const char* name : {"$INSUNITS", "$LUNITS", "$LUPREC", "$AUNITS", "$AUPREC"}) {
        if (headerVariable(drawing, name)) {
            setHeader(*made, name, 70, headerInteger(drawing, name, 0));
        }
    }
    for (const char* name : {"$LTSCALE", "$TEXTSIZE", "$DIMSCALE"}) {
        if (headerVariable(drawing, name)) {
            setHeader(*made, name, 40, headerReal(drawing, name, 1));
        }
    }
    setHeaderPoint(*made, "$INSBASE", base, 3);
    return made;
}

}  // namespace drafthost
