// SPDX-License-Identifier: GPL-3.0-or-later
// Whole runs: who calls whom in which order, and what is on disk at each step.
#include "engine/RunState.h"
#include "tests/engine/RunFixture.h"

#include <QFile>

namespace {

/// The calls that make up a run, without reading variables and pumping.
QStringList runCalls(const RecordingHost& host) {
    QStringList found;
    for (const QString& call : host.Calls) {
        if (!call.startsWith(QLatin1String("getvar")) && !call.startsWith(QLatin1String("registry")) &&
            !call.startsWith(QLatin1String("findfile")) && call != QLatin1String("pump")) {
            found << call;
        }
    }
    return found;
}

QStringList fileCalls(const QString& path, const QString& name, const QString& folder) {
    return {QStringLiteral("lisp TNL_SCRIPT_START"),
            QStringLiteral("command ._open|") + path,
            QStringLiteral("command ._logfileon"),
            QStringLiteral("ui status Error ") + path,
            QStringLiteral("lisp TNL_SCRIPT_SETVARS"),
            QStringLiteral("putsym currentfileandpath ") + folder + QLatin1Char('/') + name,
            QStringLiteral("putsym currentpath ") + folder + QLatin1Char('/'),
            QStringLiteral("putsym currentfile ") + name,
            QStringLiteral("putsym currentext .dxf"),
            QStringLiteral("line zoom e"),
            QStringLiteral("lisp TNL_SCRIPT_COMPLETE"),
            QStringLiteral("command ._logfileoff"),
            QStringLiteral("ui status Done ") + path};
}

}  // namespace

TEST_F(RunTest, ThreeFilesGoThroughTheTwoScriptsInTurn) {
    const QString a = MakeFile("a.dxf");
    const QString b = MakeFile("b.x.dxf");
    const QString c = MakeFile("c.dxf");
    SetQueue({a, b, c});
    QStringList onDisk;
    host.OnCommand = [&](const QStringList& words) {
        onDisk << words[0] + QLatin1Char(' ') + SavedStatuses();
        return RTNORM;
    };
    StartRun();

    const auto started = [&](const QString& path, int number) -> QStringList {
        return {QStringLiteral("ui status FailOpen ") + path, QStringLiteral("ui file %1 60").arg(path),
                QStringLiteral("command ._script|\"%1\"")
                    .arg(DataPath(QStringLiteral("script%1.scr").arg(number)))};
    };
    QStringList expected = {"ui dialog",
                            "send (TNL_Start_Batch)\n 100",
                            "lisp TNL_START_BATCH",
                            "setvar SDI 1",
                            "setvar CMDDIA 0",
                            "setvar FILEDIA 0",
                            "setvar CMDECHO 0",
                            "ui open 3"};
    expected << started(a, 1) << fileCalls(a, "a", Folder()) << started(b, 2) << fileCalls(b, "b.x", Folder())
             << started(c, 1) << fileCalls(c, "c", Folder());
    expected << QStringList{"ui close",         "command ._new|",   "setvar SDI 0", "setvar CMDDIA 1",
                            "setvar FILEDIA 1", "setvar CMDECHO 1", "ui dialog"};
    EXPECT_EQ(runCalls(host), expected);
    EXPECT_EQ(onDisk,
              (QStringList{"._script 2 0 0", "._open 2 0 0", "._logfileon 2 0 0", "._logfileoff 5 0 0",
                           "._script 1 2 0", "._open 1 2 0", "._logfileon 1 2 0", "._logfileoff 1 5 0",
                           "._script 1 1 2", "._open 1 1 2", "._logfileon 1 1 2", "._logfileoff 1 1 5",
                           "._new 1 1 1"}));
    EXPECT_FALSE(QFile::exists(DataPath("script1.scr")));
    EXPECT_FALSE(QFile::exists(DataPath("script2.scr")));
    EXPECT_FALSE(TarnelData().BatchRunning);
    EXPECT_EQ(host.ResourceDepth, 0);
}

TEST_F(RunTest, TraceTellsEachStepOfARun) {
    const QString path = MakeFile("a.dwg");
    SetQueue({path});
    MarkTrace();
    StartRun();
    EXPECT_EQ(TraceLines(), (QStringList{"Loading State",
                                         "Restoring Sys Vars",
                                         "Showing MainDlg",
                                         "Saving State",
                                         "Send Start Batch",
                                         "DoStartBatch",
                                         "LoadState",
                                         "Grab DBMod",
                                         "SaveSystemVars",
                                         "Delete log zip",
                                         "EnsureRestartable",
                                         "acedFileFile for acad.rx",
                                         "Not Found, get cprofile and look in AppLoad reg entries",
                                         "Not Found, place entry",
                                         "StartWatch",
                                         "Open and write to tnl log.html",
                                         "Create status window",
                                         "Set progress for status window",
                                         "Center status window",
                                         "Show status window",
                                         "Start Watch done",
                                         "DoNextFile",
                                         "GetNextFile",
                                         "Check if we can open file readwrite: " + path,
                                         "Good",
                                         "Check for dwk lock file",
                                         "SaveState",
                                         "WatchNewFile",
                                         "WriteScript",
                                         "Call Script",
                                         "DoScriptStart",
                                         "Open document",
                                         "Turn on logfile",
                                         "WatchNewLogFile",
                                         "SaveState",
                                         "Return",
                                         "DoScriptSetVars",
                                         "SetVars",
                                         "Return",
                                         "DoScriptComplete",
                                         "Turn log off",
                                         "SaveState",
                                         "Call DoNextFile",
                                         "SaveState",
                                         "GetNextFile",
                                         "Cleanup",
                                         "CloseWatch",
                                         "RemoveRestartable",
                                         "SaveState",
                                         "Start New Document",
                                         "Call DoBatch",
                                         "Loading State",
                                         "Restoring Sys Vars",
                                         "Showing MainDlg",
                                         "Saving State"}));
}

TEST_F(RunTest, ScriptTextStandsBetweenTheCallsOfTheModule) {
    QByteArray written;
    host.OnCommand = [&](const QStringList& words) {
        if (words[0] == QLatin1String("._script")) {
            written = Content(words[1].mid(1, words[1].size() - 2));
        }
        return RTNORM;
    };
    const QByteArray head = "(TNL_Script_Start)\r\n(TNL_Script_SetVars)\r\n";
    SetQueue({MakeFile("a.dxf")}, "zoom\ne");
    StartRun();
    EXPECT_EQ(written, head + "zoom\r\ne\r\n(TNL_Script_Complete)\r\n");

    TarnelData().FileStatus[0] = ToDo;
    TarnelData().Script = "zoom\r\n\r\n";
    SaveRunState();
    TarnelData().DisableScriptChain = true;
    StartRun();
    EXPECT_EQ(written, head + "zoom\r\n\r\n");
}

TEST_F(RunTest, AScriptOfAnotherSystemReachesTheHostAsTheTextThatItIs) {
    QByteArray written;
    host.OnCommand = [&](const QStringList& words) {
        if (words[0] == QLatin1String("._script")) {
            written = Content(words[1].mid(1, words[1].size() - 2));
        }
        return RTNORM;
    };
    SetQueue({MakeFile("a.dxf")},
             "-layer m Stra\xDF"
             "e\r\n-layer m W\xC3\xA4nde\r\n");
    StartRun();
    EXPECT_EQ(written.toStdString(),
              "(TNL_Script_Start)\r\n(TNL_Script_SetVars)\r\n-layer m Stra\xC3\x9F"
              "e\r\n-layer m W\xC3\xA4nde\r\n(TNL_Script_Complete)\r\n");
}

TEST_F(RunTest, RefusedStartLeavesTheRunBegunAndTheNextCommandTidiesUp) {
    SetQueue({MakeFile("a.dxf")});
    host.DocumentCount = 3;
    ui.QuestionAnswers = {RunUi::No};
    MarkTrace();
    StartRun();
    EXPECT_EQ(host.Result, "nil");
    EXPECT_TRUE(TarnelData().BatchRunning);
    EXPECT_EQ(TraceLines().last(), "Multile documents, user bailed");
    EXPECT_TRUE(host.CallsOf("setvar").isEmpty());
    EXPECT_EQ(
        host.CallsOf("ui ask"),
        QStringList{"ui ask Tarnel|Tarnel operates in Single Document mode,\nbut will return to Multiple "
                    "Document mode upon completion.\n\nWould you like to close all documents at this "
                    "time?|0"});
    Command("TARNEL");
    EXPECT_FALSE(TarnelData().BatchRunning);
    EXPECT_EQ(host.CallsOf("command"), QStringList{"command ._new|"});
    EXPECT_EQ(SavedStatuses(), "0");

    // The other documents go, then the changes of the one that stays are asked about.
    host.Variables["DBMOD"] = 1;
    host.Calls.clear();
    ui.QuestionAnswers = {RunUi::Yes, RunUi::Cancel};
    StartRun();
    EXPECT_EQ(host.CallsOf("closeDocument"), (QStringList{"closeDocument 1", "closeDocument 2"}));
    EXPECT_EQ(host.CallsOf("ui ask").last(), "ui ask Tarnel|Save changes to Drawing1.dwg?|1");
    EXPECT_EQ(TraceLines().last(), "User aborted during save document");
    EXPECT_EQ(host.Result, "nil");
    EXPECT_TRUE(TarnelData().BatchRunning);
}

TEST_F(RunTest, SavingTheDrawingLetsTheUserFinishWhatQsaveAsks) {
    SetQueue({MakeFile("a.dxf")});
    host.Variables["DBMOD"] = 1;
    ui.QuestionAnswers = {RunUi::Yes};
    int asked = 0;
    host.OnCommand = [&](const QStringList& words) {
        if (words[0] == QLatin1String("._qsave")) {
            host.Variables["CMDNAMES"] = "QSAVE";
        }
        if (words[0] == QLatin1String("\\") && ++asked == 2) {
            host.Variables["CMDNAMES"] = "";
        }
        return RTNORM;
    };
    StartRun();
    const QStringList commands = host.CallsOf("command");
    EXPECT_EQ(commands.mid(0, 3), (QStringList{"command ._qsave", "command \\", "command \\"}));
    EXPECT_EQ(host.CallsOf("initdialog"), QStringList{"initdialog 1"});
    // The recording host's drawing stays modified, so the open is told to drop it and the end drops it too.
    EXPECT_TRUE(commands.contains("command ._open|_y|" + Folder() + "/a.dxf"));
    EXPECT_EQ(commands.last(), "command ._new|y|");
}

TEST_F(RunTest, ScheduledRunAsksNothing) {
    SetQueue({MakeFile("a.dxf")});
    host.DocumentCount = 2;
    host.Variables["DBMOD"] = 1;
    ::Run().Scheduled = true;
    host.CallLisp("TNL_Start_Batch");
    EXPECT_EQ(host.Result, "T");
    EXPECT_TRUE(host.CallsOf("ui ask").isEmpty());
    EXPECT_EQ(host.CallsOf("closeDocument"), QStringList{"closeDocument 1"});
}

TEST_F(RunTest, SiblingModulesAreAwayDuringARun) {
    SetQueue({MakeFile("a.dxf")});
    host.Modules["ZENBRIX19-64.ARX"] = "/opt/ZENBRIX19-64.ARX";
    StartRun();
    EXPECT_TRUE(host.CallsOf("unloadModule").isEmpty());

    TarnelData().FileStatus[0] = ToDo;
    SaveRunState();
    host.Calls.clear();
    host.Modules["QRM19-64.ARX"] = "/opt/QRM19-64.ARX";
    StartRun();
    EXPECT_EQ(host.CallsOf("unloadModule"),
              (QStringList{"unloadModule QRM19-64.ARX 1", "unloadModule ZENBRIX19-64.ARX 1"}));
    EXPECT_EQ(host.CallsOf("loadModule"),
              (QStringList{"loadModule /opt/QRM19-64.ARX 01", "loadModule /opt/ZENBRIX19-64.ARX 01"}));
    EXPECT_EQ(host.Symbols.value("QRMSKIPCLEANUP"), "T");
    EXPECT_EQ(host.Symbols.value("QRMSKIPINIT"), "T");
}

TEST_F(RunTest, CommandDuringARunEndsIt) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(3);
    EXPECT_EQ(SavedStatuses(), "5 0");
    Command("TARNEL");
    EXPECT_EQ(SavedStatuses(), "5 0");
    EXPECT_FALSE(TarnelData().BatchRunning);
    EXPECT_EQ(host.CallsOf("ui dialog").size(), 2);
    EXPECT_EQ(host.Variables["SDI"], 0);
}

TEST_F(RunTest, CancelKeepsTheRestWaiting) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(3);
    MarkTrace();
    EXPECT_EQ(host.CallLisp("TNL_Cancel_Batch"), "T");
    EXPECT_EQ(SavedStatuses(), "6 0");
    const QStringList trace = TraceLines();
    EXPECT_EQ(trace.mid(0, 4), (QStringList{"DoCancelBatch", "SaveState", "Cleanup", "CloseWatch"}));
    EXPECT_EQ(trace.last(), "Return");
    // The run can be started again on the rest.
    StartRun();
    EXPECT_EQ(SavedStatuses(), "6 1");
}

TEST_F(RunTest, StartDuringARunPicksTheNextFileOfTheSavedState) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(1);
    host.Calls.clear();
    EXPECT_EQ(host.CallLisp("TNL_Start_Batch"), "T");
    EXPECT_EQ(SavedStatuses(), "2 2");
    EXPECT_TRUE(host.CallsOf("setvar").isEmpty());
    EXPECT_TRUE(host.CallsOf("ui open").isEmpty());
}

TEST_F(RunTest, EmptyQueueEndsAtOnce) {
    SetQueue({});
    StartRun();
    EXPECT_EQ(host.CallsOf("ui "), (QStringList{"ui dialog", "ui open 0", "ui close", "ui dialog"}));
    EXPECT_TRUE(host.CallsOf("command ._script").isEmpty());
}
