// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Structure.h"

#include <algorithm>
#include <initializer_list>

namespace drafthost {

namespace {

bool isOneOf(std::string_view type, std::initializer_list<std::string_view> types) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

enum class Place { Tables, Drawn, Objects };

// Whether a tag of a record of that type holds a name of the table. References by handle need no change.
bool refersByName(Table table, Place place, std::string_view type, int code) {
    const bool drawn = place == Place::Drawn;
    switch (table) {
        case Table::Layer:
            return code == 1003 || (code == 8 && (drawn || isOneOf(type, {"LAYER_FILTER", "LAYER_INDEX"})));
        case Table::Ltype:
            return code == 6 && (drawn || isOneOf(type, {"LAYER", "MLINESTYLE"}));
        case Table::Style:
            return code == 7 && (isOneOf(type, {"TEXT", "ATTRIB", "ATTDEF", "MTEXT", "ACAD_TABLE",
                                                "TABLESTYLE", "ARCALIGNEDTEXT", "RTEXT"}));
        case Table::Dimstyle:
            return code == 3 && (isOneOf(type, {"DIMENSION", "LEADER", "TOLERANCE", "ARC_DIMENSION",
                                                "LARGE_RADIAL_DIMENSION"}));
        case Table::BlockRecord:
            return (code == 2 && isOneOf(type, {"INSERT", "DIMENSION", "ACAD_TABLE", "BLOCK", "ARC_DIMENSION",
                                                "LARGE_RADIAL_DIMENSION"})) ||
                   (code == 3 && type == "BLOCK") || (type == "DIMSTYLE" && (code >= 5 && code <= 7));
        case Table::Appid:
            return code == 1001;
        case Table::View:
        case Table::Ucs:
        case Table::Vport:
            break;
    }
    return false;
}

std::vector<std::string_view> headerNames(Table table) {
    switch (table) {
        case Table::Layer:
            return {"$CLAYER"};
        case Table::Ltype:
            return {"$CELTYPE", "$DIMLTYPE", "$DIMLTEX1", "$DIMLTEX2"};
        case Table::Style:
            return {"$TEXTSTYLE", "$DIMTXSTY"};
        case Table::Dimstyle:
            return {"$DIMSTYLE"};
        case Table::BlockRecord:
            return {"$DIMBLK", "$DIMBLK1", "$DIMBLK2", "$DIMLDRBLK"};
        case Table::Ucs:
            return {"$UCSNAME", "$PUCSNAME", "$UCSBASE", "$PUCSBASE"};
        case Table::View:
        case Table::Vport:
        case Table::Appid:
            break;
    }
    return {};
}

}  // namespace

void renameEntry(Drawing& drawing, Table table, RecordId entry, std::string_view newName) {
    const std::string old = foldCase(entryName(drawing, entry));
    const std::string name(newName);
    drawing.put(entry, 2, name);
    for (const std::string_view variable : headerNames(table)) {
        const auto found = headerVariable(drawing, variable);
        if (found && foldCase(headerText(drawing, variable, "")) == old) {
            setHeader(drawing, variable, found->code, name);
        }
    }
    const RecordId header = drawing.structure().header;
    Place place = Place::Tables;
    for (RecordId id = drawing.first(); id != NoRecord; id = drawing.next(id)) {
        const std::string type(drawing.type(id));
        if (type == "SECTION") {
            const std::string section = id == header ? "HEADER" : drawing.record(id).textOr(2, "");
            place = section == "BLOCKS" || section == "ENTITIES" ? Place::Drawn
                    : section == "OBJECTS"                       ? Place::Objects
                                                                 : Place::Tables;
            continue;
        }
        const std::size_t count = drawing.record(id).size();
        for (std::size_t tag = 0; tag < count; ++tag) {
            const Record record = drawing.record(id);
            if (refersByName(table, place, type, record.code(tag)) && foldCase(record.text(tag)) == old) {
                drawing.setTag(id, tag, name);
            }
        }
    }
}

}  // namespace drafthost
