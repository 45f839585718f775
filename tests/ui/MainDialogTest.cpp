// SPDX-License-Identifier: GPL-3.0-or-later
// The main dialog by keys and mouse: pages, what it keeps, when a run may start.
#include "script/ScriptEditor.h"
#include "tests/files/Language.h"
#include "tests/ui/UiFixture.h"
#include "ui/Icons.h"
#include "ui/MainPages.h"
#include "ui/ScriptChecks.h"
#include "ui/TarnelDlg.h"
#include "widgets/AutoTab.h"
#include "widgets/BalloonHelp.h"

#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeView>

namespace {

class MainDialogTest : public UiFixture {
  protected:
    static CAutoTab* tabs(TarnelDlg& dialog) { return dialog.findChild<CAutoTab*>(QStringLiteral("tab")); }
    static void press(TarnelDlg& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QString::fromLatin1(button)), Qt::LeftButton);
    }
};

TEST_F(MainDialogTest, PagesByKeyboardAndTheLastOneKept) {
    const int last = static_cast<int>(MainPages().size()) - 1;
    TarnelData().LastTab = last;
    TarnelDlg dialog(nullptr);
    dialog.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_EQ(tabs(dialog)->currentIndex(), last);
    QTest::keyClick(&dialog, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabs(dialog)->currentIndex(), 0);
    QTest::keyClick(&dialog, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs(dialog)->currentIndex(), last);
    QTest::keyClick(&dialog, Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(tabs(dialog)->currentIndex(), 2);
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(TarnelData().LastTab, 2);
}

TEST_F(MainDialogTest, EveryPageHasANameALetterAndAPictureOfItsOwn) {
    QStringList names, letters;
    for (const MainPageEntry& page : MainPages()) {
        names << page.Name;
        letters << QKeySequence::mnemonic(QString::fromLatin1(page.Title)).toString();
        EXPECT_FALSE(letters.back().isEmpty()) << page.Title;
        EXPECT_FALSE(ResourceIcon(page.Icon).pixmap(16, 16).isNull()) << page.Title;
        EXPECT_EQ(MainPageIndex(page.Name), names.size() - 1) << "an earlier page has this name";
    }
    EXPECT_EQ(letters.removeDuplicates(), 0) << letters.join(u' ').toStdString();
    EXPECT_EQ(names.mid(0, 5).join(u' '), QStringLiteral("start files script settings log"))
        << "state files hold the places of these pages";
}

TEST_F(MainDialogTest, TheLetterOfAPageLeadsIntoIt) {
    addFile(QStringLiteral("/d/a.dwg"));
    TarnelData().LastTab = 2;
    TarnelDlg dialog(nullptr);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_EQ(dialog.focusWidget(), dialog.findChild<ScriptEditor*>());
    tabs(dialog)->tabBar()->setFocus();
    QTest::keyClick(&dialog, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_FALSE(tabs(dialog)->tabBar()->hasFocus());
    auto* script = dialog.findChild<ScriptEditor*>();
    // From the titles, and for the page that is shown already.
    for (int i = 0; i < 2; ++i) {
        tabs(dialog)->tabBar()->setFocus();
        QTest::keyClick(&dialog, Qt::Key_S, Qt::AltModifier);
        QCoreApplication::processEvents();
        EXPECT_TRUE(script->hasFocus()) << "round " << i;
        script->SendScintilla(QsciScintillaBase::SCI_DOCUMENTEND);
        QTest::keyClicks(dialog.focusWidget(), QStringLiteral("regen"));
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible()) << "Enter has started a run";
    }
    EXPECT_TRUE(script->Text().endsWith("regen\rregen\r"));
    // The arrows walk along the titles and stay there.
    tabs(dialog)->tabBar()->setFocus();
    QTest::keyClick(tabs(dialog)->tabBar(), Qt::Key_Right);
    QCoreApplication::processEvents();
    EXPECT_EQ(tabs(dialog)->currentIndex(), 3);
    EXPECT_TRUE(tabs(dialog)->tabBar()->hasFocus());
}

TEST_F(MainDialogTest, EnterAndEscReachTheDialogFromEveryPage) {
    addFile(QStringLiteral("/d/a.dwg"));
    QFile log(folder.filePath(QStringLiteral("tnl log.html")));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    log.close();
    for (const MainPageEntry& entry : MainPages()) {
        const std::string page = entry.Name.toStdString();
        for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
            TarnelData().LastTab = 1;
            TarnelDlg dialog(nullptr);
            dialog.show();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
            dialog.findChild<QTreeView*>(QStringLiteral("queue"))->setFocus();
            dialog.ShowPage(entry.Name);
            // In a script Enter is a new line.
            if (qobject_cast<ScriptEditor*>(QApplication::focusWidget()) && key == Qt::Key_Return) {
                continue;
            }
            QTest::keyClick(QApplication::focusWidget(), key);
            QCoreApplication::processEvents();
            EXPECT_FALSE(dialog.isVisible()) << page;
            EXPECT_EQ(dialog.result(), key == Qt::Key_Return ? QDialog::Accepted : QDialog::Rejected) << page;
        }
    }
    EXPECT_TRUE(log.exists()) << "Enter on the log page must not clear the log";
    TarnelDlg dialog(nullptr);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(dialog.findChild<QPushButton*>(QStringLiteral("close")), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Rejected)
        << "a button that has the focus is the one that Enter means";
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(MainDialogTest, GeometryOverTwoOpenings) {
    QRect place;
    {
        TarnelDlg dialog(nullptr);
        dialog.show();
        dialog.setGeometry(15, 50, 760, 640);
        QCoreApplication::processEvents();
        place = dialog.geometry();
        press(dialog, "close");
    }
    {
        TarnelDlg dialog(nullptr);
        dialog.show();
        QCoreApplication::processEvents();
        EXPECT_EQ(dialog.geometry(), place);
        dialog.showMaximized();
        QCoreApplication::processEvents();
        press(dialog, "close");
    }
    EXPECT_EQ(TarnelData().WasMaximized, 1);
    EXPECT_EQ(TarnelData().MainWindow.Left, place.left());
    EXPECT_EQ(TarnelData().MainWindow.Bottom, place.bottom() + 1) << "the restored rectangle is what is kept";
    TarnelDlg dialog(nullptr);
    dialog.show();
    EXPECT_TRUE(dialog.isMaximized());
}

TEST_F(MainDialogTest, OpensInsideTheScreen) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    for (const WindowRect& stored : {WindowRect{}, WindowRect{500, 1500, 300, 1200},
                                     WindowRect{9000, 9900, 50, 600}, WindowRect{-300, 2000, -200, 1900}}) {
        TarnelData().MainWindow = stored;
        TarnelDlg dialog(nullptr);
        dialog.show();
        QCoreApplication::processEvents();
        const QRect place = dialog.geometry();
        EXPECT_TRUE(screen.contains(place.center()) && place.width() <= screen.width() &&
                    place.height() <= screen.height())
            << place.x() << ' ' << place.y() << ' ' << place.width() << ' ' << place.height();
        // The platform of the tests draws a border of two pixels.
        EXPECT_TRUE(screen.adjusted(-4, -4, 4, 4).contains(place));
    }
}

TEST_F(MainDialogTest, RunScriptNeedsAFileToDo) {
    addFile(QStringLiteral("/d/a.dwg"), Done);
    TarnelDlg dialog(nullptr);
    dialog.show();
    press(dialog, "runScript");
    EXPECT_TRUE(dialog.isVisible());
    ASSERT_EQ(CBalloonHelp::OpenCount(), 1);
    press(dialog, "runScript");
    EXPECT_EQ(CBalloonHelp::OpenCount(), 1) << "an open balloon is closed first";
    addFile(QStringLiteral("/d/b.dwg"));
    press(dialog, "runScript");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(MainDialogTest, ADamagedScriptIsNeitherRunNorScheduled) {
    const Language japanese("ja_JP.UTF-8");
    addFile(QStringLiteral("/d/a.dwg"));
    TarnelData().Script = "zoom e\r\n-layer m \x85\r\nqsave\r\n";
    for (const bool scheduled : {false, true}) {
        TarnelDlg dialog(nullptr);
        dialog.show();
        ::Run().Scheduled = scheduled;
        answerNext(QMessageBox::Ok);
        press(dialog, "runScript");
        EXPECT_TRUE(dialog.isVisible());
        ASSERT_EQ(questions.size(), scheduled ? 2 : 1);
        EXPECT_TRUE(questions.back().contains(QStringLiteral("the script: line 2 is no text in")))
            << questions.back().toStdString();
    }
    ::Run().Scheduled = false;
}

TEST_F(MainDialogTest, EachQuestionAnsweredBothWays) {
    addFile(QStringLiteral("/d/a.dwg"));
    TarnelData().Script = "options\r\n(plot)\r\n";
    int refreshed = 0;
    const auto connection =
        QObject::connect(&TarnelData().Signals, &TarnelSignals::RefreshSignal, qApp, [&] { ++refreshed; });
    for (int noAt = 1; noAt <= 4; ++noAt) {
        questions.clear();
        refreshed = 0;
        TarnelDlg dialog(nullptr);
        dialog.show();
        for (int question = 1; question < noAt; ++question) {
            answerNext(QMessageBox::Yes);
        }
        if (noAt <= 3) {
            answerNext(QMessageBox::No);
        }
        press(dialog, "runScript");
        EXPECT_EQ(questions.size(), std::min(noAt, 3));
        EXPECT_EQ(dialog.isVisible(), noAt <= 3) << noAt;
        EXPECT_EQ(refreshed, noAt <= 3 ? 1 : 0);
    }
    QObject::disconnect(connection);
    EXPECT_TRUE(questions[0].startsWith(QStringLiteral("The script does not contain a QSAVE or SAVEAS")));
    EXPECT_TRUE(questions[1].contains(QStringLiteral("\nOPTIONS\n")));
    EXPECT_TRUE(questions[2].contains(QStringLiteral("PLOT to -PLOT\n")));
}

TEST_F(MainDialogTest, ScriptChecksMatchTheWholeText) {
    struct Case {
        const char* script;
        QStringList expected;
    };
    const Case cases[] = {
        {"zoom e\nQSave", {}},
        {"; saveas is only in this comment", {}},
        {"plot\nqsave", {}},
        {"-plot\n-layer\nqsave", {}},
        {"-plot\nplot\nqsave", {QStringLiteral("PLOT to -PLOT")}},
        {"qsave\nlayer", {QStringLiteral("LAYER to -LAYER")}},
        {"qsave\npreferences options", {QStringLiteral("PREFERENCES,OPTIONS")}},
    };
    for (const Case& one : cases) {
        TarnelData().Script = one.script;
        QStringList asked;
        RunScriptChecks([&](const ScriptQuestion& question) {
            asked << question.Text;
            return true;
        });
        ASSERT_EQ(asked.size(), one.expected.size()) << one.script;
        for (int i = 0; i < asked.size(); ++i) {
            EXPECT_TRUE(asked[i].contains(one.expected[i])) << asked[i].toStdString();
        }
    }
    TarnelData().Script = "options\nxplot";
    TarnelData().WarnNoSave = TarnelData().WarnDialogCommand = TarnelData().WarnDialogCmdReplacement = false;
    EXPECT_TRUE(RunScriptChecks([](const ScriptQuestion&) { return false; }));
}

TEST_F(MainDialogTest, EnterOnAReadyScriptLoadsItAndStartsNothing) {
    addFile(QStringLiteral("/d/a.dwg"));
    QDir(folder.path()).mkpath(QStringLiteral("Scripts"));
    QFile file(folder.filePath(QStringLiteral("Scripts/ready.scr")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("regen\r\nqsave\r\n");
    file.close();
    TarnelData().LastTab = 2;
    TarnelDlg dialog(nullptr);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    auto* scripts = dialog.findChild<QListWidget*>(QStringLiteral("quickScripts"));
    scripts->setFocus();
    QTest::keyClick(scripts, Qt::Key_Down);
    QTest::keyClick(scripts, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.findChild<ScriptEditor*>()->Text(), QByteArray("regen\rqsave\r"));
}

TEST_F(MainDialogTest, ControlsGoIntoTheRecordOnlyWhenCollected) {
    addFile(QStringLiteral("/d/a.dwg"));
    TarnelDlg dialog(nullptr);
    dialog.show();
    auto* script = dialog.findChild<ScriptEditor*>();
    script->SendScintilla(QsciScintillaBase::SCI_SELECTALL);
    QTest::keyClicks(script, QStringLiteral("regen"));
    QTest::keyClick(script, Qt::Key_Return);
    auto* readOnly = dialog.findChild<QAbstractButton*>(QStringLiteral("readonly"));
    readOnly->click();
    auto* limit = dialog.findChild<QSpinBox*>(QStringLiteral("maxtime"));
    EXPECT_EQ(limit->value(), 60);
    limit->selectAll();
    QTest::keyClicks(limit, QStringLiteral("7"));
    EXPECT_EQ(TarnelData().Script, QByteArray("zoom e\r\nqsave\r\n"));
    EXPECT_FALSE(TarnelData().ProcessReadOnly);
    press(dialog, "close");
    EXPECT_EQ(TarnelData().Script, QByteArray("regen\r\n"));
    EXPECT_TRUE(TarnelData().ScriptModified());
    EXPECT_TRUE(TarnelData().ProcessReadOnly);
    EXPECT_EQ(TarnelData().MaxTime, 7U);
    TarnelData().ProcessReadOnly = false;
    TarnelData().MaxTime = 0;
    addFile(QStringLiteral("/d/b.dwg"));
    Q_EMIT TarnelData().Signals.RefreshSignal();
    EXPECT_FALSE(readOnly->isChecked());
    EXPECT_EQ(limit->value(), 0) << "no limit is a value";
    TarnelData().MaxTime = 900;
    {
        TarnelDlg other(nullptr);
        other.show();
        press(other, "close");
    }
    EXPECT_EQ(TarnelData().MaxTime, 900U) << "looking must not cut what was set elsewhere";
    EXPECT_EQ(dialog.findChild<QTreeView*>(QStringLiteral("queue"))->model()->rowCount(), 2);
}

TEST_F(MainDialogTest, EveryControlHasANameForScreenReaders) {
    TarnelDlg dialog(nullptr);
    dialog.show();
    for (const QWidget* control : dialog.findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus ||
            control->objectName().startsWith(QLatin1String("qt_spin")) ||
            qobject_cast<const CAutoTab*>(control)) {
            continue;
        }
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        const bool named =
            !control->accessibleName().isEmpty() || (button != nullptr && !button->text().isEmpty());
        EXPECT_TRUE(named) << control->metaObject()->className() << " "
                           << control->objectName().toStdString();
    }
}

TEST_F(MainDialogTest, OpensAndClosesManyTimes) {
    for (int i = 0; i < 100; ++i) {
        TarnelData().LastTab = i % static_cast<int>(MainPages().size());
        TarnelDlg dialog(nullptr);
        dialog.show();
        QCoreApplication::processEvents();
        press(dialog, "close");
    }
}

}  // namespace
