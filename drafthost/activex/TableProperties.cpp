// SPDX-License-Identifier: GPL-3.0-or-later
// Records of the symbol tables.

#include <algorithm>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/Purge.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {
namespace {

bool isValidName(const std::string& name) {
    return !name.empty() && name.find_first_of("<>/\\\":;?*|,=`") == std::string::npos &&
           name.front() != ' ' && name.back() != ' ';
}

Result getName(Call& call) {
    return Result::text(entryName(call.drawing(), call.id()));
}

void putName(Call& call, const Value& value) {
    Drawing& drawing = call.drawing();
    const auto table = tableOf(drawing.type(call.id()));
    const std::string& name = textOf(value);
    const std::string old = entryName(drawing, call.id());
    if (name == old) {
        return;
    }
    const bool fixed = old == "0" || old.find('|') != std::string::npos ||
                       foldCase(old) == foldCase("Standard") || foldCase(old) == foldCase("Continuous");
    const RecordId other = findEntry(drawing, *table, name);
    if (!isValidName(name) || fixed) {
        failAutomation("Invalid input");
    }
    if (other != NoRecord && other != call.id()) {
        failAutomation("Duplicate key");
    }
    renameEntry(drawing, *table, call.id(), name);
    call.changed(true);
}

bool isCurrentLayer(const Call& call) {
    return foldCase(headerText(call.drawing(), "$CLAYER", "0")) ==
           foldCase(entryName(call.drawing(), call.id()));
}

std::int64_t layerColor(const Call& call) {
    return call.record().integerOr(62, 7);
}
Result getColor(Call& call) {
    return Result::integer(std::abs(layerColor(call)));
}
void putColor(Call& call, const Value& value) {
    const int index = integerOf(value);
    if (index < 1 || index > 255) {
        failAutomation("Invalid input");
    }
    setGroup(call.drawing(), call.id(), 62, std::int64_t{layerColor(call) < 0 ? -index : index});
    removeGroup(call.drawing(), call.id(), 420);
    removeGroup(call.drawing(), call.id(), 430);
    call.changed(true);
}
Result isOn(Call& call) {
    return Result::boolean(layerColor(call) >= 0);
}
void putOn(Call& call, const Value& value) {
    const std::int64_t color = std::abs(layerColor(call));
    setGroup(call.drawing(), call.id(), 62, booleanOf(value) ? color : -color);
    call.changed(true);
}
void putFreeze(Call& call, const Value& value) {
    constexpr std::int64_t Frozen = 1;
    const bool freeze = booleanOf(value);
    if (freeze && isCurrentLayer(call)) {
        failAutomation("Invalid layer");
    }
    const std::int64_t bits = call.record().integerOr(70, 0);
    setGroup(call.drawing(), call.id(), 70, freeze ? bits | Frozen : bits & ~Frozen);
    call.changed(true);
}
void putLinetype(Call& call, const Value& value) {
    const RecordId type = findEntry(call.drawing(), Table::Ltype, textOf(value));
    if (type == NoRecord) {
        failAutomation("Key not found");
    }
    setGroup(call.drawing(), call.id(), 6, entryName(call.drawing(), type));
    call.changed(true);
}
Result isUsed(Call& call) {
    return Result::boolean(isReferenced(call.drawing(), call.id()));
}

constexpr const char* DescriptionApp = "AcAecLayerStandard";

std::optional<std::size_t> descriptionTag(const Record& record) {
    for (std::size_t i = record.xdata(); i + 2 < record.size(); ++i) {
        if (record.code(i) == 1001 && record.text(i) == DescriptionApp) {
            return record.code(i + 1) == 1000 && record.code(i + 2) == 1000 ? std::optional(i + 2)
                                                                            : std::nullopt;
        }
    }
    return std::nullopt;
}
Result getDescription(Call& call) {
    const auto i = descriptionTag(call.record());
    return Result::text(i ? call.record().text(*i) : "");
}
void putDescription(Call& call, const Value& value) {
    Drawing& drawing = call.drawing();
    if (const auto i = descriptionTag(call.record())) {
        drawing.setTag(call.id(), *i, textOf(value));
    } else {
        if (findEntry(drawing, Table::Appid, DescriptionApp) == NoRecord) {
            addEntry(drawing, Table::Appid, DescriptionApp);
        }
        drawing.appendTag(call.id(), 1001, DescriptionApp);
        drawing.appendTag(call.id(), 1000, "");
        drawing.appendTag(call.id(), 1000, textOf(value));
    }
    call.changed(true);
}

Result getFont(Call& call) {
    const Record r = call.record();
    std::string face;
    std::int64_t bits = 0;
    for (std::size_t i = r.xdata(); i < r.size(); ++i) {
        if (r.code(i) == 1000) {
            face = r.text(i);
        } else if (r.code(i) == 1071) {
            bits = r.integer(i);
        }
    }
    constexpr std::int64_t Bold = 0x2000000;
    constexpr std::int64_t Italic = 0x1000000;
    call.put(0, Value::string(face));
    call.put(1, (bits & Bold) != 0 ? trueSymbol() : falseSymbol());
    call.put(2, (bits & Italic) != 0 ? trueSymbol() : falseSymbol());
    call.put(3, Value::integer(static_cast<std::int32_t>((bits >> 8) & 0xff)));
    call.put(4, Value::integer(static_cast<std::int32_t>(bits & 0xff)));
    return {};
}
Result setFont(Call& call) {
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    const std::int64_t bits = (call.boolean(1) ? 0x2000000 : 0) + (call.boolean(2) ? 0x1000000 : 0) +
                              (static_cast<std::int64_t>(call.integer(3) & 0xff) << 8) +
                              (call.integer(4) & 0xff);
    for (std::size_t i = drawing.record(id).size(); i-- > drawing.record(id).xdata();) {
        drawing.removeTag(id, i);
    }
    drawing.appendTag(id, 1001, "ACAD");
    drawing.appendTag(id, 1000, call.text(0));
    drawing.appendTag(id, 1071, bits);
    call.changed(true);
    return {};
}
void putHeight(Call& call, const Value& value) {
    const double height = realOf(value);
    if (height < 0) {
        failAutomation("Invalid input");
    }
    setGroup(call.drawing(), call.id(), 40, height);
    call.changed(true);
}

Result copyFrom(Call& call) {
    // A style takes what another has; the drawing's present settings are in the header.
    const Object& other = call.objectArg(0);
    Drawing& drawing = call.drawing();
    if (other.record == NoRecord || drawing.type(other.record) != "DIMSTYLE") {
        failAutomation("Not applicable");
    }
    const auto isHead = [](int code) {
        return code == 0 || code == 105 || code == 330 || code == 100 || code == 2;
    };
    for (std::size_t i = drawing.record(call.id()).xdata(); i-- > 1;) {
        const int code = drawing.record(call.id()).code(i);
        if (!isHead(code) && code != 102 && code != 70) {
            drawing.removeTag(call.id(), i);
        }
    }
    const Record source = drawing.record(other.record);
    for (std::size_t i = 1; i < source.xdata(); ++i) {
        if (!isHead(source.code(i)) && source.code(i) != 102 && source.code(i) != 70 &&
            source.code(i) != 360) {
            drawing.insertTag(call.id(), drawing.record(call.id()).xdata(), source.code(i), source.value(i));
        }
    }
    call.changed(true);
    return {};
}

constexpr Property Name{"Name", Access::Custom, 2, 0, getName, putName};
constexpr Property Used{"Used", Access::Custom, 0, 0, isUsed};

constexpr Property Layer[] = {
    Name,
    {"Color", Access::Custom, 62, 7, getColor, putColor},
    {"TrueColor", Access::Custom, 420, 0, getTrueColor, putTrueColor},
    {"LayerOn", Access::Custom, 62, 0, isOn, putOn},
    {"Freeze", Access::Flag, 70, 1, nullptr, putFreeze},
    {"Lock", Access::Flag, 70, 4},
    {"ViewportDefault", Access::Flag, 70, 2},
    {"Linetype", Access::Text, 6, 0, nullptr, putLinetype, false, "Continuous"},
    {"Lineweight", Access::Integer, 370, -3},
    {"Plottable", Access::Bool, 290, 1},
    {"Description", Access::Custom, 0, 0, getDescription, putDescription},
    Used,
};
constexpr Property Linetype[] = {Name, {"Description", Access::Text, 3}};
constexpr Property TextStyle[] = {
    {"Name", Access::Custom, 2, 0, getName}, {"FontFile", Access::Text, 3},
    {"BigFontFile", Access::Text, 4},        {"Height", Access::Real, 40, 0, nullptr, putHeight},
    {"LastHeight", Access::Real, 42, 0.2},   {"Width", Access::Real, 41, 1},
    {"ObliqueAngle", Access::Angle, 50, 0},  {"TextGenerationFlag", Access::Integer, 71, 0},
};
constexpr Method TextStyleMethods[] = {{"GetFont", 5, 5, getFont}, {"SetFont", 5, 5, setFont}};
constexpr Method DimStyleMethods[] = {{"CopyFrom", 1, 1, copyFrom}};
constexpr Property Named[] = {Name};
constexpr Property View[] = {
    Name,
    {"Center", Access::Point, 10},
    {"Height", Access::Real, 40, 1},
    {"Width", Access::Real, 41, 1},
    {"Direction", Access::Point, 11},
    {"Target", Access::Point, 12},
};
constexpr Property Ucs[] = {
    Name,
    {"Origin", Access::Point, 10},
    {"XVector", Access::Point, 11},
    {"YVector", Access::Point, 12},
};
constexpr Property Vport[] = {
    Name,
    {"Center", Access::Point, 12},
    {"Height", Access::Real, 40, 1},
    {"Direction", Access::Point, 16},
    {"Target", Access::Point, 17},
    {"SnapOn", Access::Bool, 75, 0},
    {"GridOn", Access::Bool, 76, 0},
    {"UCSIconOn", Access::Flag, 74, 1},
    {"UCSIconAtOrigin", Access::Flag, 74, 2},
    {"LowerLeftCorner", Access::Point, 10, 0, nullptr, nullptr, true},
    {"UpperRightCorner", Access::Point, 11, 0, nullptr, nullptr, true},
};

}  // namespace

Properties layerProperties() {
    return Layer;
}
Properties linetypeProperties() {
    return Linetype;
}
Properties textStyleProperties() {
    return TextStyle;
}
Methods textStyleMethods() {
    return TextStyleMethods;
}
Properties dimStyleProperties() {
    return Named;
}
Methods dimStyleMethods() {
    return DimStyleMethods;
}
Properties namedProperties() {
    return Named;
}
Properties viewProperties() {
    return View;
}
Properties ucsProperties() {
    return Ucs;
}
Properties vportProperties() {
    return Vport;
}

Result eraseRecord(Call& call) {
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    const std::string type(drawing.type(id));
    if (type == "BLOCK_RECORD" || type == "BLOCK") {
        const std::string name = drawing.record(id).textOr(2, "");
        if (isReferenced(drawing, id)) {
            failAutomation("Object is referenced by other object(s)");
        }
        deleteBlock(drawing, name);
        call.changed(true);
        return {};
    }
    if (const auto table = tableOf(type)) {
        const std::string name = entryName(drawing, id);
        if ((type == "LAYER" && (name == "0" || isCurrentLayer(call))) ||
            (type == "VPORT" && foldCase(name) == foldCase("*Active"))) {
            failAutomation("Cannot be erased by caller");
        }
        if (type != "VIEW" && type != "UCS" && isReferenced(drawing, id)) {
            failAutomation("Object is referenced by other object(s)");
        }
        deleteEntry(drawing, *table, id);
        call.changed(true);
        return {};
    }
    if (type == "LAYOUT") {
        deleteLayout(call);
        return {};
    }
    const RecordId owner = drawing.findHandle(drawing.record(id).handleOr(330, 0));
    const std::uint64_t handle = drawing.handle(id);
    if (owner != NoRecord && drawing.type(owner) == "DICTIONARY") {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, owner)) {
            if (entry.handle == handle) {
                drawing.removeTag(owner, entry.tag + 1);
                drawing.removeTag(owner, entry.tag);
                break;
            }
        }
    }
    drawing.deleteRecord(id);
    call.changed();
    return {};
}

}  // namespace drafthost::activex
