// SPDX-License-Identifier: GPL-3.0-or-later
// How the drawings of a run end.
#include "engine/record/CheckedArray.h"
#include "engine/record/FileQueue.h"
#include "engine/RunState.h"
#include "state/StateFile.h"
#include "tests/engine/RunFixture.h"

namespace {

struct Outcome {
    const char* Call;
    const char* Statuses;
};

class OutcomeTest : public RunTest, public testing::WithParamInterface<Outcome> {};

}  // namespace

// Each call ends its drawing where it stands; the rest of that script is not read.
TEST_P(OutcomeTest, IsOnDiskAndTheRunGoesOn) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")}, QByteArray("(") + GetParam().Call + ")\nnever read\n");
    StartRun();
    EXPECT_EQ(SavedStatuses(), GetParam().Statuses);
    EXPECT_EQ(host.CallsOf("command ._open").size(), 2);
    // After the last drawing there is no next script that would take the reader over.
    EXPECT_EQ(host.CallsOf("line never").size(), 1);
    EXPECT_GT(host.Calls.indexOf(QStringLiteral("line never read")),
              host.Calls.indexOf(QStringLiteral("ui close")));
}

INSTANTIATE_TEST_SUITE_P(All, OutcomeTest,
                         testing::Values(Outcome{"Tarnel_File_Next", "1 1"},
                                         Outcome{"Tarnel_File_Error", "5 5"},
                                         Outcome{"Tarnel_File_Timeout", "3 3"},
                                         Outcome{"Tarnel_File_OpenTimeout", "2 2"}));

TEST_F(RunTest, WhatMustBeSavedIsNotDoneWithoutIt) {
    struct Case {
        int Dbmod;
        const char* Call;
        const char* Status;
    };
    for (const Case& one : {Case{8 | 16, "TNL_Script_Complete", "1 2"}, Case{1, "TNL_Script_Complete", "5 2"},
                            Case{4 | 16, "Tarnel_File_Next", "5 2"}, Case{0, "Tarnel_File_Next", "1 2"}}) {
        TearDown();
        SetUp();
        SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
        ui.DialogAnswers = {RunUi::Ok};
        Command("TARNEL");
        ::Run().MustSave = true;
        host.RunInput(2);
        host.Variables["DBMOD"] = one.Dbmod;
        EXPECT_EQ(host.CallLisp(QString::fromLatin1(one.Call)), "T");
        EXPECT_EQ(SavedStatuses(), one.Status) << one.Dbmod << one.Call;
        EXPECT_EQ(host.Printed.contains("nothing has saved"), one.Status[0] == '5') << one.Dbmod;
    }
}

TEST_F(RunTest, FailureReportsTraceTheirSteps) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(2);
    const auto tail = [&](const char* function) {
        MarkTrace();
        EXPECT_EQ(host.CallLisp(QString::fromLatin1(function)), "T");
        QStringList lines = TraceLines();
        return lines.first() + QLatin1Char('|') + lines.last();
    };
    EXPECT_EQ(tail("Tarnel_File_Timeout"), "DoScriptTimeout|Return");
    host.CallLisp("TNL_Script_Start");
    TarnelData().FileStatus[0] = ToDo;
    EXPECT_EQ(tail("Tarnel_File_Error"), "DoScriptError|SaveState");
    host.CallLisp("TNL_Script_Start");
    TarnelData().FileStatus[1] = ToDo;
    EXPECT_EQ(tail("Tarnel_File_OpenTimeout"), "DoScriptOpenTimeout|SaveState");
}

TEST_F(RunTest, WhatAScriptSaysBehindItsEndLeavesTheNextFileAlone) {
    const QStringList calls = {"Tarnel_File_Next", "Tarnel_File_Error", "Tarnel_File_Timeout",
                               "Tarnel_File_OpenTimeout", "TNL_Script_Complete"};
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf"), MakeFile("c.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(2);
    const auto again = [&] {
        for (const QString& call : calls) {
            EXPECT_EQ(host.CallLisp(call), "T") << call.toStdString();
        }
    };
    host.CallLisp("Tarnel_File_Next");
    again();
    EXPECT_EQ(SavedStatuses(), "1 2 0");
    // The time limit holds also for a file whose script never begins.
    ::Run().TimeIsOver = true;
    host.CallLisp("Tarnel_File_Timeout");
    EXPECT_EQ(SavedStatuses(), "1 3 2");
    again();
    EXPECT_EQ(SavedStatuses(), "1 3 2") << "its time was over, not that of the next";
    host.CallLisp("TNL_Script_Start");
    host.CallLisp("Tarnel_File_Error");
    EXPECT_EQ(SavedStatuses(), "1 3 5");
}

TEST_F(RunTest, StatusStaysWithItsFileWhenAScriptChangesSettings) {
    struct Case {
        int SortIdx;
        int SortReverse;
        const char* After;
    };
    const QStringList files = {MakeFile("a.dxf"), MakeFile("b.dxf"), MakeFile("c.dxf")};
    for (const Case& one : {Case{6, 1, "0 0 1"}, Case{4, 0, "1 0 0"}, Case{0, 1, "0 0 1"}}) {
        TearDown();
        SetUp();
        SetQueue(files);
        TarnelData().SortIdx = one.SortIdx;
        TarnelData().SortReverse = one.SortReverse;
        SaveState(nullptr, 1);
        ui.DialogAnswers = {RunUi::Ok};
        Command("TARNEL");
        host.RunInput(2);
        host.CallLisp("Tarnel_DoReadOnly", {LispValue::Nil()});
        host.CallLisp("Tarnel_SetMask");
        host.CallLisp("TNL_Script_SetVars");
        const QString inWork = host.Symbols.value("CURRENTFILE");
        EXPECT_EQ(inWork, QString(one.After).startsWith('1') ? "a" : "c") << one.SortIdx;
        host.CallLisp("TNL_Script_Complete");
        EXPECT_EQ(SavedStatuses().replace('2', '0'), one.After) << one.SortIdx;
    }
    // A script that puts another queue in place: the file in work has no entry any more, and no other one
    // gets its status.
    host.CallLisp("TNL_Script_Start");
    host.CallLisp("C:Tarnel", {LispValue::Mark(RTLB), LispValue::String(MakeFile("d.dxf")),
                               LispValue::String(MakeFile("e.dxf")), LispValue::Mark(RTLE)});
    EXPECT_EQ(TarnelData().CurrentFile, -1);
    host.CallLisp("Tarnel_File_Error");
    EXPECT_EQ(SavedStatuses(), "2 0");
}

TEST_F(RunTest, RefusedOpenLeavesFailOpenAndMarksTheNextFileEarly) {
    const QString a = MakeFile("a.dxf");
    const QString b = MakeFile("b.dxf");
    SetQueue({a, b});
    host.OnCommand = [&](const QStringList& words) {
        return words[0] == QLatin1String("._open") && words[1] == a ? RTERROR : RTNORM;
    };
    StartRun();
    EXPECT_EQ(SavedStatuses(), "2 1");
    // The next file has its script started and is marked by the call that failed, then by its own.
    EXPECT_EQ(host.CallsOf("ui status"),
              (QStringList{"ui status FailOpen " + a, "ui status FailOpen " + b, "ui status Error " + b,
                           "ui status Error " + b, "ui status Done " + b}));
}

TEST_F(RunTest, RefusedLastOpenEndsTheRunTwice) {
    SetQueue({MakeFile("a.dxf")});
    host.OnCommand = [](const QStringList& words) {
        return words[0] == QLatin1String("._open") ? RTERROR : RTNORM;
    };
    StartRun();
    EXPECT_EQ(SavedStatuses(), "2");
    EXPECT_EQ(host.CallsOf("command ._new").size(), 2);
    EXPECT_EQ(host.CallsOf("ui dialog").size(), 3);
    EXPECT_TRUE(host.CallsOf("command ._logfileon").isEmpty());
    EXPECT_EQ(host.CallsOf("ui close").size(), 1);
    // What is left of the script has no file in work.
    EXPECT_EQ(host.CallsOf("exception").size(), 1);
}

TEST_F(RunTest, OpenIsToldToDropChangesAndToOpenReadOnly) {
    const QString path = MakeFile("a b.dxf");
    SetQueue({path});
    host.CallLisp("TNL_Start_Batch");
    const auto opened = [&](int modified, bool readOnly) {
        host.Variables["DBMOD"] = modified;
        TarnelData().OpenReadOnly = readOnly;
        host.Calls.clear();
        host.CallLisp("TNL_Script_Start");
        return host.CallsOf("command").first();
    };
    EXPECT_EQ(opened(0, false), "command ._open|" + path);
    EXPECT_EQ(opened(0, true), "command ._open|" + path + "|_y");
    EXPECT_EQ(opened(1, false), "command ._open|_y|" + path);
    EXPECT_EQ(opened(1, true), "command ._open|_y|" + path + "|_y");
    TarnelData().RecoverMode = true;
    EXPECT_EQ(opened(0, false), "command ._new|");
    EXPECT_EQ(opened(1, true), "command ._new|_y|");
}

TEST_F(RunTest, OtherExtensionsGetANewDrawing) {
    SetQueue({MakeFile("a.DWG"), MakeFile("b.txt"), MakeFile("c.dws")});
    StartRun();
    EXPECT_EQ(host.CallsOf("command ._new").size(), 2) << "that of the text, and that of the end";
    EXPECT_EQ(host.CallsOf("command ._open").size(), 2);
    EXPECT_EQ(SavedStatuses(), "1 1 1");
    EXPECT_EQ(host.Symbols.value("CURRENTEXT"), ".dws");
}

TEST_F(RunTest, ScriptThatEndsInACommandIsNotDone) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(2);
    const QString before = SavedStatuses();
    const qsizetype commands = host.CallsOf("command").size();
    host.Variables["CMDNAMES"] = QStringLiteral("ZOOM");
    EXPECT_NE(host.CallLisp(QStringLiteral("TNL_Script_Complete")), "T");
    EXPECT_EQ(SavedStatuses(), before);
    EXPECT_EQ(host.CallsOf("command").size(), commands + 1)
        << "the cancel; anything more would answer the command";
    EXPECT_TRUE(host.Printed.contains(QStringLiteral("the script ends while ZOOM waits for an answer")));
    host.Variables["CMDNAMES"] = QString();
    EXPECT_EQ(host.CallLisp(QStringLiteral("TNL_Script_Complete")), "T");
    EXPECT_TRUE(SavedStatuses().startsWith(QStringLiteral("1 ")));
}

TEST_F(RunTest, CompleteOutsideARunOnlyTurnsTheLogOff) {
    SetQueue({MakeFile("a.dxf")});
    EXPECT_EQ(host.CallLisp("TNL_Script_Complete"), "T");
    EXPECT_EQ(host.CallsOf("command"), QStringList{"command ._logfileoff"});
    EXPECT_EQ(SavedStatuses(), "0");
}

TEST_F(RunTest, ErrorOutsideARunPicksTheNextFileAllTheSame) {
    SetQueue({MakeFile("a.dxf")});
    BuildFileOrder(TarnelData());
    EXPECT_EQ(TarnelData().CurrentFile, -1);
    EXPECT_EQ(host.CallLisp("Tarnel_File_Error"), "T");
    EXPECT_EQ(SavedStatuses(), "2");
}

TEST_F(RunTest, CallsWithoutAFileInWorkFailTheArrayCheck) {
    EXPECT_THROW(host.CallLisp("TNL_Script_Start"), InvalidArgException);
    EXPECT_THROW(host.CallLisp("TNL_Script_SetVars"), InvalidArgException);
}
