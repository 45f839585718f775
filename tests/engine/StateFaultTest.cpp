// SPDX-License-Identifier: GPL-3.0-or-later
// Disks that are full or broken, and state files that are no state.
#include "engine/RunState.h"
#include "state/StateDigest.h"
#include "state/StateFile.h"
#include "tests/engine/RunFixture.h"
#include "tests/files/Language.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <sys/resource.h>
#include <csignal>
#include <memory>
#include <thread>

namespace {

/// While this stands no file takes more than a few bytes.
class FullDisk {
  public:
    FullDisk() {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit full{16, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit before{};
};

}  // namespace

TEST_F(RunTest, AScriptThatIsTextInNoEncodingStartsNoRun) {
    const Language japanese("ja_JP.UTF-8");
    SetQueue({MakeFile(QStringLiteral("a.dwg"))});
    ui.InDialog = [] { TarnelData().Script = "-layer m \x90\x7D\r\n\r\n-layer m \x85\r\n"; };
    StartRun();
    EXPECT_TRUE(host.Printed.contains("no run is started: the script: line 3 is no text in"))
        << host.Printed.toStdString();
    EXPECT_EQ(SavedStatuses(), QStringLiteral("0"));
    EXPECT_FALSE(TarnelData().BatchRunning);
}

TEST_F(RunTest, SaveThatFailsForAMomentCostsNothing) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(4);
    auto full = std::make_unique<FullDisk>();
    std::thread disk([&] {
        QThread::msleep(400);
        full.reset();
    });
    host.RunInput(1);
    disk.join();
    host.RunInput();
    EXPECT_EQ(host.Printed.count("the state could not be saved"), 1);
    EXPECT_EQ(SavedStatuses(), "1 1");
}

TEST_F(RunTest, SaveThatFailsForGoodBreaksTheRunOffAndTellsNoStatus) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(4);
    host.Calls.clear();
    {
        const FullDisk full;
        host.RunInput();
    }
    EXPECT_EQ(host.Printed.count("Tarnel: the state could not be saved"), 1) << host.Printed.toStdString();
    EXPECT_EQ(host.Printed.count("Tarnel: run broken off: "), 1);
    EXPECT_EQ(host.Calls.join('\n').count("ui status"), 0) << host.Calls.join('\n').toStdString();
    EXPECT_FALSE(TarnelData().BatchRunning);
    EXPECT_EQ(SavedStatuses(), "5 0");
    // The record knows more than the file, and nothing is lost when the disk is back.
    Command("TARNEL");
    EXPECT_EQ(SavedStatuses(), "1 0");
}

TEST_F(RunTest, NoRunBeginsOnAStateThatCannotBeSaved) {
    SetQueue({MakeFile("a.dxf")}, "old\n");
    // The disk takes the queue and not the script that goes with it.
    ASSERT_TRUE(QFile::rename(DataPath("TarnelRunner.xml"), DataPath("kept.xml")));
    ASSERT_TRUE(QDir().mkpath(DataPath("TarnelRunner.xml/in the way")));
    StartRun();
    EXPECT_TRUE(host.Printed.contains("no run is started: ")) << host.Printed.toStdString();
    EXPECT_FALSE(TarnelData().BatchRunning);
    EXPECT_EQ(host.Calls.join('\n').count("ui file"), 0);
}

TEST_F(RunTest, AHostOfOneRunWorksOnNothingElse) {
    SetQueue({MakeFile("a.dxf")}, "first\n");
    qputenv("TARNEL_RUN", RunDigest(TarnelData()));
    // Another script over the same drawing, as a file of yesterday would have it.
    TarnelData().Script = "second\n";
    SaveState(nullptr, 1);
    const QByteArray other = Content(DataPath("TarnelRunner.xml"));
    StartRun();
    EXPECT_EQ(host.Printed.count("Tarnel: no run is started: "), 1) << host.Printed.toStdString();
    EXPECT_TRUE(host.Printed.contains("is not the state of the run that this host was started for"));
    EXPECT_EQ(Content(DataPath("TarnelRunner.xml")), other);
    EXPECT_EQ(host.Calls.join('\n').count("ui file"), 0);

    TarnelData().Script = "first\n";
    SaveState(nullptr, 1);
    // A script cannot put another queue in its place either.
    host.Printed.clear();
    host.CallLisp("C:Tarnel", {LispValue::Mark(RTLB), LispValue::String("/b.dxf"), LispValue::Mark(RTLE)});
    EXPECT_TRUE(host.Printed.contains("no other can begin in it"));
    StartRun();
    EXPECT_EQ(SavedStatuses(), "1");
}

TEST_F(RunTest, ALoadThatFailsDuringARunKeepsTheRecord) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(1);
    ASSERT_TRUE(QFile::remove(DataPath("TarnelRunner.xml")));
    EXPECT_FALSE(LoadRunState());
    EXPECT_EQ(TarnelData().FileNames.size(), 2U);
    host.RunInput();
    EXPECT_EQ(SavedStatuses(), "1 1");
}

TEST_F(RunTest, ScriptThatCannotBeWrittenIsTold) {
    SetQueue({MakeFile("a.dxf")});
    ASSERT_TRUE(QDir().mkpath(DataPath("script1.scr/in the way")));
    StartRun();
    EXPECT_TRUE(host.Printed.contains("Tarnel: " + DataPath("script1.scr") + ": "));
    EXPECT_EQ(SavedStatuses(), "2");
}

TEST_F(RunTest, LossOfTheTraceIsToldOnceAndHarmsNothing) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    QFile::remove(DataPath("TNLapp.log"));
    ASSERT_TRUE(QDir().mkpath(DataPath("TNLapp.log")));
    StartRun();
    EXPECT_EQ(SavedStatuses(), "1 1");
    EXPECT_EQ(host.Printed.count(DataPath("TNLapp.log")), 1);
    EXPECT_EQ(Content(DataPath("tnl log.html")).count("Processing file"), 2);
}

TEST_F(RunTest, DamagedStateIsKeptBeforeAnythingIsSavedOverIt) {
    const QByteArray damaged = "this is no state";
    QFile file(DataPath("TarnelRunner.xml"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(damaged);
    file.close();
    Command("TARNEL");
    EXPECT_EQ(Content(DataPath("TarnelRunner.xml.damaged")), damaged);
    EXPECT_TRUE(host.Printed.contains("TarnelRunner.xml"));
    EXPECT_TRUE(Content(DataPath("TarnelRunner.xml")).startsWith("<TarnelRunner "));
    Command("TARNEL");
    EXPECT_EQ(host.Printed.count("it is kept as"), 1);
}
