// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"

#include <array>

namespace drafthost {

inline constexpr std::size_t TableCount = 9;

struct TableRecords {
    RecordId begin = NoRecord;  ///< the TABLE record
    RecordId end = NoRecord;    ///< its ENDTAB, or the last record that belongs to it
    std::vector<RecordId> entries;
    std::unordered_map<std::string, RecordId> byName;  ///< folded names
};

// What a drawing consists of, found in one pass over the types of its records. It is forgiving: a section
// also ends where the next one begins, a stray ENDSEC is passed over, a block also ends at the next BLOCK.
// `end` of a section is its ENDSEC or, without one, the record in front of which things are to be added.
struct Structure {
    explicit Structure(const Drawing& drawing);

    struct Section {
        RecordId begin = NoRecord;
        RecordId end = NoRecord;
    };

    const TableRecords& table(Table table) const { return tables[static_cast<std::size_t>(table)]; }

    RecordId header = NoRecord;  ///< the SECTION record that holds the header variables
    Section headerSection;
    Section tablesSection;
    Section blocksSection;
    Section entitiesSection;
    Section objectsSection;
    RecordId eof = NoRecord;
    std::array<TableRecords, TableCount> tables;
    std::vector<Block> blocks;
    std::unordered_map<std::string, std::size_t> blockByName;
    std::vector<RecordId> layoutObjects;

    /// Made on first use.
    mutable std::vector<Layout> layouts;
};

/// Whether a change of records of this type changes the structure.
bool isStructural(std::string_view type);

}  // namespace drafthost
