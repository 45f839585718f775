// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/Structure.h"
#include "drafthost/drawing/SymbolTables.h"
#include "tests/drawing/Samples.h"

namespace drafthost {
namespace {

/// Codes and values of a record, "_" for an empty one, without the handles of itself and its owner.
std::string told(const Drawing& drawing, RecordId id) {
    std::string text;
    const Record record = drawing.record(id);
    for (std::size_t i = 1; i < record.size(); ++i) {
        const int code = record.code(i);
        if (code != 5 && code != 105 && code != 330) {
            const std::string value = record.text(i);
            text += std::to_string(code) + " " + (value.empty() ? "_" : value) + " ";
        }
    }
    return text;
}

std::unique_ptr<Drawing> emptyOf(const std::string& version) {
    return parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 " + version +
                        " 0 ENDSEC 0 SECTION 2 TABLES 0 ENDSEC 0 SECTION 2 ENTITIES 0 ENDSEC 0 EOF"));
}

TEST(Tables, newEntriesHoldWhatTheirTableAsksFor) {
    const std::pair<Table, const char*> cases[] = {
        {Table::Layer, "2 NEW 70 0 62 7 6 Continuous "},
        {Table::Ltype, "2 NEW 70 0 3 _ 72 65 73 0 40 0.0 "},
        {Table::Style, "2 NEW 70 0 40 0.0 41 1.0 50 0.0 71 0 42 0.2 3 txt 4 _ "},
        {Table::View,
         "2 NEW 70 0 40 1.0 10 0.0 20 0.0 41 1.0 11 0.0 21 0.0 31 1.0 12 0.0 22 0.0 32 0.0 42 50.0 43 0.0 "
         "44 0.0 50 0.0 71 0 "},
        {Table::Ucs, "2 NEW 70 0 10 0.0 20 0.0 30 0.0 11 1.0 21 0.0 31 0.0 12 0.0 22 1.0 32 0.0 "},
        {Table::Vport,
         "2 NEW 70 0 10 0.0 20 0.0 11 1.0 21 1.0 12 0.0 22 0.0 13 0.0 23 0.0 14 10.0 24 10.0 15 10.0 25 10.0 "
         "16 0.0 26 0.0 36 1.0 17 0.0 27 0.0 37 0.0 40 1.0 41 1.0 42 50.0 43 0.0 44 0.0 50 0.0 51 0.0 71 0 "
         "72 100 73 1 74 3 75 0 76 0 77 0 78 0 "},
        {Table::Appid, "2 NEW 70 0 "},
        {Table::Dimstyle, "2 NEW 70 0 "},
    };
    for (const auto& [table, expected] : cases) {
        const auto drawing = emptyOf("AC1009");
        const RecordId first = addEntry(*drawing, table, "NEW");
        ASSERT_NE(first, NoRecord) << expected;
        EXPECT_EQ(told(*drawing, first), expected);
        addEntry(*drawing, table, "OTHER");
        const RecordId head = drawing->structure().table(table).begin;
        EXPECT_EQ(told(*drawing, head), "2 " + std::string(drawing->type(first)) + " 70 2 ");
    }
}

TEST(Tables, newEntriesAreMarkedAsTheVersionAsks) {
    const std::string values = "2 NEW 70 0 62 7 6 Continuous ";
    const std::string marks = "100 AcDbSymbolTableRecord 100 AcDbLayerTableRecord ";
    const struct {
        const char* version;
        std::string head;
        std::string entry;
    } cases[] = {{"AC1009", "2 LAYER 70 1 ", values},
                 {"AC1012", "2 LAYER 100 AcDbSymbolTable 70 1 ", marks + values},
                 {"AC1015", "2 LAYER 100 AcDbSymbolTable 70 1 ", marks + values + "370 -3 "}};
    for (const auto& one : cases) {
        const auto drawing = emptyOf(one.version);
        const RecordId entry = addEntry(*drawing, Table::Layer, "NEW");
        EXPECT_EQ(told(*drawing, entry), one.entry) << one.version;
        EXPECT_EQ(told(*drawing, drawing->structure().table(Table::Layer).begin), one.head) << one.version;
    }
    // A head that says more than there is stays; one that says less does not.
    for (const auto& [said, after] : {std::pair{"9", 9}, {"0", 2}}) {
        const auto drawing = parsed(drawn("0 SECTION 2 TABLES 0 TABLE 2 STYLE 70 " + std::string(said) +
                                          " 0 STYLE 2 A 70 0 0 ENDTAB 0 ENDSEC 0 EOF"));
        addEntry(*drawing, Table::Style, "B");
        EXPECT_EQ(drawing->record(drawing->structure().table(Table::Style).begin).integerOr(70, -1), after);
    }
}

TEST(Tables, aBlocksNewNameReachesWhatNamesItAndNothingElse) {
    const auto text = [](const std::string& name) {
        return drawn(
            "0 SECTION 2 HEADER 9 $DIMBLK 1 " + name +
            " 9 $DIMPOST 1 old 0 ENDSEC 0 SECTION 2 TABLES 0 TABLE 2 BLOCK_RECORD 0 BLOCK_RECORD 2 " + name +
            " 0 ENDTAB 0 TABLE 2 DIMSTYLE 0 DIMSTYLE 2 old 3 old 4 old 5 " + name + " 6 " + name + " 7 " +
            name +
            " 8 old 0 ENDTAB 0 TABLE 2 LTYPE 0 LTYPE 2 old 3 old 0 ENDTAB 0 ENDSEC "
            "0 SECTION 2 BLOCKS 0 BLOCK 8 old 2 " +
            name + " 3 " + name + " 1 old 0 ENDBLK 0 ENDSEC 0 SECTION 2 ENTITIES 0 INSERT 8 old 2 " + name +
            " 0 DIMENSION 2 " + name + " 3 old 0 TEXT 1 old 7 old 0 LINE 6 old 0 ENDSEC 0 EOF");
    };
    const auto drawing = parsed(text("old"));
    renameEntry(*drawing, Table::BlockRecord, findEntry(*drawing, Table::BlockRecord, "OLD"), "new");
    EXPECT_EQ(drawing->serialise(), text("new"));
}

TEST(Tables, aDictionaryIsPairsOfNameAndHandle) {
    const auto drawing = parsed(
        drawn("0 SECTION 2 OBJECTS 0 DICTIONARY 5 A 330 0 100 AcDbDictionary 281 1 350 99 3 HARD 360 B 3 "
              "SOFT 350 C 3 NOTHING 3 NAMED 40 1.0 0 XRECORD 5 B 0 XRECORD 5 C 0 ENDSEC 0 EOF"));
    std::string seen;
    for (const DictionaryEntry& entry : dictionaryEntries(*drawing, rootDictionary(*drawing))) {
        seen += entry.name + "=" + formatHandle(entry.handle) + " ";
    }
    EXPECT_EQ(seen, "HARD=B SOFT=C ");
    EXPECT_EQ(findInDictionary(*drawing, rootDictionary(*drawing), "soft"), drawing->findHandle(0xC));
}

}  // namespace
}  // namespace drafthost
