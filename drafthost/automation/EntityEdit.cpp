// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/EntityEdit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "drafthost/automation/DefaultList.h"
#include "drafthost/automation/DxfList.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EmbeddedText.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"

namespace drafthost::automation {

bool isFixedGroup(int code) {
    return code < 0 || code == 0 || code == 5 || code == 105 || code == 100 || code == 102 || code == 330 ||
           code == 410 || code == 67;
}

namespace {

bool isEntity(const Drawing& drawing, RecordId id) {
    const std::string_view type = drawing.type(id);
    return !tableOf(type) && type != "BLOCK" && type != "ENDBLK" && drawing.record(id).find(8);
}

}  // namespace

std::string typeOfList(const Value& list) {
    const Value* type = groupOf(list, 0);
    return type == nullptr ? "" : lisp::upperCase(type->toString());
}

namespace {

/// Groups of which an entity of any kind has one.
bool isSingle(std::string_view type, int code) {
    static constexpr std::array Plain = {"LINE", "CIRCLE",  "ARC",   "POINT",  "TEXT",  "INSERT",
                                         "RAY",  "ELLIPSE", "XLINE", "VERTEX", "SOLID", "LAYER"};
    if (code == 8 || code == 6 || code == 62 || code == 48 || code == 60 || code == 370 || code == 420 ||
        code == 39 || code == 210 || code == 67 || code == 410) {
        return true;
    }
    return code >= 0 && code != 100 && code != 102 && code != 330 && code != 360 &&
           std::ranges::find(Plain, type) != Plain.end();
}

Value converted(const Value& pair) {
    const int code = pair.car().toInt();
    const Value& value = pair.cdr();
    const ValueKind kind = code < 0 ? ValueKind::Text : kindOf(code);
    const bool whole = kind == ValueKind::Int16 || kind == ValueKind::Int32 || kind == ValueKind::Bool;
    if (whole && value.isReal()) {
        return Value::cons(pair.car(),
                           Value::integer(static_cast<std::int32_t>(std::lround(value.toReal()))));
    }
    return pair;
}

}  // namespace

Value takenList(const Value& list, std::string_view type) {
    const std::vector<Value> items = list.items();
    std::vector<Value> taken;
    bool inGroup = false;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const int code = items[i].car().toInt();
        if (code == 102 && items[i].cdr().isString()) {
            inGroup = items[i].cdr().toString().find('{') != std::string::npos;
        }
        const bool later = !inGroup && isSingle(type, code) &&
                           std::any_of(items.begin() + static_cast<std::ptrdiff_t>(i) + 1, items.end(),
                                       [&](const Value& other) { return other.car().toInt() == code; });
        if (!later) {
            taken.push_back(converted(items[i]));
        }
    }
    return Value::list(taken);
}

bool referencesAreValid(const Drawing& drawing, std::string_view type, const Value& list) {
    const auto names = [&](int code, Table table) {
        const Value* name = groupOf(list, code);
        return name == nullptr || findEntry(drawing, table, name->toString()) != NoRecord;
    };
    if (const Value* linetype = groupOf(list, 6)) {
        const std::string name = foldCase(linetype->toString());
        if (name != foldCase("BYLAYER") && name != foldCase("BYBLOCK") && name != foldCase("CONTINUOUS") &&
            findEntry(drawing, Table::Ltype, linetype->toString()) == NoRecord) {
            return false;
        }
    }
    const bool text = type == "TEXT" || type == "MTEXT" || type == "ATTRIB" || type == "ATTDEF";
    if (text && groupOf(list, 7) != nullptr &&
        foldCase(groupOf(list, 7)->toString()) != foldCase("Standard") && !names(7, Table::Style)) {
        return false;
    }
    if (type == "INSERT" && groupOf(list, 2) != nullptr &&
        findBlock(drawing, groupOf(list, 2)->toString()) == nullptr) {
        return false;
    }
    if (const Value* data = groupOf(list, -3)) {
        for (Value rest = *data; rest.isCons(); rest = rest.cdr()) {
            const Value name = rest.car().isCons() ? rest.car().car() : Value();
            if (name.isString() && foldCase(name.toString()) != foldCase("ACAD") &&
                findEntry(drawing, Table::Appid, name.toString()) == NoRecord) {
                return false;
            }
        }
    }
    const Value* colour = groupOf(list, 62);
    return colour == nullptr || !colour->isInt() || (colour->toInt() >= -256 && colour->toInt() <= 256);
}

bool needLayer(Drawing& drawing, const Value& list, bool& tablesChanged) {
    const Value* layer = groupOf(list, 8);
    if (layer == nullptr) {
        return true;
    }
    const std::string name = layer->toString();
    if (name.find_first_not_of(' ') == std::string::npos ||
        name.find_first_of("<>/\\\":;?*=`") != std::string::npos) {
        return false;
    }
    if (findEntry(drawing, Table::Layer, layer->toString()) == NoRecord) {
        addEntry(drawing, Table::Layer, layer->toString());
        tablesChanged = true;
    }
    return true;
}

namespace {

std::map<int, std::vector<std::size_t>> groupsOf(const Record& record) {
    std::map<int, std::vector<std::size_t>> groups;
    const std::size_t end = record.xdata();
    bool inGroup = false;
    for (std::size_t i = 1; i < end; i += groupWidth(record, i)) {
        const int code = record.code(i);
        if (code == 102) {
            inGroup = record.raw(i).find('{') != std::string_view::npos;
        }
        if (!isFixedGroup(code) && !inGroup && code != 999) {
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
        if (skip || (isFixedGroup(code) && code != 100)) {
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

}  // namespace

bool isLocked(const Drawing& drawing, RecordId id) {
    constexpr std::int64_t Locked = 4;
    if (!isEntity(drawing, id)) {
        return false;
    }
    const RecordId layer = findEntry(drawing, Table::Layer, drawing.record(id).textOr(8, "0"));
    return layer != NoRecord && (drawing.record(layer).integerOr(70, 0) & Locked) != 0;
}

namespace {

/// The same of what the list changes: what the drawing has had wrong all along is left alone.
bool changedReferencesAreValid(const Drawing& drawing, RecordId id, const Value& list) {
    const Record record = drawing.record(id);
    std::vector<Value> fresh;
    for (const Value& item : list.items()) {
        const int code = item.car().toInt();
        const bool named = code == 2 || code == 6 || code == 7;
        if (!named || !item.cdr().isString() || record.textOr(code, "") != item.cdr().toString()) {
            fresh.push_back(item);
        }
    }
    return referencesAreValid(drawing, record.type(), Value::list(fresh));
}

/// Moves an entity between model space and the active sheet, where the list wants that.
bool moveToSpace(Drawing& drawing, RecordId id, const Value& list) {
    const Layout* now = layoutOf(drawing, id);
    const Value* sheet = groupOf(list, 410);
    const Value* space = groupOf(list, 67);
    if (now == nullptr || (sheet == nullptr && space == nullptr)) {
        return true;
    }
    const bool paper = !now->model;
    const bool spaceSays = space != nullptr && space->isInt() && (space->toInt() == 1) != paper;
    const bool sheetSays = sheet != nullptr && foldCase(sheet->toString()) != foldCase(now->name);
    if (!spaceSays && !sheetSays) {
        return true;
    }
    const Layout* wanted = nullptr;
    for (const Layout& layout : layouts(drawing)) {
        const bool byName = sheetSays && foldCase(layout.name) == foldCase(sheet->toString());
        const bool bySpace = !sheetSays && (layout.model == paper) && (layout.model || isActivePaper(layout));
        if (byName || bySpace) {
            wanted = &layout;
        }
    }
    const auto inSection = [](const Layout& layout) { return layout.model || isActivePaper(layout); };
    if (wanted == nullptr || !inSection(*wanted) || !inSection(*now)) {
        return false;
    }
    const Layout target = *wanted;
    if (target.model) {
        if (const auto i = drawing.record(id).find(67)) {
            drawing.removeTag(id, *i);
        }
    } else {
        drawing.put(id, 67, std::int64_t{1}, {100, 330, 5});
    }
    if (const auto i = drawing.record(id).find(410)) {
        drawing.setTag(id, *i, target.name);
    }
    if (target.blockRecord != NoRecord && drawing.record(id).find(330)) {
        drawing.put(id, 330, formatHandle(drawing.handle(target.blockRecord)));
    }
    return true;
}

}  // namespace

bool modifyRecord(Drawing& drawing, RecordId id, const Value& given, bool& tablesChanged) {
    const std::string type = typeOfList(given);
    const Value list = takenList(given, lisp::upperCase(drawing.type(id)));
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
        ((entity || drawing.type(id) == "LAYER") && !changedReferencesAreValid(drawing, id, list)) ||
        (entity && !moveToSpace(drawing, id, list))) {
        return false;
    }
    // A layer that the drawing lacks but the entity already names is left alone.
    const Value* layer = groupOf(list, 8);
    if (entity && layer != nullptr && layer->toString() != drawing.record(id).textOr(8, "") &&
        !needLayer(drawing, list, tablesChanged)) {
        return false;
    }
    const auto table = tableOf(drawing.type(id));
    std::vector<Value> items = list.items();
    if (drawing.type(id) == "LWPOLYLINE") {
        dropVertexDefaults(items);
    }
    std::map<int, std::vector<const Value*>> wanted;
    bool inGroup = false;
    for (const Value& item : items) {
        const int code = item.car().toInt();
        if (code == 102) {
            inGroup = item.cdr().isString() && item.cdr().toString().find('{') != std::string::npos;
        }
        if (!isFixedGroup(code) && !inGroup && !isDefault(drawing.record(id), code, item.cdr())) {
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
    syncEmbeddedText(drawing, id);
    return true;
}

}  // namespace drafthost::automation
