// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/commands/TestDrawings.h"

#include <initializer_list>
#include <string_view>
#include <utility>

namespace drafthost::test {

namespace {

using Tags = std::initializer_list<std::pair<int, std::string_view>>;

struct Text {
    std::string bytes;
    Text& add(Tags tags) {
        for (const auto& [code, value] : tags) {
            std::string number = std::to_string(code);
            bytes += std::string(number.size() < 3 ? 3 - number.size() : 0, ' ') + number + "\n" +
                     std::string(value) + "\n";
        }
        return *this;
    }
    Text& table(std::string_view name, std::string_view handle) {
        return add({{0, "TABLE"}, {2, name}, {5, handle}, {330, "0"}, {100, "AcDbSymbolTable"}, {70, "1"}});
    }
    Text& endTable() { return add({{0, "ENDTAB"}}); }
    Text& layer(std::string_view handle, std::string_view name, std::string_view flags) {
        return add({{0, "LAYER"},
                    {5, handle},
                    {330, "2"},
                    {100, "AcDbSymbolTableRecord"},
                    {100, "AcDbLayerTableRecord"},
                    {2, name},
                    {70, flags},
                    {62, "7"},
                    {6, "Continuous"},
                    {370, "-3"}});
    }
    Text& linetype(std::string_view handle, std::string_view name) {
        return add({{0, "LTYPE"},
                    {5, handle},
                    {330, "5"},
                    {100, "AcDbSymbolTableRecord"},
                    {100, "AcDbLinetypeTableRecord"},
                    {2, name},
                    {70, "0"},
                    {3, ""},
                    {72, "65"},
                    {73, "0"},
                    {40, "0.0"}});
    }
    Text& blockRecord(std::string_view handle, std::string_view name, std::string_view layout) {
        return add({{0, "BLOCK_RECORD"},
                    {5, handle},
                    {330, "1"},
                    {100, "AcDbSymbolTableRecord"},
                    {100, "AcDbBlockTableRecord"},
                    {2, name},
                    {340, layout}});
    }
    Text& block(std::string_view handle, std::string_view owner, std::string_view name) {
        return add({{0, "BLOCK"},
                    {5, handle},
                    {330, owner},
                    {100, "AcDbEntity"},
                    {8, "0"},
                    {100, "AcDbBlockBegin"},
                    {2, name},
                    {70, "0"},
                    {10, "0.0"},
                    {20, "0.0"},
                    {30, "0.0"},
                    {3, name},
                    {1, ""}});
    }
    Text& endBlock(std::string_view handle, std::string_view owner) {
        return add(
            {{0, "ENDBLK"}, {5, handle}, {330, owner}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbBlockEnd"}});
    }
    Text& circle(std::string_view handle, std::string_view owner, bool paper, std::string_view x,
                 std::string_view radius) {
        add({{0, "CIRCLE"}, {5, handle}, {330, owner}, {100, "AcDbEntity"}});
        if (paper) {
            add({{67, "1"}});
        }
        return add({{8, "0"}, {100, "AcDbCircle"}, {10, x}, {20, "10.0"}, {30, "0.0"}, {40, radius}});
    }
    Text& layout(std::string_view handle, std::string_view name, std::string_view order,
                 std::string_view block, bool model) {
        return add({{0, "LAYOUT"},
                    {5, handle},
                    {330, "1A"},
                    {100, "AcDbPlotSettings"},
                    {1, ""},
                    {70, model ? "1024" : "0"},
                    {100, "AcDbLayout"},
                    {1, name},
                    {70, "1"},
                    {71, order},
                    {10, "0.0"},
                    {20, "0.0"},
                    {11, "12.0"},
                    {21, "9.0"},
                    {330, block}});
    }
};

}  // namespace

std::string drawing2000() {
    Text t;
    t.add({{0, "SECTION"},     {2, "HEADER"},    {9, "$ACADVER"}, {1, "AC1015"},   {9, "$DWGCODEPAGE"},
           {3, "ANSI_1252"},   {9, "$HANDSEED"}, {5, "100"},      {9, "$EXTMIN"},  {10, "1.0"},
           {20, "1.0"},        {30, "0.0"},      {9, "$EXTMAX"},  {10, "2.0"},     {20, "2.0"},
           {30, "0.0"},        {9, "$LIMMIN"},   {10, "0.0"},     {20, "0.0"},     {9, "$LIMMAX"},
           {10, "40.0"},       {20, "30.0"},     {9, "$CLAYER"},  {8, "0"},        {9, "$TILEMODE"},
           {70, "1"},          {9, "$LTSCALE"},  {40, "1.0"},     {9, "$CECOLOR"}, {62, "256"},
           {9, "$PSTYLEMODE"}, {290, "1"},       {0, "ENDSEC"}});
    t.add({{0, "SECTION"}, {2, "CLASSES"}, {0, "ENDSEC"}, {0, "SECTION"}, {2, "TABLES"}});
    t.table("VPORT", "8")
        .add({{0, "VPORT"},
              {5, "30"},
              {330, "8"},
              {100, "AcDbSymbolTableRecord"},
              {100, "AcDbViewportTableRecord"},
              {2, "*Active"},
              {70, "0"},
              {10, "0.0"},
              {20, "0.0"},
              {11, "1.0"},
              {21, "1.0"},
              {12, "5.0"},
              {22, "4.0"},
              {16, "0.0"},
              {26, "0.0"},
              {36, "1.0"},
              {17, "0.0"},
              {27, "0.0"},
              {37, "0.0"},
              {40, "10.0"},
              {41, "2.0"},
              {51, "0.0"},
              {75, "0"},
              {76, "0"}})
        .endTable();
    t.table("LTYPE", "5")
        .linetype("14", "ByBlock")
        .linetype("15", "ByLayer")
        .linetype("16", "Continuous")
        .linetype("17", "DASHED")
        .endTable();
    t.table("LAYER", "2")
        .layer("10", "0", "0")
        .layer("11", "Walls", "0")
        .layer("12", "Doors", "1")
        .layer("13", "Hidden lines", "4")
        .endTable();
    t.table("STYLE", "3")
        .add({{0, "STYLE"},
              {5, "18"},
              {330, "3"},
              {100, "AcDbSymbolTableRecord"},
              {100, "AcDbTextStyleTableRecord"},
              {2, "Standard"},
              {70, "0"},
              {40, "0.0"},
              {41, "1.0"},
              {50, "0.0"},
              {71, "0"},
              {42, "0.2"},
              {3, "txt"},
              {4, ""}})
        .endTable();
    t.table("APPID", "9")
        .add({{0, "APPID"},
              {5, "19"},
              {330, "9"},
              {100, "AcDbSymbolTableRecord"},
              {100, "AcDbRegAppTableRecord"},
              {2, "ACAD"},
              {70, "0"}})
        .endTable();
    t.table("BLOCK_RECORD", "1")
        .blockRecord("1F", "*Model_Space", "22")
        .blockRecord("58", "*Paper_Space", "59")
        .blockRecord("5A", "*Paper_Space0", "5B")
        .endTable();
    t.add({{0, "ENDSEC"}, {0, "SECTION"}, {2, "BLOCKS"}});
    t.block("20", "1F", "*Model_Space")
        .endBlock("21", "1F")
        .block("60", "58", "*Paper_Space")
        .endBlock("61", "58");
    t.block("62", "5A", "*Paper_Space0").circle("63", "5A", true, "70.0", "7.0").endBlock("64", "5A");
    t.add({{0, "ENDSEC"},
           {0, "SECTION"},
           {2, "ENTITIES"},
           {0, "LINE"},
           {5, "40"},
           {330, "1F"},
           {100, "AcDbEntity"},
           {8, "Walls"},
           {100, "AcDbLine"},
           {10, "0.0"},
           {20, "0.0"},
           {30, "0.0"},
           {11, "30.0"},
           {21, "20.0"},
           {31, "0.0"}});
    t.circle("41", "1F", false, "10.0", "2.0").circle("65", "58", true, "50.0", "5.0");
    t.add({{0, "ENDSEC"},
           {0, "SECTION"},
           {2, "OBJECTS"},
           {0, "DICTIONARY"},
           {5, "C"},
           {330, "0"},
           {100, "AcDbDictionary"},
           {281, "1"},
           {3, "ACAD_LAYOUT"},
           {350, "1A"},
           {0, "DICTIONARY"},
           {5, "1A"},
           {330, "C"},
           {100, "AcDbDictionary"},
           {281, "1"},
           {3, "Model"},
           {350, "22"},
           {3, "Sheet"},
           {350, "59"},
           {3, "Detail"},
           {350, "5B"}});
    t.layout("22", "Model", "0", "1F", true)
        .layout("59", "Sheet", "1", "58", false)
        .layout("5B", "Detail", "2", "5A", false);
    t.add({{0, "ENDSEC"}, {0, "EOF"}});
    return t.bytes;
}

std::string drawingR12() {
    Text t;
    t.add({{0, "SECTION"},
           {2, "HEADER"},
           {9, "$ACADVER"},
           {1, "AC1009"},
           {9, "$LIMMIN"},
           {10, "0.0"},
           {20, "0.0"},
           {9, "$LIMMAX"},
           {10, "10.0"},
           {20, "8.0"},
           {0, "ENDSEC"}});
    t.add({{0, "SECTION"},
           {2, "TABLES"},
           {0, "TABLE"},
           {2, "LAYER"},
           {70, "2"},
           {0, "LAYER"},
           {2, "0"},
           {70, "0"},
           {62, "7"},
           {6, "CONTINUOUS"},
           {0, "LAYER"},
           {2, "POINTS"},
           {70, "0"},
           {62, "3"},
           {6, "CONTINUOUS"},
           {0, "ENDTAB"},
           {0, "ENDSEC"}});
    t.add({{0, "SECTION"},
           {2, "ENTITIES"},
           {0, "LINE"},
           {8, "POINTS"},
           {10, "1.0"},
           {20, "2.0"},
           {11, "5.0"},
           {21, "4.0"},
           {0, "ENDSEC"},
           {0, "EOF"}});
    return t.bytes;
}

}  // namespace drafthost::test
