// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/EntityEdit.h"

#include <algorithm>
#include <map>

#include "drafthost/automation/DxfList.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"

namespace drafthost::automation {
namespace {

/// Groups that name the record or tell where it stands; they are not for the list to change.
bool isFixed(int code) {
    return code < 0 || code == 0 || code == 5 || code == 105 || code == 100 || code == 102 || code == 330 ||
           code == 410 || code == 67;
}

bool isEntity(const Drawing& drawing, RecordId id) {
    const std::string_view type = drawing.type(id);
    return !tableOf(type) && type != "BLOCK" && type != "ENDBLK" && drawing.record(id).find(8);
}

/// Whether linetype and colour of the list are ones that the drawing can have.
bool propertiesAreValid(const Drawing& drawing, const Value& list) {
    if (const Value* linetype = groupOf(list, 6)) {
        const std::string name = foldCase(linetype->toString());
        if (name != foldCase("BYLAYER") && name != foldCase("BYBLOCK") && name != foldCase("CONTINUOUS") &&
            findEntry(drawing, Table::Ltype, linetype->toString()) == NoRecord) {
            return false;
        }
    }
    const Value* colour = groupOf(list, 62);
    return colour == nullptr || (colour->toInt() >= -256 && colour->toInt() <= 256);
}

/// A layer that an entity is put on comes into being.
bool needLayer(Drawing& drawing, const Value& list, bool& tablesChanged) {
    const Value* layer = groupOf(list, 8);
    if (layer == nullptr) {
        return true;
    }
    if (layer->toString().empty()) {
        return false;
    }
    if (findEntry(drawing, Table::Layer, layer->toString()) == NoRecord) {
        addEntry(drawing, Table::Layer, layer->toString());
        tablesChanged = true;
    }
    return true;
}

std::map<int, std::vector<std::size_t>> groupsOf(const Record& record) {
    std::map<int, std::vector<std::size_t>> groups;
    const std::size_t end = record.xdata();
    bool inGroup = false;
    for (std::size_t i = 1; i < end; i += groupWidth(record, i)) {
        const int code = record.code(i);
        if (code == 102) {
            inGroup = record.raw(i).find('{') != std::string_view::npos;
        }
        if (!isFixed(code) && !inGroup && code != 999) {
            groups[code].push_back(i);
        }
    }
    return groups;
}

void rewrite(Drawing& drawing, RecordId id, const std::vector<Value>& items) {
    const Record record = drawing.record(id);
    // The head stays: all up to the layer's subclass, with handle, owner and reactors.
    std::size_t head = 1;
    bool inGroup = false;
    for (; head < record.xdata(); ++head) {
        const int code = record.code(head);
        if (code == 102) {
            inGroup = record.raw(head).find('{') != std::string_view::npos;
        } else if (!inGroup && code != 5 && code != 330 &&
                   !(code == 100 && record.text(head) == "AcDbEntity") && code != 67 && code != 410) {
            break;
        }
    }
    for (std::size_t i = record.xdata(); i-- > head;) {
        drawing.removeTag(id, i);
    }
    bool skipMarker = drawing.record(id).subclass("AcDbEntity") != drawing.record(id).size();
    bool skip = false;
    for (const Value& item : items) {
        const int code = item.car().toInt();
        if (code == 102) {
            skip = item.cdr().toString().find('{') != std::string::npos;
            continue;
        }
        if (skip || (isFixed(code) && code != 100)) {
            continue;
        }
        if (code == 100 && item.cdr().toString() == "AcDbEntity" && skipMarker) {
            skipMarker = false;
            continue;
        }
        const std::size_t before = drawing.record(id).xdata();
        if (before == drawing.record(id).size()) {
            appendGroup(drawing, id, code, item.cdr());
        } else {
            addGroup(drawing, id, code, item.cdr());
        }
    }
}

std::string upperType(const Value& list) {
    const Value* type = groupOf(list, 0);
    std::string name = type == nullptr ? "" : lisp::upperCase(type->toString());
    return name;
}

/// The subclass markers that a list from an old program leaves out.
std::string_view subclassOf(std::string_view type) {
    static const std::map<std::string_view, std::string_view> markers = {
        {"LINE", "AcDbLine"},           {"CIRCLE", "AcDbCircle"}, {"POINT", "AcDbPoint"},
        {"TEXT", "AcDbText"},           {"MTEXT", "AcDbMText"},   {"LWPOLYLINE", "AcDbPolyline"},
        {"SOLID", "AcDbTrace"},         {"TRACE", "AcDbTrace"},   {"3DFACE", "AcDbFace"},
        {"ELLIPSE", "AcDbEllipse"},     {"SPLINE", "AcDbSpline"}, {"INSERT", "AcDbBlockReference"},
        {"POLYLINE", "AcDb2dPolyline"}, {"RAY", "AcDbRay"},       {"XLINE", "AcDbXline"},
        {"ARC", "AcDbCircle"},          {"ATTRIB", "AcDbText"},   {"ATTDEF", "AcDbText"},
    };
    const auto found = markers.find(type);
    return found == markers.end() ? std::string_view() : found->second;
}

/// Groups without which a type makes no entity.
bool hasEssentials(const std::string& type, const Value& list) {
    static const std::map<std::string_view, std::vector<int>> needed = {
        {"LINE", {10, 11}},      {"CIRCLE", {10, 40}}, {"ARC", {10, 40, 50, 51}}, {"POINT", {10}},
        {"TEXT", {10, 40, 1}},   {"MTEXT", {10, 1}},   {"INSERT", {2, 10}},       {"LWPOLYLINE", {10}},
        {"SOLID", {10, 11, 12}}, {"VERTEX", {10}},     {"ELLIPSE", {10, 11, 40}}, {"3DFACE", {10, 11, 12}},
    };
    const auto found = needed.find(type);
    return found == needed.end() ||
           std::ranges::all_of(found->second, [&](int code) { return groupOf(list, code) != nullptr; });
}

/// The polyline or insert that a sub-entity at the end of the drawing belongs to, while it is open.
RecordId openMain(const Drawing& drawing) {
    RecordId last = lastEntity(drawing);
    if (last == NoRecord) {
        return NoRecord;
    }
    const std::string_view type = drawing.type(last);
    const Record record = drawing.record(last);
    if (type != "POLYLINE" && !(type == "INSERT" && record.integerOr(66, 0) == 1)) {
        return NoRecord;
    }
    for (RecordId id = nextEntity(drawing, last, true); id != NoRecord; id = nextEntity(drawing, id, true)) {
        if (drawing.type(id) == "SEQEND") {
            return NoRecord;
        }
    }
    return last;
}

std::optional<RecordId> makeEntity(Drawing& drawing, const std::string& type, const Value& list,
                                   bool& tablesChanged) {
    const bool sub = type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
    const RecordId main = sub ? openMain(drawing) : NoRecord;
    if ((sub && main == NoRecord) || !hasEssentials(type, list) || !propertiesAreValid(drawing, list)) {
        return std::nullopt;
    }
    if (type == "INSERT" && findBlock(drawing, groupOf(list, 2)->toString()) == nullptr) {
        return std::nullopt;
    }
    if (!needLayer(drawing, list, tablesChanged)) {
        return std::nullopt;
    }
    const Value* layer = groupOf(list, 8);
    const Value* space = groupOf(list, 67);
    const bool paper = space != nullptr ? space->toInt() == 1 : !modelIsCurrent(drawing);
    const RecordId id = addEntity(
        drawing, type, layer != nullptr ? layer->toString() : headerText(drawing, "$CLAYER", "0"), paper);
    if (id == NoRecord) {
        return std::nullopt;
    }
    if (main != NoRecord && drawing.versionNumber() >= 1015) {
        drawing.put(id, 330, formatHandle(drawing.handle(main)), {5});
    }
    const bool marked = drawing.versionNumber() >= 1012;
    bool hasMarkers = false;
    for (const Value& item : list.items()) {
        hasMarkers |= item.car().toInt() == 100 && item.cdr().toString() != "AcDbEntity";
    }
    if (marked) {
        for (const int code : {6, 62, 48, 60, 370, 420, 430, 440}) {
            if (const Value* value = groupOf(list, code)) {
                appendGroup(drawing, id, code, *value);
            }
        }
        if (!hasMarkers && !subclassOf(type).empty()) {
            drawing.appendTag(id, 100, std::string(subclassOf(type)));
        }
    }
    const auto isCommon = [&](int code) {
        return code == 6 || code == 62 || code == 48 || code == 60 || code == 370 || code == 420 ||
               code == 430 || code == 440;
    };
    const bool countVertices = type == "LWPOLYLINE" && groupOf(list, 90) == nullptr;
    if (countVertices) {
        const auto count =
            std::ranges::count_if(list.items(), [](const Value& v) { return v.car().toInt() == 10; });
        drawing.appendTag(id, 90, static_cast<std::int64_t>(count));
    }
    for (const Value& item : list.items()) {
        const int code = item.car().toInt();
        if (code == 8 || (marked && isCommon(code)) || (code == 100 && !marked) ||
            (isFixed(code) && code != 100) || (code == 100 && item.cdr().toString() == "AcDbEntity")) {
            continue;
        }
        if (type == "ARC" && marked && !hasMarkers && code == 50) {
            drawing.appendTag(id, 100, "AcDbArc");
        }
        appendGroup(drawing, id, code, item.cdr());
    }
    if (type == "TEXT" && marked && !hasMarkers) {
        drawing.appendTag(id, 100, "AcDbText");
    }
    if (const Value* data = groupOf(list, -3)) {
        setExtendedData(drawing, id, *data);
    }
    return id;
}

std::optional<RecordId> makeTableRecord(Drawing& drawing, Table table, const Value& list) {
    const Value* name = groupOf(list, 2);
    if (name == nullptr || name->toString().empty() ||
        findEntry(drawing, table, name->toString()) != NoRecord || !propertiesAreValid(drawing, list)) {
        return std::nullopt;
    }
    const RecordId id = addEntry(drawing, table, name->toString());
    bool ignored = false;
    modifyRecord(drawing, id, list, ignored);
    return id;
}

std::optional<RecordId> makeObject(Drawing& drawing, const std::string& type, const Value& list) {
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
        if (!marked && !isFixed(code)) {
            drawing.appendTag(id, 100, type == "XRECORD" ? "AcDbXrecord" : "AcDbDictionary");
            marked = true;
        }
        if (!isFixed(code) || code == 100) {
            appendGroup(drawing, id, code, item.cdr());
        }
    }
    if (!marked) {
        drawing.appendTag(id, 100, type == "XRECORD" ? "AcDbXrecord" : "AcDbDictionary");
    }
    return id;
}

}  // namespace

bool isLocked(const Drawing& drawing, RecordId id) {
    constexpr std::int64_t Locked = 4;
    if (!isEntity(drawing, id)) {
        return false;
    }
    const RecordId layer = findEntry(drawing, Table::Layer, drawing.record(id).textOr(8, "0"));
    return layer != NoRecord && (drawing.record(layer).integerOr(70, 0) & Locked) != 0;
}

bool modifyRecord(Drawing& drawing, RecordId id, const Value& list, bool& tablesChanged) {
    const std::string type = upperType(list);
    if (!type.empty() && type != lisp::upperCase(drawing.type(id))) {
        return false;
    }
    const Value* handle = groupOf(list, drawing.type(id) == "DIMSTYLE" ? 105 : 5);
    if (handle != nullptr && drawing.handle(id) != 0 &&
        (!handle->isString() || parseHandle(handle->toString()) != drawing.handle(id))) {
        return false;
    }
    const bool entity = isEntity(drawing, id);
    if (isLocked(drawing, id) ||
        ((entity || drawing.type(id) == "LAYER") && !propertiesAreValid(drawing, list))) {
        return false;
    }
    // A layer that the drawing lacks but the entity already names is left alone.
    const Value* layer = groupOf(list, 8);
    if (entity && layer != nullptr && layer->toString() != drawing.record(id).textOr(8, "") &&
        !needLayer(drawing, list, tablesChanged)) {
        return false;
    }
    const auto table = tableOf(drawing.type(id));
    const std::vector<Value> items = list.items();
    std::map<int, std::vector<const Value*>> wanted;
    bool inGroup = false;
    for (const Value& item : items) {
        const int code = item.car().toInt();
        if (code == 102) {
            inGroup = item.cdr().isString() && item.cdr().toString().find('{') != std::string::npos;
        }
        if (!isFixed(code) && !inGroup) {
            wanted[code].push_back(&item.cdr());
        }
    }
    if (table) {
        tablesChanged = true;
        if (const auto name = wanted.find(2); name != wanted.end()) {
            const std::string& fresh = name->second[0]->toString();
            if (fresh != entryName(drawing, id)) {
                const RecordId other = findEntry(drawing, *table, fresh);
                if (fresh.empty() || (other != NoRecord && other != id)) {
                    return false;
                }
                renameEntry(drawing, *table, id, fresh);
            }
            wanted.erase(name);
        }
    }
    const auto present = groupsOf(drawing.record(id));
    for (const auto& [code, values] : wanted) {
        const auto old = present.find(code);
        const std::size_t count = old == present.end() ? 0 : old->second.size();
        if (count != values.size() && (count > 1 || values.size() > 1)) {
            rewrite(drawing, id, items);
            wanted.clear();
            break;
        }
    }
    auto now = groupsOf(drawing.record(id));
    std::size_t size = drawing.record(id).size();
    for (const auto& [code, values] : wanted) {
        for (std::size_t k = 0; k < values.size(); ++k) {
            // Setting a point can add a tag and so move those behind it.
            if (drawing.record(id).size() != size) {
                now = groupsOf(drawing.record(id));
                size = drawing.record(id).size();
            }
            const auto at = now.find(code);
            if (at == now.end()) {
                addGroup(drawing, id, code, *values[k]);
            } else {
                setGroup(drawing, id, at->second[k], code, *values[k]);
            }
        }
    }
    if (const Value* data = groupOf(list, -3)) {
        setExtendedData(drawing, id, *data);
    }
    return true;
}

std::optional<RecordId> makeRecord(Drawing& drawing, const Value& list, bool& tablesChanged) {
    const std::string type = upperType(list);
    if (type.empty() || type == "BLOCK" || type == "ENDBLK" || type == "BLOCK_RECORD" || type == "VIEWPORT") {
        return std::nullopt;
    }
    if (const auto table = tableOf(type)) {
        tablesChanged = true;
        return makeTableRecord(drawing, *table, list);
    }
    if (type == "XRECORD" || type == "DICTIONARY") {
        return makeObject(drawing, type, list);
    }
    return makeEntity(drawing, type, list, tablesChanged);
}

}  // namespace drafthost::automation
