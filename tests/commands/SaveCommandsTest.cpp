// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>

#include "drafthost/editor/HostObserver.h"
#include "tests/commands/TestDrawings.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

struct Notices : HostObserver {
    std::string seen;
    void beginSave(Document&, std::string_view) override { seen += "begin "; }
    void saveComplete(Document&, std::string_view) override { seen += "complete "; }
    void abortSave(Document&) override { seen += "abort "; }
};

class SaveCommands : public TestHost {
  protected:
    SaveCommands() { file = write("plan.dxf", drawing2000()); }
    std::string file;
};

TEST_F(SaveCommands, QsaveChangesOnlyWhatWasChanged) {
    open(file);
    type("qsave\n");
    EXPECT_EQ(read(file), drawing2000());
    type("ltscale 2.5 qsave\n");
    std::string expected = drawing2000();
    expected.replace(expected.find("$LTSCALE\n 40\n1.0\n"), 17, "$LTSCALE\n 40\n2.5\n");
    EXPECT_EQ(read(file), expected);
    EXPECT_EQ(integer("DBMOD"), 0);
    EXPECT_EQ(text("SAVENAME"), file);
    EXPECT_FALSE(std::filesystem::exists(path("plan.bak")));
    type("isavebak 1 ltscale 3 qsave\n");
    EXPECT_EQ(read(path("plan.bak")), expected);
}

TEST_F(SaveCommands, WhatCannotBeWrittenIsToldAndStaysModified) {
    Notices notices;
    open(file);
    host.addObserver(&notices);
    type("ltscale 2\n");
    EXPECT_EQ(module({"._save", path("no/such/folder/x.dxf")}), Outcome::Failed);
    EXPECT_NE(output.find("no/such/folder"), std::string::npos) << output;
    EXPECT_EQ(notices.seen, "begin abort ");
    EXPECT_NE(integer("DBMOD"), 0);
    module({"._qsave"});
    EXPECT_EQ(notices.seen, "begin abort begin complete ");
    host.removeObserver(&notices);

    ASSERT_NE(host.openDocument(file, OpenMode::ReadOnly).document, nullptr);
    type("ltscale 9.5\n");
    for (std::vector<std::string> list : {std::vector<std::string>{"._qsave"}, {"._save", file, "_y"}}) {
        EXPECT_EQ(module(list), Outcome::Failed);
        EXPECT_NE(output.find(file), std::string::npos) << output;
    }
    EXPECT_EQ(read(file).find("\n9.5\n"), std::string::npos);
}

TEST_F(SaveCommands, AWriteThatBreaksOffLeavesTheOldFileWhole) {
    open(file);
    type("ltscale 9.5\n");
    // As a full disk: the file may not grow beyond this.
    auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ::getrlimit(RLIMIT_FSIZE, &old);
    rlimit small{1000, old.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    Outcome outcome = module({"._qsave"});
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, before);
    EXPECT_EQ(outcome, Outcome::Failed);
    EXPECT_NE(output.find(file), std::string::npos) << output;
    EXPECT_EQ(read(file), drawing2000());
    EXPECT_NE(integer("DBMOD"), 0);
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_)) {
        ++files;
    }
    EXPECT_EQ(files, 2u) << "the drawing and its .dwk, no temporary";
    type("qsave\n");
    EXPECT_EQ(integer("DBMOD"), 0);
}

TEST_F(SaveCommands, SaveCopiesANamedDrawingAndNamesANewOne) {
    open(file);
    type("ltscale 2\nsave " + path("copy") + "\n");
    EXPECT_TRUE(std::filesystem::exists(path("copy.dxf")));
    EXPECT_EQ(text("DWGNAME"), "plan.dxf");
    EXPECT_NE(integer("DBMOD"), 0);
    host.newDocument();
    type("qsave " + path("copy.dxf") + "\n");
    EXPECT_FALSE(idle()) << "an existing file is asked about";
    type("n\n");
    EXPECT_EQ(integer("DWGTITLED"), 0);
    type("qsave " + path("new.dxf") + "\n");
    EXPECT_EQ(text("DWGNAME"), "new.dxf");
    EXPECT_EQ(text("DWGPREFIX"), folder_.string() + "/");
    type("expert 2 save " + path("copy.dxf") + "\n");
    EXPECT_TRUE(idle()) << "EXPERT 2 does not ask";
}

TEST_F(SaveCommands, SaveAsTakesTheNameBehindTheFormOrBeforeIt) {
    open(file);
    type("userr1 1.23456 saveas dxf v 2000 2 " + path("a.dxf") + "\n");
    EXPECT_TRUE(idle()) << output;
    EXPECT_EQ(text("DWGNAME"), "a.dxf");
    EXPECT_NE(read(path("a.dxf")).find("\n1.23\r\n"), std::string::npos);
    type("saveas dxf " + path("b.dxf") + " binary\n");
    EXPECT_TRUE(idle()) << output;
    EXPECT_EQ(read(path("b.dxf")).substr(0, 18), "AutoCAD Binary DXF");
    type("saveas dxf b " + path("c.dxf") + "\n");
    EXPECT_EQ(text("DWGNAME"), "c.dxf");
    for (std::string refused : {"saveas 2004\n", "saveas lt2000\n", "saveas template\n"}) {
        type(refused);
        EXPECT_NE(output.find("DXF"), std::string::npos) << output;
        EXPECT_TRUE(idle());
    }
    EXPECT_EQ(module({"saveas", "dxf", "16", path("d.dwg")}), Outcome::Failed);
    EXPECT_FALSE(std::filesystem::exists(path("d.dwg")));
    EXPECT_EQ(module({"saveas", "dxf", "v", "r12", "16", path("old.dxf")}), Outcome::Ok);
    EXPECT_NE(read(path("old.dxf")).find("AC1009"), std::string::npos);
    type("userr1 2.5 qsave\n");
    EXPECT_NE(read(path("old.dxf")).find("AC1009"), std::string::npos) << "later saves keep to the version";
}

}  // namespace

}  // namespace drafthost::test
