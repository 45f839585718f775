// SPDX-License-Identifier: GPL-3.0-or-later
// The status window of a run and the schedule with a clock of the test's own.
#include "tests/ui/UiFixture.h"
#include "ui/Schedule.h"
#include "ui/StatusDialog.h"

#include <QDateTimeEdit>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>

namespace {

TEST_F(UiFixture, StatusWindowShowsTheRun) {
    StatusDialog dialog(nullptr, 3);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    auto* batch = dialog.findChild<QProgressBar*>(QStringLiteral("batch"));
    auto* seconds = dialog.findChild<QProgressBar*>(QStringLiteral("fileTime"));
    EXPECT_EQ(batch->maximum(), 3);
    EXPECT_EQ(batch->text(), QStringLiteral("0 of 3"));
    dialog.ShowFile(QStringLiteral("/d/a.dwg"), 2);
    EXPECT_EQ(batch->text(), QStringLiteral("1 of 3"));
    EXPECT_EQ(seconds->text(), QStringLiteral("0 of 2 s"));
    EXPECT_EQ(dialog.findChild<QPlainTextEdit*>()->toPlainText(), QStringLiteral("/d/a.dwg"));
    for (int i = 0; i < 5; ++i) {
        dialog.StepFileTime();
    }
    EXPECT_EQ(seconds->value(), 2) << "the bar stops at full";
    dialog.ShowFile(QStringLiteral("/d/b.dwg"), 60);
    EXPECT_EQ(seconds->value(), 0);
    EXPECT_EQ(seconds->maximum(), 60);
    for (const QProgressBar* bar : {batch, seconds}) {
        EXPECT_TRUE(bar->isTextVisible());
    }
    // A folder of any length leaves the name in sight.
    auto* text = dialog.findChild<QPlainTextEdit*>();
    dialog.ShowFile(QStringLiteral("/d/") + QString(900, u'w') + QStringLiteral("/name.dxf"), 0);
    EXPECT_EQ(seconds->text(), QStringLiteral("no limit"));
    QTextCursor end(text->document());
    end.movePosition(QTextCursor::End);
    EXPECT_TRUE(text->viewport()->rect().contains(text->cursorRect(end)))
        << "at " << text->cursorRect(end).y();

    int cancelled = 0;
    QObject::connect(&dialog, &StatusDialog::CancelPressed, &dialog, [&] { ++cancelled; });
    QTest::keyClick(&dialog, Qt::Key_Escape);
    dialog.close();
    EXPECT_TRUE(dialog.isVisible()) << "only the run takes the window away";
    EXPECT_EQ(cancelled, 0);
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(cancelled, 0);
    QTest::keyClick(dialog.findChild<QPushButton*>(QStringLiteral("cancel")), Qt::Key_Space);
    EXPECT_EQ(cancelled, 1);
}

TEST_F(UiFixture, ScheduleWaitsForItsMoment) {
    QDateTime now(QDate(2031, 3, 1), QTime(22, 0, 0));
    Schedule dialog;
    dialog.Now = [&] { return now; };
    auto* go = dialog.findChild<QPushButton*>(QStringLiteral("go"));
    auto* date = dialog.findChild<QDateEdit*>();
    auto* time = dialog.findChild<QTimeEdit*>();
    dialog.show();
    date->setDate(now.date());
    time->setTime(QTime(23, 0, 0));
    dialog.Tick();
    EXPECT_FALSE(go->isEnabled()) << "the comparison uses the values of the tick before";
    dialog.Tick();
    EXPECT_TRUE(go->isEnabled());
    date->setDate(now.date().addDays(-1));
    dialog.Tick();
    dialog.Tick();
    EXPECT_FALSE(go->isEnabled()) << "a day in the past";
    date->setDate(now.date());
    dialog.Tick();
    dialog.Tick();
    QTest::mouseClick(go, Qt::LeftButton);
    EXPECT_TRUE(dialog.Waiting());
    EXPECT_EQ(go->text(), QStringLiteral("Run Now"));
    EXPECT_FALSE(date->isEnabled());
    now = QDateTime(QDate(2031, 3, 1), QTime(23, 0, 0));
    dialog.Tick();
    EXPECT_TRUE(dialog.isVisible()) << "strictly later";
    now = now.addSecs(1);
    dialog.Tick();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(UiFixture, ScheduleCutShortAndCancelled) {
    for (const bool cut : {true, false}) {
        QDateTime now(QDate(2031, 3, 1), QTime(22, 0, 0));
        Schedule dialog;
        dialog.Now = [&] { return now; };
        dialog.show();
        dialog.findChild<QDateEdit*>()->setDate(now.date().addDays(1));
        dialog.Tick();
        dialog.Tick();
        auto* go = dialog.findChild<QPushButton*>(QStringLiteral("go"));
        QTest::mouseClick(go, Qt::LeftButton);
        EXPECT_TRUE(dialog.isVisible());
        if (cut) {
            QTest::mouseClick(go, Qt::LeftButton);
        } else {
            QTest::keyClick(&dialog, Qt::Key_Escape);
        }
        EXPECT_EQ(dialog.result(), cut ? QDialog::Accepted : QDialog::Rejected);
    }
}

}  // namespace
