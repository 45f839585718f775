// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// Symbol tables: named records in the TABLES section, found by name without regard to case. Entries are plain
// records; change their tags through the drawing (a name only through renameEntry, which also follows the
// places that refer to it).

enum class Table { Layer, Ltype, Style, View, Ucs, Vport, Appid, Dimstyle, BlockRecord };

/// The type of the table's records, for example "LAYER".
std::string_view tableType(Table table);
/// The table of that type name, without regard to case.
std::optional<Table> tableOf(std::string_view type);
/// Entries in the order of the file.
std::vector<RecordId> tableEntries(const Drawing& drawing, Table table);
/// The first entry of that name, or NoRecord.
RecordId findEntry(const Drawing& drawing, Table table, std::string_view name);
/// Name of an entry (code 2), UTF-8.
std::string entryName(const Drawing& drawing, RecordId entry);
/// The TABLES section, made behind the header (and classes) where there is none; NoRecord for a drawing
/// without any record to put it behind.
RecordId tablesSection(Drawing& drawing);
/// A new entry with what its kind needs (layer: colour 7, Continuous, default lineweight), with handle, owner
/// and subclass markers where the version has them; the table, and the section, are made when missing. The
/// name must not be there yet.
RecordId addEntry(Drawing& drawing, Table table, std::string_view name);
/// Renames an entry and every reference to it by name (entities, other entries, extended data of layers,
/// header).
void renameEntry(Drawing& drawing, Table table, RecordId entry, std::string_view newName);
/// Removes an entry; the caller has made sure that nothing refers to it.
void deleteEntry(Drawing& drawing, Table table, RecordId entry);

}  // namespace drafthost
