// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/DimensionVariables.h"

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

namespace {

using Kind = DimensionVariable::Kind;

constexpr int ByHandle = 1015;

std::string nameOfHandle(const Drawing& drawing, std::uint64_t handle) {
    const RecordId record = handle == 0 ? NoRecord : drawing.findHandle(handle);
    return record == NoRecord ? std::string() : entryName(drawing, record);
}

/// The code in the header, by the kind of the value there.
int headerCode(const DimensionVariable& variable) {
    switch (variable.kind) {
        case Kind::Real:
            return 40;
        case Kind::Integer:
            return 70;
        case Kind::Style:
            return 7;
        default:
            return 1;
    }
}

/// Before 2000 arrows stand in the style by name, under other codes.
int namedCode(const DimensionVariable& variable) {
    return variable.name == "DIMBLK"    ? 5
           : variable.name == "DIMBLK1" ? 6
           : variable.name == "DIMBLK2" ? 7
                                        : 0;
}

bool isInVersion(const Drawing& drawing, const DimensionVariable& variable) {
    const int code = variable.code;
    // R12 has the codes up to 178 and no handles; lineweights and the later units came with 2000.
    return drawing.versionNumber() >= ByHandle || (code < 179 && variable.kind != Kind::Style) ||
           (drawing.versionNumber() >= 1012 && code < 290 && code >= 179);
}

Value valueOf(const Drawing& drawing, RecordId style, const DimensionVariable& variable) {
    const Record record = drawing.record(style);
    switch (variable.kind) {
        case Kind::Real:
            return record.realOr(variable.code, variable.standard);
        case Kind::Integer:
            return record.integerOr(variable.code, static_cast<std::int64_t>(variable.standard));
        case Kind::Text:
            return record.textOr(variable.code, "");
        case Kind::Block:
            if (drawing.versionNumber() < ByHandle) {
                return namedCode(variable) != 0 ? record.textOr(namedCode(variable), "") : std::string();
            }
            return nameOfHandle(drawing, record.handleOr(variable.code, 0));
        case Kind::Style:
            break;
    }
    const std::string name = nameOfHandle(drawing, record.handleOr(variable.code, 0));
    return name.empty() ? std::string("Standard") : name;
}

std::uint64_t handleOfName(const Drawing& drawing, const DimensionVariable& variable,
                           const std::string& name) {
    if (variable.kind == Kind::Style) {
        const RecordId style = findEntry(drawing, Table::Style, name);
        return style == NoRecord ? 0 : drawing.handle(style);
    }
    for (const std::string& candidate : {name, "_" + name}) {
        const Block* block = name.empty() ? nullptr : findBlock(drawing, candidate);
        if (block != nullptr && block->blockRecord != NoRecord) {
            return drawing.handle(block->blockRecord);
        }
    }
    return 0;
}

void putHandle(Drawing& drawing, RecordId style, int code, std::uint64_t handle) {
    const auto at = drawing.record(style).find(code);
    if (handle != 0) {
        drawing.put(style, code, formatHandle(handle));
    } else if (at) {
        drawing.removeTag(style, *at);
    }
}

}  // namespace

const std::vector<DimensionVariable>& dimensionVariables() {
    static const std::vector<DimensionVariable> all = {
        {"DIMPOST", 3, Kind::Text, 0},       {"DIMAPOST", 4, Kind::Text, 0},
        {"DIMSCALE", 40, Kind::Real, 1},     {"DIMASZ", 41, Kind::Real, 0.18},
        {"DIMEXO", 42, Kind::Real, 0.0625},  {"DIMDLI", 43, Kind::Real, 0.38},
        {"DIMEXE", 44, Kind::Real, 0.18},    {"DIMRND", 45, Kind::Real, 0},
        {"DIMDLE", 46, Kind::Real, 0},       {"DIMTP", 47, Kind::Real, 0},
        {"DIMTM", 48, Kind::Real, 0},        {"DIMTXT", 140, Kind::Real, 0.18},
        {"DIMCEN", 141, Kind::Real, 0.09},   {"DIMTSZ", 142, Kind::Real, 0},
        {"DIMALTF", 143, Kind::Real, 25.4},  {"DIMLFAC", 144, Kind::Real, 1},
        {"DIMTVP", 145, Kind::Real, 0},      {"DIMTFAC", 146, Kind::Real, 1},
        {"DIMGAP", 147, Kind::Real, 0.09},   {"DIMALTRND", 148, Kind::Real, 0},
        {"DIMTOL", 71, Kind::Integer, 0},    {"DIMLIM", 72, Kind::Integer, 0},
        {"DIMTIH", 73, Kind::Integer, 1},    {"DIMTOH", 74, Kind::Integer, 1},
        {"DIMSE1", 75, Kind::Integer, 0},    {"DIMSE2", 76, Kind::Integer, 0},
        {"DIMTAD", 77, Kind::Integer, 0},    {"DIMZIN", 78, Kind::Integer, 0},
        {"DIMAZIN", 79, Kind::Integer, 0},   {"DIMALT", 170, Kind::Integer, 0},
        {"DIMALTD", 171, Kind::Integer, 2},  {"DIMTOFL", 172, Kind::Integer, 0},
        {"DIMSAH", 173, Kind::Integer, 0},   {"DIMTIX", 174, Kind::Integer, 0},
        {"DIMSOXD", 175, Kind::Integer, 0},  {"DIMCLRD", 176, Kind::Integer, 0},
        {"DIMCLRE", 177, Kind::Integer, 0},  {"DIMCLRT", 178, Kind::Integer, 0},
        {"DIMADEC", 179, Kind::Integer, 0},  {"DIMDEC", 271, Kind::Integer, 4},
        {"DIMTDEC", 272, Kind::Integer, 4},  {"DIMALTU", 273, Kind::Integer, 2},
        {"DIMALTTD", 274, Kind::Integer, 2}, {"DIMAUNIT", 275, Kind::Integer, 0},
        {"DIMFRAC", 276, Kind::Integer, 0},  {"DIMLUNIT", 277, Kind::Integer, 2},
        {"DIMDSEP", 278, Kind::Integer, 46}, {"DIMTMOVE", 279, Kind::Integer, 0},
        {"DIMJUST", 280, Kind::Integer, 0},  {"DIMSD1", 281, Kind::Integer, 0},
        {"DIMSD2", 282, Kind::Integer, 0},   {"DIMTOLJ", 283, Kind::Integer, 1},
        {"DIMTZIN", 284, Kind::Integer, 0},  {"DIMALTZ", 285, Kind::Integer, 0},
        {"DIMALTTZ", 286, Kind::Integer, 0}, {"DIMUPT", 288, Kind::Integer, 0},
        {"DIMATFIT", 289, Kind::Integer, 3}, {"DIMTXSTY", 340, Kind::Style, 0},
        {"DIMLDRBLK", 341, Kind::Block, 0},  {"DIMBLK", 342, Kind::Block, 0},
        {"DIMBLK1", 343, Kind::Block, 0},    {"DIMBLK2", 344, Kind::Block, 0},
        {"DIMLWD", 371, Kind::Integer, -2},  {"DIMLWE", 372, Kind::Integer, -2},
    };
    return all;
}

void restoreDimensionStyle(Drawing& drawing, RecordId style) {
    for (const DimensionVariable& variable : dimensionVariables()) {
        if (isInVersion(drawing, variable)) {
            setHeader(drawing, "$" + std::string(variable.name), headerCode(variable),
                      valueOf(drawing, style, variable));
        }
    }
    setHeader(drawing, "$DIMSTYLE", 2, entryName(drawing, style));
}

RecordId saveDimensionStyle(Drawing& drawing, const std::string& name) {
    RecordId style = findEntry(drawing, Table::Dimstyle, name);
    if (style == NoRecord) {
        style = addEntry(drawing, Table::Dimstyle, name);
    }
    for (const DimensionVariable& variable : dimensionVariables()) {
        if (!isInVersion(drawing, variable)) {
            continue;
        }
        const std::string header = "$" + std::string(variable.name);
        switch (variable.kind) {
            case Kind::Real:
                drawing.put(style, variable.code, headerReal(drawing, header, variable.standard));
                break;
            case Kind::Integer:
                drawing.put(style, variable.code,
                            headerInteger(drawing, header, static_cast<std::int64_t>(variable.standard)));
                break;
            case Kind::Text:
                drawing.put(style, variable.code, headerText(drawing, header, ""), {70, 2});
                break;
            case Kind::Block:
            case Kind::Style: {
                const std::string named =
                    headerText(drawing, header, variable.kind == Kind::Style ? "Standard" : "");
                if (drawing.versionNumber() >= ByHandle) {
                    putHandle(drawing, style, variable.code, handleOfName(drawing, variable, named));
                } else if (namedCode(variable) != 0) {
                    drawing.put(style, namedCode(variable), named);
                }
                break;
            }
        }
    }
    setHeader(drawing, "$DIMSTYLE", 2, entryName(drawing, style));
    return style;
}

std::string dimensionText(const Drawing& drawing, RecordId style, const DimensionVariable& variable) {
    const Value value = valueOf(drawing, style, variable);
    if (const auto* text = std::get_if<std::string>(&value)) {
        return "\"" + *text + "\"";
    }
    const auto* real = std::get_if<double>(&value);
    return real != nullptr ? formatReal(*real, 4) : std::to_string(std::get<std::int64_t>(value));
}

}  // namespace drafthost
