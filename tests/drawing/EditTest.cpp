// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "tests/drawing/Samples.h"

#include <map>

namespace drafthost {
namespace {

RecordId find(const Drawing& drawing, std::string_view type, int skip = 0) {
    RecordId id = drawing.first();
    while (id != NoRecord && (drawing.type(id) != type || skip-- > 0)) {
        id = drawing.next(id);
    }
    return id;
}

TEST(Edit, changesOnlyTheBytesOfTheTag) {
    const std::string before =
        lines({"  0", "SECTION", "  2", "ENTITIES", "999", " note ", "  0", "LINE", "  8", "OLD ", " 62",
               "     7", " 10", "1.50", "  0", "ENDSEC", "  0", "EOF"},
              "\r\n");
    const auto drawing = parsed(before);
    const RecordId line = find(*drawing, "LINE");
    drawing->setTag(line, 2, 7);
    drawing->setTag(line, 3, 1.5);
    EXPECT_FALSE(drawing->modified());
    drawing->setTag(line, 2, 30);
    drawing->setTag(line, 1, "NEW");
    drawing->insertTag(line, 2, 6, "DASHED");
    drawing->appendTag(line, 20, 4);
    EXPECT_TRUE(drawing->modified());
    EXPECT_EQ(drawing->serialise(),
              lines({"  0", "SECTION", "  2", "ENTITIES", "999", " note ", "  0", "LINE",
                     "  8", "NEW",     "  6", "DASHED",   " 62", "    30", " 10", "1.50",
                     " 20", "4.0",     "  0", "ENDSEC",   "  0", "EOF"},
                    "\r\n"));
    drawing->removeTag(line, 2);
    EXPECT_EQ(drawing->record(line).code(2), 62);
    // The last tag of all before the end.
    const auto open = parsed(drawn("0 SECTION 2 ENTITIES 0 LINE 8 OLD 0 EOF"));
    open->setTag(find(*open, "LINE"), 1, "NEW");
    EXPECT_EQ(open->serialise(), drawn("0 SECTION 2 ENTITIES 0 LINE 8 NEW 0 EOF"));
}

TEST(Edit, putsTagsInFrontOfExtendedData) {
    const auto drawing =
        parsed(drawn("0 SECTION 2 ENTITIES 0 LINE 100 AcDbEntity 8 0 100 AcDbLine 10 1 20 2 1001 APP "
                     "1070 5 0 ENDSEC 0 EOF"));
    const RecordId line = find(*drawing, "LINE");
    drawing->put(line, 62, 1, {6, 8});
    drawing->put(line, 39, 2);
    drawing->putPoint(line, 11, {3, 4, 5}, true);
    std::string codes;
    const Record record = drawing->record(line);
    for (std::size_t i = 0; i < record.size(); ++i) {
        codes += std::to_string(record.code(i)) + " ";
    }
    EXPECT_EQ(codes, "0 100 8 62 100 10 20 39 11 21 31 1001 1070 ");
}

// New and deleted records in every order: walking forth and back and writing agree.
TEST(Edit, keepsTheOrderOfInsertedAndDeletedRecords) {
    const auto drawing = parsed(drawn("0 SECTION 2 ENTITIES 0 A 0 B 0 ENDSEC 0 EOF"));
    const RecordId a = find(*drawing, "A");
    const RecordId b = find(*drawing, "B");
    const RecordId d = drawing->insertRecord(b, "D");
    drawing->insertRecord(b, "C");
    const RecordId e = drawing->insertRecord(d, "E");
    drawing->insertRecord(a, "A2");
    drawing->deleteRecord(b);
    drawing->deleteRecord(e);
    EXPECT_EQ(drawing->serialise(), drawn("0 SECTION 2 ENTITIES 0 A 0 A2 0 C 0 D 0 ENDSEC 0 EOF"));
    drawing->restoreRecord(b);
    drawing->restoreRecord(e);
    EXPECT_EQ(drawing->serialise(), drawn("0 SECTION 2 ENTITIES 0 A 0 A2 0 B 0 C 0 D 0 E 0 ENDSEC 0 EOF"));
    std::vector<RecordId> forth;
    for (RecordId id = drawing->first(); id != NoRecord; id = drawing->next(id)) {
        forth.push_back(id);
    }
    std::vector<RecordId> back;
    for (RecordId id = forth.back(); id != NoRecord; id = drawing->previous(id)) {
        back.insert(back.begin(), id);
    }
    EXPECT_EQ(forth, back);
}

TEST(Edit, worksOnBinaryDrawings) {
    std::string bytes;
    std::string error;
    ASSERT_TRUE(Drawing::createNew(true)->convert({true, 16}, bytes, error)) << error;
    const auto drawing = parsed(bytes);
    drawing->put(findEntry(*drawing, Table::Layer, "0"), 62, 3);
    setHeader(*drawing, "$CLAYER", 8, "W\xC3\xA4nde");
    const RecordId line = addEntity(*drawing, "LINE", "0", false);
    drawing->appendTag(line, 310, "AABBCC");
    const auto again = parsed(drawing->serialise());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->record(findEntry(*again, Table::Layer, "0")).integerOr(62, 0), 3);
    EXPECT_EQ(headerText(*again, "$CLAYER", ""), "W\xC3\xA4nde");
    EXPECT_EQ(again->record(lastEntity(*again)).textOr(310, ""), "AABBCC");
}

TEST(Edit, readsAndSetsHeaderVariables) {
    const auto drawing =
        parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 AC1009 9 $EXTMIN 10 1 20 2 9 $CLAYER 8 0 9 "
                     "$ORTHOMODE 70 1 0 ENDSEC 0 EOF"));
    EXPECT_EQ(headerPoint(*drawing, "$extmin", {}), (Point{1, 2, 0}));
    EXPECT_EQ(headerVariable(*drawing, "$EXTMIN")->reals, 2);
    EXPECT_EQ(headerVariable(*drawing, "$CLAYER")->code, 8);
    EXPECT_EQ(headerVariables(*drawing).size(), 4U);
    EXPECT_FALSE(headerVariable(*drawing, "$NONE"));
    setHeaderPoint(*drawing, "$EXTMIN", {-1, -2, -3}, 3);
    setHeader(*drawing, "$LTSCALE", 40, 2.5);
    setHeader(*drawing, "$ORTHOMODE", 70, 0);
    EXPECT_EQ(drawing->serialise(),
              drawn("0 SECTION 2 HEADER 9 $ACADVER 1 AC1009 9 $EXTMIN 10 -1.0 20 -2.0 30 -3.0 9 "
                    "$CLAYER 8 0 9 $ORTHOMODE 70 0 9 $LTSCALE 40 2.5 0 ENDSEC 0 EOF"));
    const auto bare = parsed(drawn("999 hi 0 SECTION 2 ENTITIES 0 ENDSEC 0 EOF"));
    setHeader(*bare, "$LTSCALE", 40, 2);
    EXPECT_EQ(
        bare->serialise(),
        drawn("999 hi 0 SECTION 2 HEADER 9 $LTSCALE 40 2.0 0 ENDSEC 0 SECTION 2 ENTITIES 0 ENDSEC 0 EOF"));
}

TEST(Edit, addsAndRenamesTableEntries) {
    const auto drawing = Drawing::createNew(false);
    const RecordId walls = addEntry(*drawing, Table::Layer, "W\xC3\x84NDE");
    EXPECT_EQ(findEntry(*drawing, Table::Layer, "w\xC3\xA4nde"), walls);
    EXPECT_EQ(drawing->findHandle(drawing->handle(walls)), walls);
    const RecordId line = addEntity(*drawing, "LINE", "w\xC3\xA4nde", false);
    drawing->appendTag(line, 1001, "ACAD");
    drawing->appendTag(line, 1003, "W\xC3\x84NDE");
    setHeader(*drawing, "$CLAYER", 8, "W\xC3\x84NDE");
    renameEntry(*drawing, Table::Layer, walls, "Tragend");
    EXPECT_EQ(entryName(*drawing, walls), "Tragend");
    EXPECT_EQ(drawing->record(line).textOr(8, ""), "Tragend");
    EXPECT_EQ(drawing->record(line).textOr(1003, ""), "Tragend");
    EXPECT_EQ(headerText(*drawing, "$CLAYER", ""), "Tragend");
    EXPECT_EQ(findEntry(*drawing, Table::Layer, "W\xC3\x84NDE"), NoRecord);
    EXPECT_EQ(tableEntries(*drawing, Table::Layer).size(), 2U);
    deleteEntry(*drawing, Table::Layer, walls);
    EXPECT_EQ(tableEntries(*drawing, Table::Layer).size(), 1U);
    // A drawing of two lines gets its table, and what stands around it, made.
    const auto bare = parsed(drawn("0 SECTION 2 ENTITIES 0 ENDSEC 0 EOF"));
    addEntry(*bare, Table::Layer, "NEW");
    EXPECT_NE(findEntry(*parsed(bare->serialise()), Table::Layer, "new"), NoRecord);
}

TEST(Edit, addsNothingBehindTheEndOfTheFile) {
    // Neither section is closed.
    const auto drawing = parsed(drawn("0 SECTION 2 TABLES 0 SECTION 2 ENTITIES 0 LINE 8 0 0 EOF"));
    addEntry(*drawing, Table::Layer, "NEW");
    addEntity(*drawing, "POINT", "NEW", false);
    const std::string text = drawing->serialise();
    EXPECT_TRUE(text.ends_with("EOF\n")) << text;
    EXPECT_LT(text.find("LINE"), text.find("POINT"));
    const auto again = parsed(text);
    EXPECT_NE(findEntry(*again, Table::Layer, "NEW"), NoRecord);
    EXPECT_NE(find(*again, "POINT"), NoRecord);
    const auto classes = parsed(drawn("0 SECTION 2 CLASSES 0 CLASS 1 X 0 EOF"));
    EXPECT_NE(addEntry(*classes, Table::Layer, "NEW"), NoRecord);
    EXPECT_TRUE(classes->serialise().ends_with("EOF\n"));
    EXPECT_NE(findEntry(*parsed(classes->serialise()), Table::Layer, "NEW"), NoRecord);
}

TEST(Edit, walkingBrokenLayoutsComesToAnEnd) {
    // Two layouts claim one block, and that block lacks its end.
    const auto drawing = parsed(drawn(
        "0 SECTION 2 HEADER 9 $ACADVER 1 AC1015 0 ENDSEC 0 SECTION 2 TABLES 0 TABLE 2 BLOCK_RECORD "
        "0 BLOCK_RECORD 5 A 2 *Model_Space 0 BLOCK_RECORD 5 B 2 *Paper_Space0 0 ENDTAB 0 ENDSEC "
        "0 SECTION 2 BLOCKS 0 BLOCK 2 *Paper_Space0 0 CIRCLE 5 30 0 ENDSEC 0 SECTION 2 ENTITIES 0 LINE 5 20 "
        "0 ENDSEC 0 SECTION 2 OBJECTS 0 LAYOUT 100 AcDbLayout 1 Model 71 0 330 A "
        "0 LAYOUT 100 AcDbLayout 1 One 71 1 330 B 0 LAYOUT 100 AcDbLayout 1 Two 71 2 330 B 0 ENDSEC 0 EOF"));
    std::string seen;
    for (RecordId id = firstEntity(*drawing); id != NoRecord && seen.size() < 100;
         id = nextEntity(*drawing, id, true)) {
        seen += std::string(drawing->type(id)) + " ";
    }
    EXPECT_EQ(seen, "LINE CIRCLE ");
}

TEST(Edit, walksEntitiesOfAllLayouts) {
    const auto drawing =
        parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 AC1015 0 ENDSEC 0 SECTION 2 TABLES 0 TABLE 2 "
                     "BLOCK_RECORD 0 BLOCK_RECORD 5 A "
                     "2 *Model_Space 0 BLOCK_RECORD 5 B 2 *Paper_Space 0 BLOCK_RECORD 5 C 2 *Paper_Space0 0 "
                     "ENDTAB 0 ENDSEC "
                     "0 SECTION 2 BLOCKS 0 BLOCK 2 *Model_Space 0 ENDBLK 0 BLOCK 2 *Paper_Space0 0 CIRCLE 5 "
                     "30 0 ENDBLK 0 BLOCK 2 "
                     "other 0 ARC 5 31 0 ENDBLK 0 ENDSEC 0 SECTION 2 ENTITIES 0 INSERT 5 20 66 1 0 ATTRIB 5 "
                     "21 0 SEQEND 5 22 "
                     "0 LINE 5 23 67 1 0 ENDSEC 0 SECTION 2 OBJECTS 0 LAYOUT 100 AcDbPlotSettings 1 x 100 "
                     "AcDbLayout 1 Second 71 2 "
                     "330 C 0 LAYOUT 100 AcDbLayout 1 Model 71 0 330 A 0 LAYOUT 100 AcDbLayout 1 First 71 1 "
                     "330 B 0 ENDSEC 0 EOF"));
    std::string seen;
    for (RecordId id = firstEntity(*drawing); id != NoRecord; id = nextEntity(*drawing, id, true)) {
        const Layout* layout = layoutOf(*drawing, id);
        seen += std::string(drawing->type(id)) + ":" + (layout != nullptr ? layout->name : "-") + " ";
    }
    EXPECT_EQ(seen, "INSERT:Model ATTRIB:Model SEQEND:Model LINE:First CIRCLE:Second ");
    EXPECT_EQ(drawing->handle(lastEntity(*drawing)), 0x23U);
    EXPECT_EQ(layoutOf(*drawing, drawing->findHandle(0x31)), nullptr);
    EXPECT_EQ(nextEntity(*drawing, drawing->findHandle(0x31), false), NoRecord);
    ASSERT_EQ(deleteEntity(*drawing, drawing->findHandle(0x20)).size(), 3U);
    EXPECT_EQ(drawing->type(firstEntity(*drawing)), "LINE");
    const RecordId added = addEntity(*drawing, "POINT", "0", false);
    EXPECT_EQ(lastEntity(*drawing), added);
    EXPECT_EQ(layoutOf(*drawing, added)->name, "Model");
    EXPECT_GT(drawing->handle(added), 0x31U);
}

// What people start with, tag by tag: the file is looked over when the new drawing is changed.
TEST(Edit, makesTheNewDrawingsThatAreKept) {
    for (const bool metric : {false, true}) {
        const auto drawing = Drawing::createNew(metric);
        for (const char* date : {"$TDCREATE", "$TDUPDATE"}) {
            setHeader(*drawing, date, 40, 2440587.5);
        }
        const std::string name = metric ? "new-metric.dxf" : "new-imperial.dxf";
        EXPECT_EQ(drawing->serialise(), contentOf(std::string(NEW_DRAWINGS) + "/" + name)) << name;
    }
}

TEST(Edit, makesNewDrawingsThatAreWhole) {
    for (const bool metric : {false, true}) {
        const auto drawing = Drawing::createNew(metric);
        EXPECT_FALSE(drawing->modified());
        EXPECT_EQ(drawing->version(), "AC1027");
        EXPECT_EQ(headerInteger(*drawing, "$MEASUREMENT", -1), metric ? 1 : 0);
        ASSERT_EQ(layouts(*drawing).size(), 2U);
        EXPECT_NE(layouts(*drawing)[1].blockRecord, NoRecord);
        // Every handle that is referred to is there, and none twice.
        std::map<std::uint64_t, int> known;
        for (RecordId id = drawing->first(); id != NoRecord; id = drawing->next(id)) {
            if (const std::uint64_t handle = drawing->handle(id); handle != 0) {
                EXPECT_EQ(++known[handle], 1) << formatHandle(handle);
            }
        }
        for (RecordId id = drawing->first(); id != NoRecord; id = drawing->next(id)) {
            const Record record = drawing->record(id);
            for (std::size_t i = 0; i < record.size(); ++i) {
                if (record.code(i) >= 330 && record.code(i) < 400 &&
                    kindOf(record.code(i)) == ValueKind::Handle) {
                    EXPECT_TRUE(record.handle(i) == 0 || known.contains(record.handle(i))) << record.type();
                }
            }
        }
        const RecordId group = findInDictionary(*drawing, rootDictionary(*drawing), "acad_layout");
        ASSERT_NE(group, NoRecord);
        EXPECT_EQ(dictionaryEntries(*drawing, group).size(), 2U);
    }
}

}  // namespace
}  // namespace drafthost
