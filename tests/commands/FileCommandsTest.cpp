// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Drawing.h"
#include "tests/commands/TestDrawings.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

class FileCommands : public TestHost {
  protected:
    FileCommands() {
        std::string reason;
        host.variables().set("SDI", 1, reason);
        first = write("first.dxf", drawing2000());
        second = write("second.dxf", drawingR12());
    }
    void change() { type("userr1 1.5\n"); }

    std::string first;
    std::string second;
};

TEST_F(FileCommands, OpensByEveryListThatAModuleSends) {
    EXPECT_EQ(module({"._open", first}), Outcome::Ok);
    EXPECT_TRUE(idle()) << "waits for an answer that is not coming";
    EXPECT_EQ(text("DWGNAME"), "first.dxf");
    EXPECT_EQ(integer("WRITESTAT"), 1);

    EXPECT_EQ(module({"._open", second, "_y"}), Outcome::Ok);
    EXPECT_TRUE(idle());
    EXPECT_EQ(text("DWGNAME"), "second.dxf");
    EXPECT_EQ(integer("WRITESTAT"), 0);

    change();
    ASSERT_NE(integer("DBMOD"), 0);
    EXPECT_EQ(module({"._open", "_y", first}), Outcome::Ok);
    EXPECT_EQ(text("DWGNAME"), "first.dxf");
    EXPECT_EQ(integer("DBMOD"), 0);

    change();
    EXPECT_EQ(module({"._open", "_y", second, "_y"}), Outcome::Ok);
    EXPECT_EQ(text("DWGNAME"), "second.dxf");
    EXPECT_EQ(integer("WRITESTAT"), 0);
    EXPECT_EQ(host.documents().size(), 1u);
}

TEST_F(FileCommands, AFileThatCannotBeOpenedFailsWithItsNameAndTheCause) {
    module({"._open", first});
    std::string broken = write("broken.dxf", "  0\nSECTION\n  2\nHEADER\nnonsense\n");
    std::string dwg = write("other.dwg", "AC1032" + std::string(200, '\0'));
    for (const std::string& file : {path("nowhere.dxf"), broken, dwg}) {
        EXPECT_EQ(module({"._open", file}), Outcome::Failed) << file;
        EXPECT_NE(output.find(file), std::string::npos) << output;
        EXPECT_TRUE(idle());
        EXPECT_EQ(text("DWGNAME"), "first.dxf") << "the drawing that was open is lost";
    }
}

TEST_F(FileCommands, UnsavedChangesAreOnlyDroppedByYes) {
    module({"._open", first});
    change();
    type("open\nn\n");
    EXPECT_EQ(text("DWGNAME"), "first.dxf");
    EXPECT_NE(integer("DBMOD"), 0);
    type("open\n" + second + "\n");
    EXPECT_FALSE(idle()) << "a path is no answer to the question about the changes";
    type("y\n" + second + "\n");
    EXPECT_EQ(text("DWGNAME"), "second.dxf");
    change();
    EXPECT_EQ(module({"._new", "y", ""}), Outcome::Ok);
    EXPECT_EQ(integer("DWGTITLED"), 0);
    EXPECT_EQ(integer("DBMOD"), 0);
    EXPECT_EQ(module({"._new", ""}), Outcome::Ok);
    EXPECT_TRUE(idle());
}

TEST_F(FileCommands, NewTakesATemplateOrTheUnitsOfTheBuiltInOne) {
    module({"._new", first});
    EXPECT_EQ(integer("DWGTITLED"), 0);
    EXPECT_EQ(std::get<Point2>(variable("LIMMAX")), (Point2{40, 30}));
    module({"._new", ".", "m"});
    EXPECT_EQ(integer("MEASUREMENT"), 1);
    EXPECT_EQ(integer("INSUNITS"), 4);
    EXPECT_EQ(integer("DBMOD"), 0);
    EXPECT_EQ(module({"._new", path("nowhere.dxf")}), Outcome::Failed);
}

TEST_F(FileCommands, SeveralDrawingsAreKeptAndClosedOneByOne) {
    type("sdi 0\n");
    module({"._open", first});
    change();
    module({"._open", second});
    EXPECT_EQ(host.documents().size(), 3u);
    EXPECT_EQ(module({"._open", second}), Outcome::Failed) << "a drawing cannot be open twice";
    type("close\n");
    EXPECT_EQ(host.documents().size(), 2u);
    type("setvar sdi 1\n");
    EXPECT_NE(output.find("more than one"), std::string::npos) << output;
    type("\x1b\x1b");
    for (Document* open : host.documents()) {
        if (open->title() == "first.dxf") {
            host.activate(*open);
        }
    }
    type("quit n\n");
    EXPECT_FALSE(host.quitRequested());
    type("quit y\n");
    EXPECT_TRUE(host.quitRequested());
}

}  // namespace

}  // namespace drafthost::test
