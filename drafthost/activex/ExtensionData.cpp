// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/activex/ExtensionData.h"

#include "drafthost/automation/DxfList.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {

Value tagForModel(const Drawing& drawing, const Record& record, std::size_t i, std::size_t& width) {
    width = automation::groupWidth(record, i);
    const int code = record.code(i);
    if (width > 1) {
        const Point p = record.point(i);
        return Value::point(p);
    }
    if (kindOf(code) == ValueKind::Handle || code == 1005) {
        return Value::string(record.text(i));
    }
    return automation::groupValue(drawing, record, i);
}

void appendFromModel(Drawing& drawing, RecordId id, int code, const Value& value) {
    const Value& plain = unwrapped(value);
    if (arrayOf(plain) != nullptr || plain.isCons()) {
        const Point p = pointOf(plain);
        drawing.appendTag(id, code, p.x);
        drawing.appendTag(id, code + 10, p.y);
        drawing.appendTag(id, code + 20, p.z);
    } else if (plain.isString()) {
        drawing.appendTag(id, code, plain.toString());
    } else if (plain.isReal() || kindOf(code) == ValueKind::Real) {
        drawing.appendTag(id, code, realOf(plain));
    } else {
        drawing.appendTag(id, code, std::int64_t{integerOf(plain)});
    }
}

void readExtendedData(Call& call) {
    const std::string wanted = foldCase(call.text(0));
    const Record record = call.record();
    std::vector<Value> types;
    std::vector<Value> values;
    bool shown = false;
    for (std::size_t i = record.xdata(); i < record.size();) {
        std::size_t width = 1;
        if (record.code(i) == 1001) {
            shown = wanted.empty() || foldCase(record.text(i)) == wanted;
        }
        const Value value = tagForModel(call.drawing(), record, i, width);
        if (shown) {
            types.push_back(Value::integer(record.code(i)));
            values.push_back(value.isCons() ? makeArrayVariant(VbDouble, value.items()) : makeVariant(value));
        }
        i += width;
    }
    call.put(1, types.empty() ? Value() : makeArray(VbInteger, types));
    call.put(2, types.empty() ? Value() : makeArray(VbVariant, values));
}

namespace {

void removeApplication(Drawing& drawing, RecordId id, const std::string& folded) {
    for (std::size_t i = drawing.record(id).xdata(); i < drawing.record(id).size();) {
        if (drawing.record(id).code(i) != 1001 || foldCase(drawing.record(id).text(i)) != folded) {
            ++i;
            continue;
        }
        do {
            drawing.removeTag(id, i);
        } while (i < drawing.record(id).size() && drawing.record(id).code(i) != 1001);
    }
}

}  // namespace

void writeExtendedData(Call& call) {
    const std::vector<Value> types = itemsOf(call.arg(0));
    const std::vector<Value> values = itemsOf(call.arg(1));
    if (types.size() != values.size() || types.empty() || integerOf(types[0]) != 1001) {
        fail("ActiveX Server returned an error: Invalid argument");
    }
    Drawing& drawing = call.drawing();
    for (std::size_t i = 0; i < types.size(); ++i) {
        const int code = integerOf(types[i]);
        if (code < 1000 || code > 1071) {
            fail("ActiveX Server returned an error: Invalid argument");
        }
        if (code != 1001) {
            continue;
        }
        const std::string& name = textOf(values[i]);
        if (findEntry(drawing, Table::Appid, name) == NoRecord) {
            addEntry(drawing, Table::Appid, name);
        }
        removeApplication(drawing, call.id(), foldCase(name));
    }
    for (std::size_t i = 0; i < types.size(); ++i) {
        const int code = integerOf(types[i]);
        const bool empty = code == 1001 && (i + 1 == types.size() || integerOf(types[i + 1]) == 1001);
        if (!empty) {
            appendFromModel(drawing, call.id(), code, values[i]);
        }
    }
}

}  // namespace drafthost::activex
