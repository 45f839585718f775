// SPDX-License-Identifier: GPL-3.0-or-later
// Audit of handles, header and tables.

#include <unordered_map>

#include "drafthost/drawing/AuditWork.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Structure.h"

namespace drafthost {

namespace {

constexpr int WithMarkers = 1012;
constexpr int WithOwners = 1015;

std::size_t handleTag(const Record& record) {
    return record.find(record.type() == "DIMSTYLE" ? 105 : 5).value_or(record.size());
}

void setHandle(Drawing& drawing, RecordId id, std::uint64_t handle) {
    drawing.setTag(id, handleTag(drawing.record(id)), formatHandle(handle));
}

/// A name like this one that no entry has yet.
std::string freeName(const AuditWork& work, Table table, const std::string& name) {
    for (int number = 1;; ++number) {
        std::string candidate = "AUDIT_" + std::to_string(number) + "_" + name;
        if (!work.has(table, candidate)) {
            return candidate;
        }
    }
}

/// A header variable that names an entry of a table.
struct NamedVariable {
    const char* name;
    int code;
    Table table;
    const char* standard;
};
constexpr NamedVariable Named[] = {{"$CLAYER", 8, Table::Layer, "0"},
                                   {"$CELTYPE", 6, Table::Ltype, "ByLayer"},
                                   {"$TEXTSTYLE", 7, Table::Style, "Standard"},
                                   {"$DIMSTYLE", 2, Table::Dimstyle, "Standard"},
                                   {"$DIMTXSTY", 7, Table::Style, "Standard"}};

bool isStanding(const std::string& linetype) {
    const std::string name = foldCase(linetype);
    return name == foldCase("ByLayer") || name == foldCase("ByBlock") || name == foldCase("Continuous") ||
           name.empty();
}

void auditLayer(AuditWork& work, RecordId id) {
    Drawing& drawing = work.drawing();
    const Record record = drawing.record(id);
    const std::int64_t color = record.integerOr(62, 7);
    if (color < -255 || color > 255 || color == 0) {
        work.error(
            id, "Color " + std::to_string(color) + " of layer \"" + entryName(drawing, id) + "\" is invalid",
            "set to 7", [&] { drawing.put(id, 62, std::int64_t{7}, {70}); });
    }
    const std::string linetype = drawing.record(id).textOr(6, "Continuous");
    if (!isStanding(linetype) && !work.has(Table::Ltype, linetype)) {
        work.error(id,
                   "Linetype \"" + linetype + "\" of layer \"" + entryName(drawing, id) + "\" is not there",
                   "set to Continuous", [&] {
                       drawing.put(id, 6, std::string("Continuous"), {62, 70});
                   });
    }
}

void auditOwner(AuditWork& work, RecordId id, std::uint64_t owner) {
    Drawing& drawing = work.drawing();
    if (owner == 0 || drawing.versionNumber() < WithOwners) {
        return;
    }
    const Record record = drawing.record(id);
    std::optional<std::size_t> at;
    bool group = false;
    for (std::size_t i = 1; i < record.size() && record.code(i) != 100; ++i) {
        if (record.code(i) == 102) {
            group = record.raw(i).starts_with('{');
        } else if (record.code(i) == 330 && !group) {
            at = i;
        }
    }
    if (at && record.handle(*at) != owner) {
        work.error(id, "Owner " + formatHandle(record.handle(*at)) + " is wrong",
                   "set to " + formatHandle(owner), [&] { drawing.setTag(id, *at, formatHandle(owner)); });
    }
}

}  // namespace

void auditHandles(AuditWork& work) {
    Drawing& drawing = work.drawing();
    if (!drawing.hasHandles()) {
        return;
    }
    std::unordered_map<std::uint64_t, RecordId> known;
    std::string section;
    for (RecordId id = drawing.first(); id != NoRecord; id = drawing.next(id)) {
        const Record record = drawing.record(id);
        const std::string_view type = record.type();
        if (type == "SECTION") {
            section = record.textOr(2, "");
            continue;
        }
        if (section == "HEADER" || section == "CLASSES" || section == "THUMBNAILIMAGE" || type == "ENDSEC" ||
            type == "ENDTAB" || type == "EOF" || type.empty()) {
            continue;
        }
        const std::size_t tag = handleTag(record);
        const std::uint64_t handle = tag < record.size() ? record.handle(tag) : 0;
        if (tag < record.size() && handle != 0 && !known.try_emplace(handle, id).second) {
            const std::uint64_t fresh = drawing.allocateHandle();
            work.error(id, "Handle " + formatHandle(handle) + " is given twice",
                       "set to " + formatHandle(fresh), [&] { setHandle(drawing, id, fresh); });
        } else if (tag < record.size() && handle == 0) {
            const std::uint64_t fresh = drawing.allocateHandle();
            work.error(id, "Handle is null", "set to " + formatHandle(fresh),
                       [&] { setHandle(drawing, id, fresh); });
        }
    }
}

void auditTables(AuditWork& work) {
    Drawing& drawing = work.drawing();
    for (std::size_t number = 0; number < TableCount; ++number) {
        const auto table = static_cast<Table>(number);
        const RecordId head = drawing.structure().table(table).begin;
        const std::uint64_t owner = head == NoRecord ? 0 : drawing.handle(head);
        std::unordered_set<std::string> seen;
        for (const RecordId id : tableEntries(drawing, table)) {
            const std::string name = entryName(drawing, id);
            // Text styles without a name are shape files, and one view may fill several viewports.
            const bool mayRepeat = table == Table::Vport || (table == Table::Style && name.empty());
            if (name.empty() && table != Table::Style) {
                const std::string given = freeName(work, table, std::string(tableType(table)));
                work.error(id, "Name is empty", "named " + given, [&] {
                    drawing.put(id, 2, given);
                    work.added(table, given);
                });
            } else if (!mayRepeat && !seen.insert(foldCase(name)).second) {
                const std::string given = freeName(work, table, name);
                work.error(id, "Name \"" + name + "\" is given twice", "named " + given, [&] {
                    drawing.put(id, 2, given);
                    work.added(table, given);
                });
            }
            auditOwner(work, id, owner);
            if (table == Table::Layer) {
                auditLayer(work, id);
            }
        }
    }
    if (drawing.versionNumber() >= WithMarkers) {
        for (const auto& [table, name] :
             {std::pair{Table::Layer, "0"}, {Table::Style, "Standard"}, {Table::Appid, "ACAD"}}) {
            if (!work.has(table, name)) {
                const Table where = table;
                const std::string what = name;
                work.error(NoRecord, std::string(tableType(table)) + " \"" + name + "\" is missing", "added",
                           [&] {
                               addEntry(drawing, where, what);
                               work.added(where, what);
                           });
            }
        }
    }
}

void auditHeader(AuditWork& work) {
    Drawing& drawing = work.drawing();
    for (const NamedVariable& variable : Named) {
        const std::string name = headerText(drawing, variable.name, "");
        if (name.empty() || work.has(variable.table, name) ||
            (variable.table == Table::Ltype && isStanding(name)) ||
            (variable.table == Table::Layer && name == "0")) {
            continue;
        }
        work.error(NoRecord, std::string(variable.name) + " names \"" + name + "\", which is not there",
                   std::string("set to ") + variable.standard,
                   [&] { setHeader(drawing, variable.name, variable.code, std::string(variable.standard)); });
    }
}

void auditBlocks(AuditWork& work) {
    Drawing& drawing = work.drawing();
    std::unordered_set<std::string> seen;
    const std::vector<Block> all = blocks(drawing);
    work.report().blocks = all.size();
    for (const Block& block : all) {
        const std::string name = block.name;
        if (name.empty() || !seen.insert(foldCase(name)).second) {
            std::string given;
            for (int number = 1; given.empty() || work.hasBlock(given); ++number) {
                given = "AUDIT_" + std::to_string(number) + (name.empty() ? "" : "_" + name);
            }
            work.error(
                block.begin, name.empty() ? "Block has no name" : "Block \"" + name + "\" is defined twice",
                "named " + given, [&] {
                    drawing.put(block.begin, 2, given);
                    drawing.put(block.begin, 3, given, {30, 20, 10, 2});
                    if (block.blockRecord != NoRecord && entryName(drawing, block.blockRecord) == name) {
                        drawing.put(block.blockRecord, 2, given);
                    }
                    work.refreshBlocks();
                });
        } else if (block.blockRecord == NoRecord && drawing.versionNumber() >= WithMarkers) {
            work.error(block.begin, "Block \"" + name + "\" has no record", "added", [&] {
                const RecordId record = addEntry(drawing, Table::BlockRecord, name);
                if (drawing.versionNumber() >= WithOwners) {
                    drawing.put(block.begin, 330, formatHandle(drawing.handle(record)), {5});
                    drawing.put(block.end, 330, formatHandle(drawing.handle(record)), {5});
                }
            });
        } else if (block.blockRecord != NoRecord) {
            auditOwner(work, block.begin, drawing.handle(block.blockRecord));
            if (drawing.type(block.end) == "ENDBLK") {
                auditOwner(work, block.end, drawing.handle(block.blockRecord));
            }
        }
    }
}

}  // namespace drafthost
