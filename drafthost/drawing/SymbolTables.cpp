// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/SymbolTables.h"

#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/Structure.h"

#include <algorithm>

namespace drafthost {

namespace {

constexpr std::string_view RecordMarkers[TableCount] = {
    "AcDbLayerTableRecord",  "AcDbLinetypeTableRecord", "AcDbTextStyleTableRecord",
    "AcDbViewTableRecord",   "AcDbUCSTableRecord",      "AcDbViewportTableRecord",
    "AcDbRegAppTableRecord", "AcDbDimStyleTableRecord", "AcDbBlockTableRecord"};

// The ENDTAB of a table, made with its table where there is none.
RecordId tableForWriting(Drawing& drawing, Table table) {
    const TableRecords& found = drawing.structure().table(table);
    if (found.begin != NoRecord) {
        if (drawing.type(found.end) == "ENDTAB") {
            return found.end;
        }
        return drawing.insertRecord(found.end, "ENDTAB");
    }
    if (tablesSection(drawing) == NoRecord) {
        return NoRecord;
    }
    const RecordId end = drawing.structure().tablesSection.end;
    const RecordId begin =
        drawing.insertRecord(drawing.type(end) == "ENDSEC" ? drawing.previous(end) : end, "TABLE");
    drawing.appendTag(begin, 2, std::string(tableType(table)));
    if (drawing.hasHandles()) {
        drawing.appendTag(begin, 5, formatHandle(drawing.allocateHandle()));
    }
    if (drawing.versionNumber() >= 1015) {
        drawing.appendTag(begin, 330, "0");
    }
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(begin, 100, "AcDbSymbolTable");
    }
    drawing.appendTag(begin, 70, 0);
    if (drawing.versionNumber() >= 1015 && table == Table::Dimstyle) {
        drawing.appendTag(begin, 100, "AcDbDimStyleTable");
    }
    return drawing.insertRecord(begin, "ENDTAB");
}

void appendPoint(Drawing& drawing, RecordId id, int code, const Point& point, bool withZ) {
    drawing.appendTag(id, code, point.x);
    drawing.appendTag(id, code + 10, point.y);
    if (withZ) {
        drawing.appendTag(id, code + 20, point.z);
    }
}

void appendLayerDefaults(Drawing& drawing, RecordId id) {
    drawing.appendTag(id, 62, 7);
    drawing.appendTag(id, 6, "Continuous");
    if (drawing.versionNumber() < 1015) {
        return;
    }
    drawing.appendTag(id, 370, -3);
    // Plot style and material are objects of the drawing; layer 0 knows the normal ones.
    const RecordId zero = findEntry(drawing, Table::Layer, "0");
    for (const int code : {390, 347}) {
        const std::uint64_t handle = zero != NoRecord ? drawing.record(zero).handleOr(code, 0) : 0;
        if (handle != 0) {
            drawing.appendTag(id, code, formatHandle(handle));
        }
    }
}

void appendViewportDefaults(Drawing& drawing, RecordId id) {
    appendPoint(drawing, id, 10, {0, 0, 0}, false);
    appendPoint(drawing, id, 11, {1, 1, 0}, false);
    appendPoint(drawing, id, 12, {0, 0, 0}, false);
    appendPoint(drawing, id, 13, {0, 0, 0}, false);
    appendPoint(drawing, id, 14, {10, 10, 0}, false);
    appendPoint(drawing, id, 15, {10, 10, 0}, false);
    appendPoint(drawing, id, 16, {0, 0, 1}, true);
    appendPoint(drawing, id, 17, {0, 0, 0}, true);
    const std::pair<int, double> reals[] = {{40, 1}, {41, 1}, {42, 50}, {43, 0}, {44, 0}, {50, 0}, {51, 0}};
    for (const auto& [code, value] : reals) {
        drawing.appendTag(id, code, value);
    }
    const std::pair<int, int> numbers[] = {{71, 0}, {72, 100}, {73, 1}, {74, 3},
                                           {75, 0}, {76, 0},   {77, 0}, {78, 0}};
    for (const auto& [code, value] : numbers) {
        drawing.appendTag(id, code, value);
    }
}

void appendDefaults(Drawing& drawing, Table table, RecordId id) {
    switch (table) {
        case Table::Layer:
            appendLayerDefaults(drawing, id);
            break;
        case Table::Ltype:
            drawing.appendTag(id, 3, "");
            drawing.appendTag(id, 72, 65);
            drawing.appendTag(id, 73, 0);
            drawing.appendTag(id, 40, 0.0);
            break;
        case Table::Style:
            for (const auto& [code, value] : {std::pair{40, 0.0}, {41, 1.0}, {50, 0.0}}) {
                drawing.appendTag(id, code, value);
            }
            drawing.appendTag(id, 71, 0);
            drawing.appendTag(id, 42, 0.2);
            drawing.appendTag(id, 3, "txt");
            drawing.appendTag(id, 4, "");
            break;
        case Table::View:
            drawing.appendTag(id, 40, 1.0);
            appendPoint(drawing, id, 10, {0, 0, 0}, false);
            drawing.appendTag(id, 41, 1.0);
            appendPoint(drawing, id, 11, {0, 0, 1}, true);
            appendPoint(drawing, id, 12, {0, 0, 0}, true);
            for (const auto& [code, value] : {std::pair{42, 50.0}, {43, 0.0}, {44, 0.0}, {50, 0.0}}) {
                drawing.appendTag(id, code, value);
            }
            drawing.appendTag(id, 71, 0);
            break;
        case Table::Ucs:
            appendPoint(drawing, id, 10, {0, 0, 0}, true);
            appendPoint(drawing, id, 11, {1, 0, 0}, true);
            appendPoint(drawing, id, 12, {0, 1, 0}, true);
            break;
        case Table::Vport:
            appendViewportDefaults(drawing, id);
            break;
        case Table::BlockRecord:
            if (drawing.versionNumber() >= 1015) {
                drawing.appendTag(id, 340, "0");
            }
            break;
        case Table::Appid:
        case Table::Dimstyle:
            break;
    }
}

}  // namespace

RecordId tablesSection(Drawing& drawing) {
    if (drawing.structure().tablesSection.begin != NoRecord) {
        return drawing.structure().tablesSection.begin;
    }
    if (drawing.structure().header == NoRecord) {
        setHeader(drawing, "$ACADVER", 1, drawing.version());
    }
    RecordId behind = drawing.structure().headerSection.end;
    if (behind == NoRecord) {
        return NoRecord;
    }
    const RecordId next = drawing.next(behind);
    if (next != NoRecord && drawing.record(next).textOr(2, "") == "CLASSES") {
        // Classes that nobody closed come behind the tables.
        for (RecordId id = next; id != NoRecord && drawing.type(id) != "EOF"; id = drawing.next(id)) {
            if (drawing.type(id) == "ENDSEC") {
                behind = id;
                break;
            }
        }
    }
    const RecordId section = drawing.insertRecord(behind, "SECTION");
    drawing.appendTag(section, 2, "TABLES");
    drawing.insertRecord(section, "ENDSEC");
    return section;
}

std::vector<RecordId> tableEntries(const Drawing& drawing, Table table) {
    return drawing.structure().table(table).entries;
}

RecordId findEntry(const Drawing& drawing, Table table, std::string_view name) {
    const auto& byName = drawing.structure().table(table).byName;
    const auto found = byName.find(foldCase(name));
    return found != byName.end() ? found->second : NoRecord;
}

std::string entryName(const Drawing& drawing, RecordId entry) {
    std::string name = drawing.record(entry).textOr(2, "");
    name.erase(name.find_last_not_of(" \t") + 1);
    return name;
}

RecordId addEntry(Drawing& drawing, Table table, std::string_view name) {
    const RecordId end = tableForWriting(drawing, table);
    if (end == NoRecord) {
        return NoRecord;
    }
    const RecordId head = drawing.structure().table(table).begin;
    const std::size_t count = drawing.structure().table(table).entries.size() + 1;
    const RecordId id = drawing.insertRecord(drawing.previous(end), tableType(table));
    if (drawing.hasHandles()) {
        drawing.appendTag(id, table == Table::Dimstyle ? 105 : 5, formatHandle(drawing.allocateHandle()));
    }
    if (const std::uint64_t owner = drawing.handle(head); owner != 0 && drawing.versionNumber() >= 1015) {
        drawing.appendTag(id, 330, formatHandle(owner));
    }
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 100, "AcDbSymbolTableRecord");
        drawing.appendTag(id, 100, std::string(RecordMarkers[static_cast<std::size_t>(table)]));
    }
    drawing.appendTag(id, 2, std::string(name));
    if (table != Table::BlockRecord) {
        drawing.appendTag(id, 70, 0);
    }
    appendDefaults(drawing, table, id);
    if (static_cast<std::size_t>(drawing.record(head).integerOr(70, 0)) < count) {
        drawing.put(head, 70, static_cast<std::int64_t>(count));
    }
    return id;
}

void deleteEntry(Drawing& drawing, Table table, RecordId entry) {
    const RecordId head = drawing.structure().table(table).begin;
    const auto count = static_cast<std::int64_t>(drawing.structure().table(table).entries.size());
    const bool counted = head != NoRecord && drawing.record(head).integerOr(70, 0) == count;
    for (const RecordId object : ownedObjects(drawing, entry)) {
        drawing.deleteRecord(object);
    }
    drawing.deleteRecord(entry);
    if (counted) {
        drawing.put(head, 70, count - 1);
    }
}

}  // namespace drafthost
