// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/EntityMake.h"

#include <algorithm>
#include <map>

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityEdit.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/PolylineWriter.h"
#include "drafthost/drawing/R12Groups.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"

namespace drafthost::automation {
namespace {

/// The subclass markers that a list from an old program leaves out: the first one, and another that begins
/// with a certain group.
struct Parts {
    std::string_view first;
    std::string_view second = {};
    int begins = 0;  ///< the group in front of which the second stands; 0: at the end
};

Parts partsOf(std::string_view type, const Value& list) {
    static const std::map<std::string_view, Parts> known = {
        {"LINE", {"AcDbLine"}},
        {"CIRCLE", {"AcDbCircle"}},
        {"ARC", {"AcDbCircle", "AcDbArc", 50}},
        {"POINT", {"AcDbPoint"}},
        {"TEXT", {"AcDbText", "AcDbText"}},
        {"MTEXT", {"AcDbMText"}},
        {"LWPOLYLINE", {"AcDbPolyline"}},
        {"SOLID", {"AcDbTrace"}},
        {"TRACE", {"AcDbTrace"}},
        {"3DFACE", {"AcDbFace"}},
        {"ELLIPSE", {"AcDbEllipse"}},
        {"SPLINE", {"AcDbSpline"}},
        {"INSERT", {"AcDbBlockReference"}},
        {"RAY", {"AcDbRay"}},
        {"XLINE", {"AcDbXline"}},
        {"ATTRIB", {"AcDbText", "AcDbAttribute", 2}},
        {"ATTDEF", {"AcDbText", "AcDbAttributeDefinition", 2}},
        {"HATCH", {"AcDbHatch"}},
        {"LEADER", {"AcDbLeader"}},
        {"TOLERANCE", {"AcDbFcf"}},
        {"VIEWPORT", {"AcDbViewport"}},
    };
    if (type == "POLYLINE" || type == "VERTEX") {
        const Value* flags = groupOf(list, 70);
        const std::int32_t bits = flags != nullptr && flags->isInt() ? flags->toInt() : 0;
        if (type == "POLYLINE") {
            return {(bits & 8) != 0    ? "AcDb3dPolyline"
                    : (bits & 16) != 0 ? "AcDbPolygonMesh"
                    : (bits & 64) != 0 ? "AcDbPolyFaceMesh"
                                       : "AcDb2dPolyline"};
        }
        return {"AcDbVertex", (bits & 32) != 0 ? "AcDb3dPolylineVertex" : "AcDb2dVertex", 10};
    }
    const auto found = known.find(type);
    return found == known.end() ? Parts{} : found->second;
}

/// Groups without which a type makes no entity.
bool hasEssentials(const std::string& type, const Value& list) {
    static const std::map<std::string_view, std::vector<int>> needed = {
        {"LINE", {10, 11}},  {"CIRCLE", {10, 40}},         {"ARC", {10, 40, 50, 51}},
        {"POINT", {10}},     {"TEXT", {10, 40, 1}},        {"MTEXT", {10, 1}},
        {"INSERT", {2, 10}}, {"LWPOLYLINE", {10}},         {"SOLID", {10, 11, 12}},
        {"VERTEX", {10}},    {"ELLIPSE", {10, 11, 40}},    {"3DFACE", {10, 11, 12}},
        {"HATCH", {2, 91}},  {"IMAGE", {10, 11, 12, 340}}, {"RAY", {10, 11}},
        {"XLINE", {10, 11}}, {"ATTRIB", {10, 40, 2}},      {"ATTDEF", {10, 40, 2}},
    };
    // What has no size is nothing that other programs would read.
    const Value* size = groupOf(list, 40);
    const bool sized =
        type == "CIRCLE" || type == "ARC" || type == "TEXT" || type == "ATTRIB" || type == "ATTDEF";
    if (sized && size != nullptr &&
        !(size->isInt() ? size->toInt() > 0 : size->isReal() && size->toReal() > 0)) {
        return false;
    }
    const Value* axis = type == "ELLIPSE" ? groupOf(list, 11) : nullptr;
    if (axis != nullptr && toPoint(*axis).value_or(Point{}) == Point{}) {
        return false;
    }
    const auto found = needed.find(type);
    return found == needed.end() ||
           std::ranges::all_of(found->second, [&](int code) { return groupOf(list, code) != nullptr; });
}

bool isCommon(int code) {
    return code == 6 || code == 62 || code == 48 || code == 60 || code == 370 || code == 420 || code == 430 ||
           code == 440;
}

/// Where the list wants its entity: the block that is being made, the sheet that it names, or the current
/// space.
std::optional<BlockTarget> targetOfList(const Drawing& drawing, const Value& list, const Making& making) {
    if (!making.block.empty()) {
        return BlockTarget{making.block};
    }
    if (const Value* sheet = groupOf(list, 410)) {
        for (const Layout& layout : layouts(drawing)) {
            if (foldCase(layout.name) == foldCase(sheet->toString())) {
                return BlockTarget{layout.blockName};
            }
        }
        return std::nullopt;
    }
    if (const Value* space = groupOf(list, 67)) {
        return BlockTarget{space->toInt() == 1 ? "*Paper_Space" : "*Model_Space"};
    }
    return currentTarget(drawing);
}

/// A part of the polyline or reference that is being made.
RecordId addPart(Drawing& drawing, const std::string& type, const std::string& layer, Making& making) {
    const RecordId id = drawing.insertRecord(making.last, type);
    if (drawing.hasHandles()) {
        drawing.appendTag(id, 5, formatHandle(drawing.allocateHandle()));
    }
    if (drawing.versionNumber() >= 1015) {
        drawing.appendTag(id, 330, formatHandle(drawing.handle(making.main)));
    }
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 100, "AcDbEntity");
    }
    if (drawing.record(making.main).integerOr(67, 0) == 1) {
        drawing.appendTag(id, 67, std::int64_t{1});
    }
    drawing.appendTag(id, 8, layer);
    making.last = id;
    return id;
}

bool isNamed(const std::string& type, const Value& list, std::string_view marker) {
    return std::ranges::any_of(list.items(), [&](const Value& item) {
        return item.car().toInt() == 100 && item.cdr().toString() != "AcDbEntity" &&
               (marker.empty() || item.cdr().toString() == marker || type.empty());
    });
}

void appendGroups(Drawing& drawing, RecordId id, const std::string& type, const Value& list) {
    const bool marked = drawing.versionNumber() >= 1012;
    const bool hasMarkers = isNamed(type, list, {});
    const Parts parts = partsOf(type, list);
    if (marked) {
        for (const Value& item : list.items()) {
            if (isCommon(item.car().toInt())) {
                appendGroup(drawing, id, item.car().toInt(), item.cdr());
            }
        }
    }
    const bool fill = marked && !hasMarkers;
    if (fill && !parts.first.empty()) {
        drawing.appendTag(id, 100, std::string(parts.first));
    }
    if (type == "LWPOLYLINE" && groupOf(list, 90) == nullptr) {
        const auto count =
            std::ranges::count_if(list.items(), [](const Value& v) { return v.car().toInt() == 10; });
        drawing.appendTag(id, 90, static_cast<std::int64_t>(count));
    }
    bool second = fill && !parts.second.empty();
    const auto begin = [&] {
        drawing.appendTag(id, 100, std::string(parts.second));
        second = false;
    };
    // A point of an attribute comes before its tag, whatever the order of the list.
    std::vector<Value> items = list.items();
    if (fill && (type == "ATTRIB" || type == "ATTDEF")) {
        std::stable_partition(items.begin(), items.end(), [](const Value& item) {
            const int code = item.car().toInt();
            return code != 2 && code != 3 && code != 70 && code != 73 && code != 74 && code != 280;
        });
    }
    for (const Value& item : items) {
        const int code = item.car().toInt();
        if (code == 8 || (marked && isCommon(code)) || (code == 100 && !marked) ||
            (isFixedGroup(code) && code != 100) || (code == 100 && item.cdr().toString() == "AcDbEntity")) {
            continue;
        }
        const bool byTag = parts.begins == 2 && (code == 70 || code == 3);
        const bool byAlignment = type == "TEXT" && code == 73;
        if (second && ((parts.begins != 0 && code == parts.begins) || byTag || byAlignment)) {
            begin();
        }
        appendGroup(drawing, id, code, item.cdr());
    }
    if (second) {
        begin();
    }
    if (const Value* data = groupOf(list, -3)) {
        setExtendedData(drawing, id, *data);
    }
}

std::optional<Made> makeEntity(Drawing& drawing, const std::string& type, const Value& list, Making& making,
                               bool& tablesChanged) {
    const bool part = type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
    if ((part && making.main == NoRecord) || !hasEssentials(type, list) ||
        !referencesAreValid(drawing, type, list) || (type != "LWPOLYLINE" && !canHold(drawing, type)) ||
        !needLayer(drawing, list, tablesChanged)) {
        return std::nullopt;
    }
    const Value* layer = groupOf(list, 8);
    const std::string layerName = layer != nullptr ? layer->toString() : headerText(drawing, "$CLAYER", "0");
    RecordId id = NoRecord;
    if (part) {
        id = addPart(drawing, type, layerName, making);
    } else {
        const auto target = targetOfList(drawing, list, making);
        id = target ? addEntityTo(drawing, *target, type, layerName) : NoRecord;
    }
    if (id == NoRecord) {
        return std::nullopt;
    }
    appendGroups(drawing, id, type, list);
    if (!canHold(drawing, type)) {
        id = asOldPolyline(drawing, id);
    }
    if (!part) {
        const Value* follows = groupOf(list, 66);
        const bool opens =
            type == "POLYLINE" || (type == "INSERT" && follows != nullptr && follows->toInt() == 1);
        making.main = opens ? id : NoRecord;
        making.last = making.main;
        if (type == "POLYLINE" && !drawing.record(id).find(66)) {
            drawing.put(id, 66, std::int64_t{1}, {100, 8});
        }
    } else if (type == "SEQEND") {
        making.main = NoRecord;
    }
    return Made{id, {}};
}

std::optional<Made> beginBlock(Drawing& drawing, const Value& list, Making& making, bool& tablesChanged) {
    const Value* name = groupOf(list, 2);
    if (name == nullptr || name->toString().empty() || !needLayer(drawing, list, tablesChanged)) {
        return std::nullopt;
    }
    std::string wanted = name->toString();
    const Value* flags = groupOf(list, 70);
    const bool anonymous = wanted.front() == '*' && flags != nullptr && (flags->toInt() & 1) != 0;
    if (anonymous) {
        wanted = anonymousName(drawing, wanted.size() > 1 ? wanted[1] : 'U');
    } else if (wanted.find_first_of("<>/\\\":;?*|,=`") != std::string::npos) {
        return std::nullopt;
    }
    const Value* base = groupOf(list, 10);
    const Point origin = base != nullptr ? toPoint(*base).value_or(Point{}) : Point{};
    if (const Block* known = findBlock(drawing, wanted)) {
        // A new definition takes the place of the old one, and its references follow.
        const RecordId begin = known->begin;
        for (const RecordId id : entitiesOf(drawing, *known)) {
            deleteEntity(drawing, id);
        }
        drawing.putPoint(begin, 10, origin, true, {70});
    } else if (!addBlock(drawing, wanted, origin)) {
        return std::nullopt;
    }
    const RecordId begin = findBlock(drawing, wanted)->begin;
    const std::int64_t bits = flags != nullptr ? flags->toInt() : 0;
    drawing.put(begin, 70, bits | (anonymous ? 1 : 0), {2});
    making.block = findBlock(drawing, wanted)->name;
    making.main = NoRecord;
    tablesChanged = true;
    return Made{begin, {}};
}

std::optional<Made> makeTableRecord(Drawing& drawing, Table table, const Value& list) {
    const Value* name = groupOf(list, 2);
    if (name == nullptr || name->toString().empty() ||
        findEntry(drawing, table, name->toString()) != NoRecord ||
        !referencesAreValid(drawing, tableType(table), list)) {
        return std::nullopt;
    }
    const RecordId id = addEntry(drawing, table, name->toString());
    bool ignored = false;
    modifyRecord(drawing, id, list, ignored);
    return Made{id, {}};
}

std::optional<Made> makeObject(Drawing& drawing, const std::string& type, const Value& list) {
    const std::vector<RecordId> all = objects(drawing);
    if (all.empty() || !drawing.hasHandles()) {
        return std::nullopt;
    }
    const RecordId id = drawing.insertRecord(all.back(), type);
    drawing.appendTag(id, 5, formatHandle(drawing.allocateHandle()));
    drawing.appendTag(id, 330, "0");
    bool marked = false;
    for (const Value& item : list.items()) {
        const int code = item.car().toInt();
        if (code == 100) {
            marked = true;
        }
        if (!marked && !isFixedGroup(code)) {
            drawing.appendTag(id, 100, type == "XRECORD" ? "AcDbXrecord" : "AcDbDictionary");
            marked = true;
        }
        if (!isFixedGroup(code) || code == 100) {
            appendGroup(drawing, id, code, item.cdr());
        }
    }
    if (!marked) {
        drawing.appendTag(id, 100, type == "XRECORD" ? "AcDbXrecord" : "AcDbDictionary");
    }
    return Made{id, {}};
}

}  // namespace

std::optional<Made> makeRecord(Drawing& drawing, const Value& given, Making& making, bool& tablesChanged) {
    const std::string type = typeOfList(given);
    const Value list = takenList(given, type);
    if (type == "BLOCK") {
        return beginBlock(drawing, list, making, tablesChanged);
    }
    if (type == "ENDBLK") {
        if (making.block.empty()) {
            return std::nullopt;
        }
        Made made{NoRecord, making.block};
        making = {};
        return made;
    }
    if (type.empty() || type == "BLOCK_RECORD" || type == "VIEWPORT") {
        return std::nullopt;
    }
    if (const auto table = tableOf(type)) {
        tablesChanged = true;
        return makeTableRecord(drawing, *table, list);
    }
    if (type == "XRECORD" || type == "DICTIONARY") {
        return makeObject(drawing, type, list);
    }
    return makeEntity(drawing, type, list, making, tablesChanged);
}

}  // namespace drafthost::automation
