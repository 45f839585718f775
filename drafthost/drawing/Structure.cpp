// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Structure.h"

namespace drafthost {

namespace {

constexpr std::array<std::string_view, TableCount> TableTypes = {
    "LAYER", "LTYPE", "STYLE", "VIEW", "UCS", "VPORT", "APPID", "DIMSTYLE", "BLOCK_RECORD"};

std::string nameOf(const Record& record) {
    const std::string name = record.textOr(2, "");
    const std::size_t end = name.find_last_not_of(" \t");
    return end == std::string::npos ? std::string() : name.substr(0, end + 1);
}

/// Goes over the records once and notes where in sections, tables and blocks it stands.
class StructureBuilder {
  public:
    StructureBuilder(Structure& structure, const Drawing& drawing) : s_(structure), drawing_(drawing) {}

    void build() {
        for (RecordId id = drawing_.first(); id != NoRecord; last_ = id, id = drawing_.next(id)) {
            take(id, drawing_.record(id));
        }
        closeSection(last_);
        joinBlockRecords();
    }

  private:
    void take(RecordId id, const Record& record) {
        const std::string_view type = record.type();
        if (type == "SECTION") {
            beginSection(id, nameOf(record));
        } else if (type == "ENDSEC") {
            endSection(id);
        } else if (type == "EOF") {
            s_.eof = id;
            // A section that nobody closed ends in front of it, so that nothing is ever added behind it.
            closeSection(last_);
            section_ = nullptr;
        } else if (section_ == &s_.tablesSection) {
            takeInTables(id, record);
        } else if (section_ == &s_.blocksSection) {
            takeInBlocks(id, record);
        } else if (section_ == &s_.objectsSection && type == "LAYOUT") {
            s_.layoutObjects.push_back(id);
        }
    }

    Structure::Section* sectionNamed(std::string_view name) {
        return name == "HEADER"     ? &s_.headerSection
               : name == "TABLES"   ? &s_.tablesSection
               : name == "BLOCKS"   ? &s_.blocksSection
               : name == "ENTITIES" ? &s_.entitiesSection
               : name == "OBJECTS"  ? &s_.objectsSection
                                    : &other_;
    }

    void beginSection(RecordId id, std::string_view name) {
        closeSection(last_);
        closeBlock(last_);
        table_ = nullptr;
        other_ = {};
        section_ = sectionNamed(name);
        // Of a section that comes twice the first counts.
        if (section_->begin != NoRecord) {
            section_ = &other_;
        }
        section_->begin = id;
        if (section_ == &s_.headerSection) {
            s_.header = id;
        }
    }

    void endSection(RecordId id) {
        if (section_ != nullptr) {
            section_->end = id;
            closeBlock(last_);
        }
        section_ = nullptr;
        table_ = nullptr;
    }

    /// Ends a section that has no end of its own.
    void closeSection(RecordId end) {
        if (section_ != nullptr && section_->end == NoRecord) {
            section_->end = end;
            closeBlock(end);
        }
    }

    void takeInTables(RecordId id, const Record& record) {
        const std::string_view type = record.type();
        if (type == "TABLE") {
            beginTable(id, tableOf(nameOf(record)));
        } else if (type == "ENDTAB") {
            if (table_ != nullptr) {
                table_->end = id;
            }
            table_ = nullptr;
        } else if (table_ != nullptr && type == TableTypes[tableIndex_]) {
            table_->entries.push_back(id);
            table_->end = id;
            table_->byName.try_emplace(foldCase(nameOf(record)), id);
        }
    }

    void beginTable(RecordId id, std::optional<Table> kind) {
        table_ = nullptr;
        if (!kind) {
            return;
        }
        tableIndex_ = static_cast<std::size_t>(*kind);
        if (s_.tables[tableIndex_].begin == NoRecord) {
            table_ = &s_.tables[tableIndex_];
            table_->begin = id;
            table_->end = id;
        }
    }

    void takeInBlocks(RecordId id, const Record& record) {
        if (record.type() == "BLOCK") {
            closeBlock(last_);
            Block block;
            block.name = nameOf(record);
            block.begin = id;
            s_.blockByName.try_emplace(foldCase(block.name), s_.blocks.size());
            s_.blocks.push_back(std::move(block));
            inBlock_ = true;
        } else if (record.type() == "ENDBLK") {
            closeBlock(id);
        }
    }

    void closeBlock(RecordId end) {
        if (inBlock_) {
            s_.blocks.back().end = end;
            inBlock_ = false;
        }
    }

    void joinBlockRecords() {
        const auto& byName = s_.tables[static_cast<std::size_t>(Table::BlockRecord)].byName;
        for (Block& block : s_.blocks) {
            const auto found = byName.find(foldCase(block.name));
            block.blockRecord = found != byName.end() ? found->second : NoRecord;
        }
    }

    Structure& s_;
    const Drawing& drawing_;
    Structure::Section* section_ = nullptr;
    Structure::Section other_;  ///< a section that nobody asks for
    TableRecords* table_ = nullptr;
    std::size_t tableIndex_ = 0;
    bool inBlock_ = false;
    RecordId last_ = NoRecord;
};

}  // namespace

std::string_view tableType(Table table) {
    return TableTypes[static_cast<std::size_t>(table)];
}

std::optional<Table> tableOf(std::string_view type) {
    const std::string folded = foldCase(type);
    for (std::size_t i = 0; i < TableCount; ++i) {
        if (foldCase(TableTypes[i]) == folded) {
            return static_cast<Table>(i);
        }
    }
    return std::nullopt;
}

bool isStructural(std::string_view type) {
    static constexpr std::string_view Others[] = {"SECTION", "ENDSEC", "TABLE",      "ENDTAB", "BLOCK",
                                                  "ENDBLK",  "LAYOUT", "DICTIONARY", "EOF"};
    for (const std::string_view other : Others) {
        if (type == other) {
            return true;
        }
    }
    for (const std::string_view table : TableTypes) {
        if (type == table) {
            return true;
        }
    }
    return false;
}

Structure::Structure(const Drawing& drawing) {
    StructureBuilder(*this, drawing).build();
}

const Structure& Drawing::structure() const {
    if (structure_ == nullptr) {
        structure_ = std::make_unique<Structure>(*this);
    }
    return *structure_;
}

}  // namespace drafthost
