// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "drafthost/commands/LayerTable.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/ScriptReader.h"
#include "tests/commands/TestDrawings.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

using namespace commands;

class Layer : public TestHost {
  protected:
    Layer() { open(write("plan.dxf", drawing2000())); }

    Drawing& drawing() { return document().drawing(); }
    RecordId layer(std::string_view name) {
        RecordId found = findEntry(drawing(), Table::Layer, name);
        EXPECT_NE(found, NoRecord) << name;
        return found;
    }
    bool off(std::string_view name) { return layerIsOff(drawing(), layer(name)); }
    bool frozen(std::string_view name) { return layerHas(drawing(), layer(name), LayerFrozen); }
    bool locked(std::string_view name) { return layerHas(drawing(), layer(name), LayerLocked); }
};

TEST_F(Layer, OneLineOfAScriptDoesManyThings) {
    script("-layer thaw * on * unlock * color 1 Walls,Doors ltype dashed \"Hidden lines\" set Walls \n");
    EXPECT_TRUE(idle()) << output;
    EXPECT_EQ(host.script().state(), ScriptReader::State::Idle) << output;
    EXPECT_FALSE(frozen("Doors"));
    EXPECT_FALSE(locked("Hidden lines"));
    EXPECT_EQ(layerColor(drawing(), layer("Doors")).index, 1);
    EXPECT_EQ(drawing().record(layer("Hidden lines")).textOr(6, ""), "DASHED");
    EXPECT_EQ(text("CLAYER"), "Walls");
    EXPECT_EQ(integer("DBMOD") & 3, 3);
    type("qsave\nlayer thaw * on *\n\n");
    EXPECT_EQ(integer("DBMOD"), 0) << "nothing has changed";
}

TEST_F(Layer, MakesNewAndRenamedLayersUsable) {
    type("-layer make \"My layer\" new A,B,walls off B rename A C\n\n");
    EXPECT_EQ(text("CLAYER"), "My layer") << output;
    EXPECT_NE(output.find("exists already"), std::string::npos);
    EXPECT_TRUE(off("B"));
    EXPECT_EQ(findEntry(drawing(), Table::Layer, "A"), NoRecord);
    layer("C");
    type("-layer make B\n\n");
    EXPECT_FALSE(off("B"));
    type("-layer rename walls Mauern\n\nqsave\n");
    std::string saved = read(path("plan.dxf"));
    EXPECT_NE(saved.find("AcDbEntity\n  8\nMauern\n"), std::string::npos) << "entities follow";
    EXPECT_EQ(saved.find("Walls"), std::string::npos);
}

TEST_F(Layer, RefusesWhatALayerCannotBeAndAsksOn) {
    for (const char* answers :
         {"set Nowhere", "set Doors", "rename 0 Zero", "rename Walls Doors", "rename Nowhere X", "new a|b",
          "freeze 0", "on Nowhere", "color 300", "color co", "ltype NONE", "lweight 9", "transparency 91",
          "material Wood", "pstyle Normal", "state", "unknown", "color t 1,2,3"}) {
        type(std::string("-layer ") + answers + "\n");
        EXPECT_GT(output.size(), 60u) << answers;
        EXPECT_FALSE(idle()) << answers << ": one wrong answer must not end the command";
        type("\x1b\x1b");
        EXPECT_EQ(integer("DBMOD"), 0) << answers << " changed the drawing";
    }
}

TEST_F(Layer, TheCurrentLayerIsProtectedFromPatterns) {
    type("-layer off *\ny\n\n");
    EXPECT_TRUE(off("0") && off("Walls"));
    type("-layer on * off *\nn\n\n");
    EXPECT_FALSE(off("0"));
    EXPECT_TRUE(off("Walls"));
    type("expert 1 -layer on * off 0\n\n");
    EXPECT_TRUE(off("0")) << "EXPERT 1 does not ask";
    type("-layer freeze *\n\n");
    EXPECT_FALSE(frozen("0"));
    EXPECT_TRUE(frozen("Walls"));
    EXPECT_TRUE(idle());
    type("-layer thaw * set Walls color -3\n\n\n");
    EXPECT_TRUE(off("Walls")) << "a negative colour turns off";
    EXPECT_EQ(layerColor(drawing(), layer("Walls")).index, 3);
    type("-layer set walls\n\n");
    EXPECT_FALSE(off("Walls"));
}

TEST_F(Layer, PropertiesAreWrittenInTheirOwnTags) {
    type(
        "-layer lweight 0.36 Walls plot no Walls transparency 50 Walls\ndescription outer "
        "walls\nWalls\n\nqsave\n");
    Record record = drawing().record(layer("Walls"));
    EXPECT_EQ(record.integerOr(370, 0), 35);
    EXPECT_EQ(record.integerOr(290, 1), 0);
    EXPECT_EQ(layerTransparency(drawing(), layer("Walls")), 50);
    EXPECT_EQ(layerDescription(drawing(), layer("Walls")), "outer walls");
    std::string saved = read(path("plan.dxf"));
    EXPECT_NE(saved.find("1001\nAcCmTransparency\n1071\n33554559\n"), std::string::npos);
    EXPECT_NE(saved.find("1001\nAcAecLayerStandard\n1000\n\n1000\nouter walls\n"), std::string::npos);
    type("-layer description inner\nWalls\ntransparency 0 Walls\n\n");
    EXPECT_EQ(layerDescription(drawing(), layer("Walls")), "inner");
    EXPECT_EQ(layerTransparency(drawing(), layer("Walls")), 0);

    host.newDocument();
    type("-layer make Tint color t 255,0,10 Tint\n\n");
    EXPECT_EQ(layerColor(drawing(), layer("Tint")).rgb, 0xFF000A);
    EXPECT_EQ(layerColor(drawing(), layer("Tint")).index, 1);
    type("-layer color blue Tint\n\n");
    EXPECT_EQ(layerColor(drawing(), layer("Tint")), (Color{5, {}})) << "the true colour goes";
}

TEST_F(Layer, AnOldDrawingTakesWhatItsVersionHolds) {
    open(write("old.dxf", drawingR12()));
    type("-layer make NEW_1 color 2 points freeze points\n\nqsave\n");
    EXPECT_TRUE(frozen("POINTS"));
    std::string saved = read(path("old.dxf"));
    EXPECT_EQ(saved.find("AcDb"), std::string::npos);
    EXPECT_EQ(saved.find("\n  5\n"), std::string::npos) << "no handle may be given to one record alone";
    for (const char* option : {"lweight", "plot", "pstyle", "material", "transparency", "description",
                               "make \"two words\"", "color t"}) {
        type(std::string("-layer ") + option + "\n");
        EXPECT_NE(output.find("version"), std::string::npos) << option << ": " << output;
        type("\x1b\x1b");
    }
    EXPECT_EQ(integer("DBMOD"), 0);
}

TEST_F(Layer, ListsByPattern) {
    type("-layer ? d*,h* \n");
    EXPECT_NE(output.find("\"Doors\""), std::string::npos);
    EXPECT_NE(output.find("\"Hidden lines\""), std::string::npos);
    EXPECT_EQ(output.find("\"Walls\""), std::string::npos);
    EXPECT_NE(output.find("frozen"), std::string::npos);
}

}  // namespace

}  // namespace drafthost::test
