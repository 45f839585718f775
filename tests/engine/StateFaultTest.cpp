// Disks that are full or broken, and state files that are no state.
#include "engine/RunState.h"
#include "tests/engine/RunFixture.h"

#include <QDir>
#include <QFile>

TEST_F(RunTest, SaveThatFailsIsToldOnceAndTheRunGoesOn) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(1);
    // No file can be made under a file.
    const QString good = TarnelData().StateFile;
    TarnelData().StateFile = MakeFile("blocked") + "/TarnelRunner.xml";
    host.RunInput(4);
    EXPECT_EQ(host.Printed.count("the state could not be saved"), 1);
    EXPECT_TRUE(host.Printed.contains("blocked/TarnelRunner.xml"));
    EXPECT_EQ(SavedStatuses(), "2 0");
    // Nothing is lost: with the disk back, all of it is written.
    TarnelData().StateFile = good;
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
