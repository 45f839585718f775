// SPDX-License-Identifier: GPL-3.0-or-later
// The time limits of a drawing, in the order in which they come.
#include "engine/Watch.h"
#include "engine/WatchTimers.h"
#include "state/StateFile.h"
#include "tests/engine/RunFixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace {

/// Lets timers run until a call with that beginning stands in the record. False after ten seconds.
bool waitFor(const RecordingHost& host, const QString& call) {
    QElapsedTimer patience;
    patience.start();
    while (host.CallsOf(call).isEmpty()) {
        if (patience.hasExpired(10000)) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 100);
    }
    return true;
}

const QString sentTimeout = QStringLiteral("send \x03\x03(Tarnel_File_Timeout)\n 100");

}  // namespace

TEST_F(RunTest, AlarmComesThenFlashesThenTheTimeLimitSendsItsString) {
    WatchTimers timers;
    timers.Start(1, 3);
    ASSERT_TRUE(waitFor(host, "send"));
    QStringList calls = host.Calls;
    calls.removeAll(QStringLiteral("ui second"));
    EXPECT_EQ(calls.mid(0, 4), (QStringList{"ui alarm", "ui flash on", "ui flash off", "ui flash on"}));
    EXPECT_EQ(calls.last(), sentTimeout);
    EXPECT_GE(host.CallsOf("ui second").size(), 1);
    EXPECT_EQ(host.CallsOf("ui alarm").size(), 1);
}

TEST_F(RunTest, AlarmBehindTheTimeLimitIsNeverHeard) {
    WatchTimers timers;
    timers.Start(2, 1);
    ASSERT_TRUE(waitFor(host, "send"));
    host.Calls.clear();
    EXPECT_TRUE(timers.findChildren<QTimer*>().isEmpty());
    // Every timer was killed: the next drawing's start brings the first event.
    timers.Start(1, 0);
    ASSERT_TRUE(waitFor(host, "ui alarm"));
    EXPECT_TRUE(host.CallsOf("send").isEmpty());
}

TEST_F(RunTest, TimeLimitEndsTheFileAndCancelBreaksTheRunOff) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")}, "waits\n");
    TarnelData().MaxTime = 1;
    TarnelData().AlarmTime = 0;
    SaveState(nullptr, 1);
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(4);
    ASSERT_TRUE(waitFor(host, sentTimeout));
    host.RunInput(1);
    EXPECT_EQ(SavedStatuses(), "3 2");
    EXPECT_EQ(host.CallsOf("ui file").last(), "ui file " + Folder() + "/b.dxf 1");
    CancelRun();
    EXPECT_EQ(host.Calls.last(), "send \x03\x03\x03\x03\x03\x03(TNL_Cancel_Batch)\n 100");
    host.RunInput();
    EXPECT_EQ(SavedStatuses(), "3 6");
    EXPECT_EQ(host.CallsOf("ui close").size(), 1);
}
