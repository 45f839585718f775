// SPDX-License-Identifier: GPL-3.0-or-later
// The dialogs and the status of a host without a window.
#include "engine/ConsoleUi.h"
#include "engine/record/FileQueue.h"
#include "state/StateFile.h"
#include "tests/engine/RunFixture.h"

#include <QFile>

namespace {

class ConsoleTest : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        SetUi(nullptr);
    }
    QStringList printedLines() const {
        QStringList lines;
        for (const QString& line : host.Printed.split('\n')) {
            if (line.startsWith("Tarnel: ")) {
                lines << line.mid(8);
            }
        }
        return lines;
    }
};

}  // namespace

TEST_F(ConsoleTest, DialogSetsUpAndStartsARun) {
    const QString a = MakeFile("a b.dxf");
    const QString b = MakeFile("b.dxf");
    const QString script = MakeFile("s.scr");
    host.Answers = {"Add",      '"' + a + '"', "Add",     b,     "Add",       Folder() + "/none.dxf",
                    "Script",   script,        "Maxtime", "400", "ALarmtime", "0",
                    "REAdonly", "Yes",         "RECover", "",    "Script",    Folder() + "/none.scr",
                    "RUN"};
    Command("TARNEL");
    EXPECT_TRUE(host.Answers.empty());
    const CTarnelData& data = TarnelData();
    EXPECT_EQ(EntryPath(data, 0), a);
    EXPECT_EQ(data.Script, "x");
    EXPECT_EQ(data.MaxTime, 400u);
    EXPECT_EQ(data.AlarmTime, 0u);
    EXPECT_TRUE(data.ProcessReadOnly);
    EXPECT_FALSE(data.RecoverMode);
    EXPECT_TRUE(host.Printed.contains(Folder() + "/none.dxf: there is no such file"));
    EXPECT_TRUE(host.Printed.contains(Folder() + "/none.scr: No such file"));

    host.Printed.clear();
    host.Variables["CMDACTIVE"] = 36;
    host.RunInput();
    EXPECT_EQ(SavedStatuses(), "1 1");
    EXPECT_EQ(printedLines(),
              (QStringList{"run started, 2 to do", "status FailOpen: " + a, "file 1 of 2: " + a,
                           "status Error: " + a, "status Done: " + a, "status FailOpen: " + b,
                           "file 2 of 2: " + b, "status Error: " + b, "status Done: " + b, "run ended",
                           "2 files: 2 Done", "script: " + script,
                           "limits: maximum 400 s, alarm 0 s; read-only files processed; recover off"}));
}

TEST_F(ConsoleTest, RetrySetsTheChosenFilesBack) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf"), MakeFile("c.dxf"), MakeFile("d.dxf")});
    CTarnelData& data = TarnelData();
    const auto after = [&](const char* which) {
        data.FileStatus[0] = Done;
        data.FileStatus[1] = FailOpen;
        data.FileStatus[2] = Locked;
        data.FileStatus[3] = ToDo;
        SaveState(nullptr, 1);
        host.Answers = {"RETry", which, "eXit"};
        Command("TARNEL");
        return SavedStatuses();
    };
    EXPECT_EQ(after("All"), "0 0 0 0");
    EXPECT_EQ(after("Failed"), "1 0 0 0");
    EXPECT_EQ(after("Open"), "1 0 4 0");
    EXPECT_EQ(after("Locked"), "1 2 0 0");
    EXPECT_EQ(after("Timeout"), "1 2 4 0");
    EXPECT_TRUE(host.CallsOf("send").isEmpty());
}

TEST_F(ConsoleTest, ClearingAsks) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    host.Answers = {"CLEAR", "", "CLEAR", "No", "CLEAR", QString()};
    Command("TARNEL");
    EXPECT_EQ(SavedStatuses(), "0 0");
    host.Answers = {"CLEAR", "Yes", "eXit"};
    Command("TARNEL");
    EXPECT_EQ(SavedStatuses(), "");
}

TEST_F(ConsoleTest, RunWithNothingToDoStaysInTheDialog) {
    host.Answers = {"RUN", ""};
    Command("TARNEL");
    EXPECT_TRUE(host.CallsOf("send").isEmpty());
    EXPECT_TRUE(printedLines().contains("none of the files has the status ToDo"));
}

TEST_F(ConsoleTest, RunSettlesOpenDrawingsBeforeItStarts) {
    SetQueue({MakeFile("a.dxf")});
    host.DocumentCount = 2;
    host.Variables["DBMOD"] = 1;
    host.Answers = {"RUN", "", "RUN", "Yes", "", "eXit"};
    Command("TARNEL");
    EXPECT_TRUE(host.CallsOf("send").isEmpty());
    EXPECT_TRUE(host.Answers.empty());

    host.Answers = {"RUN", "Yes", "Discard"};
    Command("TARNEL");
    host.Variables["CMDACTIVE"] = 36;
    host.RunInput();
    EXPECT_EQ(SavedStatuses(), "1");
    EXPECT_EQ(host.CallsOf("closeDocument"), QStringList{"closeDocument 1"});
    EXPECT_TRUE(host.CallsOf("command ._qsave").isEmpty());
    EXPECT_TRUE(host.CallsOf("command ._open|_y|").size() == 1);
    // The answers held for that one start.
    TarnelData().FileStatus[0] = ToDo;
    SaveState(nullptr, 1);
    EXPECT_EQ(host.CallLisp("TNL_Start_Batch"), "nil");
}

TEST_F(ConsoleTest, QuestionsNobodyCanAnswerChangeNothing) {
    host.Variables["CMDACTIVE"] = 32;
    EXPECT_EQ(CurrentUi().Ask("Tarnel", "Close?\nReally?", RunUi::YesNo), RunUi::No);
    EXPECT_EQ(CurrentUi().Ask("Tarnel", "Save?", RunUi::YesNoCancel), RunUi::Cancel);
    EXPECT_TRUE(host.CallsOf("prompt").isEmpty());
    EXPECT_TRUE(host.Printed.contains("Close? Really?"));
    host.Variables["CMDACTIVE"] = 1;
    host.Answers = {"No", "", QString()};
    EXPECT_EQ(CurrentUi().Ask("Tarnel", "Save?", RunUi::YesNoCancel), RunUi::No);
    EXPECT_EQ(CurrentUi().Ask("Tarnel", "Save?", RunUi::YesNoCancel), RunUi::Cancel);
    EXPECT_EQ(CurrentUi().Ask("Tarnel", "Close?", RunUi::YesNo), RunUi::No);
}

TEST_F(ConsoleTest, AlarmIsALineThatNamesTheDrawing) {
    const QString slow = MakeFile("slow.dxf");
    SetQueue({MakeFile("quick.dxf"), slow});
    CurrentUi().OpenStatus(2);
    TarnelData().CurrentFile = 1;
    CurrentUi().ShowFile(slow, 60);
    host.Printed.clear();
    CurrentUi().Alarm();
    EXPECT_EQ(printedLines(), QStringList{"alarm: " + slow});
}
