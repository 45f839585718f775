// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Structure.h"

namespace drafthost {

namespace {

constexpr std::array<std::string_view, tableCount> tableTypes = {
    "LAYER", "LTYPE", "STYLE", "VIEW", "UCS", "VPORT", "APPID", "DIMSTYLE", "BLOCK_RECORD"};

std::string nameOf(const Record& record) {
    const std::string name = record.textOr(2, "");
    const std::size_t end = name.find_last_not_of(" \t");
    return end == std::string::npos ? std::string() : name.substr(0, end + 1);
}

}  // namespace

std::string_view tableType(Table table) {
    return tableTypes[static_cast<std::size_t>(table)];
}

std::optional<Table> tableOf(std::string_view type) {
    const std::string folded = foldCase(type);
    for (std::size_t i = 0; i < tableCount; ++i) {
        if (foldCase(tableTypes[i]) == folded) {
            return static_cast<Table>(i);
        }
    }
    return std::nullopt;
}

bool isStructural(std::string_view type) {
    static constexpr std::string_view others[] = {"SECTION", "ENDSEC", "TABLE",      "ENDTAB", "BLOCK",
                                                  "ENDBLK",  "LAYOUT", "DICTIONARY", "EOF"};
    for (const std::string_view other : others) {
        if (type == other) {
            return true;
        }
    }
    for (const std::string_view table : tableTypes) {
        if (type == table) {
            return true;
        }
    }
    return false;
}

Structure::Structure(const Drawing& drawing) {
    Section* section = nullptr;
    TableRecords* table = nullptr;
    std::size_t tableIndex = 0;
    bool inBlock = false;
    Section other;
    RecordId last = NoRecord;
    const auto closeBlock = [&](RecordId end) {
        if (inBlock) {
            blocks.back().end = end;
            inBlock = false;
        }
    };
    for (RecordId id = drawing.first(); id != NoRecord; last = id, id = drawing.next(id)) {
        const Record record = drawing.record(id);
        const std::string_view type = record.type();
        if (type == "SECTION") {
            if (section != nullptr && section->end == NoRecord) {
                section->end = last;
            }
            closeBlock(last);
            table = nullptr;
            const std::string name = nameOf(record);
            other = {};
            section = name == "HEADER"     ? &headerSection
                      : name == "TABLES"   ? &tablesSection
                      : name == "BLOCKS"   ? &blocksSection
                      : name == "ENTITIES" ? &entitiesSection
                      : name == "OBJECTS"  ? &objectsSection
                                           : &other;
            // Of a section that comes twice the first counts.
            if (section->begin != NoRecord) {
                section = &other;
            }
            section->begin = id;
            if (section == &headerSection) {
                header = id;
            }
        } else if (type == "ENDSEC") {
            if (section != nullptr) {
                section->end = id;
                closeBlock(last);
            }
            section = nullptr;
            table = nullptr;
        } else if (type == "EOF") {
            eof = id;
            // A section that nobody closed ends in front of it, so that nothing is ever added behind it.
            if (section != nullptr && section->end == NoRecord) {
                section->end = last;
                closeBlock(last);
            }
            section = nullptr;
        } else if (section == &tablesSection) {
            if (type == "TABLE") {
                const auto kind = tableOf(nameOf(record));
                table = nullptr;
                if (kind) {
                    tableIndex = static_cast<std::size_t>(*kind);
                    table = tables[tableIndex].begin == NoRecord ? &tables[tableIndex] : nullptr;
                }
                if (table != nullptr) {
                    table->begin = id;
                    table->end = id;
                }
            } else if (type == "ENDTAB") {
                if (table != nullptr) {
                    table->end = id;
                }
                table = nullptr;
            } else if (table != nullptr && type == tableTypes[tableIndex]) {
                table->entries.push_back(id);
                table->end = id;
                table->byName.try_emplace(foldCase(nameOf(record)), id);
            }
        } else if (section == &blocksSection) {
            if (type == "BLOCK") {
                closeBlock(last);
                Block block;
                block.name = nameOf(record);
                block.begin = id;
                blockByName.try_emplace(foldCase(block.name), blocks.size());
                blocks.push_back(std::move(block));
                inBlock = true;
            } else if (type == "ENDBLK") {
                closeBlock(id);
            }
        } else if (section == &objectsSection && type == "LAYOUT") {
            layoutObjects.push_back(id);
        }
    }
    if (section != nullptr && section->end == NoRecord) {
        section->end = last;
        closeBlock(last);
    }
    for (Block& block : blocks) {
        const auto& byName = tables[static_cast<std::size_t>(Table::BlockRecord)].byName;
        const auto found = byName.find(foldCase(block.name));
        block.blockRecord = found != byName.end() ? found->second : NoRecord;
    }
}

const Structure& Drawing::structure() const {
    if (structure_ == nullptr) {
        structure_ = std::make_unique<Structure>(*this);
    }
    return *structure_;
}

}  // namespace drafthost
