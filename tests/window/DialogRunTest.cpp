// SPDX-License-Identifier: GPL-3.0-or-later
// Runs that are started in the dialog, to their end and in all the ways in which they can be broken off.
#include "tests/window/DialogRun.h"

namespace drafthost {
namespace {

TEST_F(DialogRunTest, RunsAndFillsTheLogPage) {
    begin("zoom e\r\nqsave\r\n");
    QString runLog, hostLog, again;
    run([&](QDialog& dialog) {
        auto* tabs = dialog.findChild<QTabWidget*>();
        ASSERT_NE(tabs, nullptr);
        tabs->setCurrentWidget(dialog.findChild<QWidget*>(QStringLiteral("LogTab")));
        auto* view = dialog.findChild<QWidget*>(QStringLiteral("log"));
        ASSERT_NE(view, nullptr);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        runLog = textOf(view);
        view->setFocus();
        QTest::keyClick(view, Qt::Key_Tab);
        QTest::keyClick(view, Qt::Key_Return);
        hostLog = textOf(view);
        QTest::keyClick(view, Qt::Key_Tab);
        QTest::keyClick(view, Qt::Key_Return);
        again = textOf(view);
        press(dialog, "close");
    });
    EXPECT_TRUE(runLog.contains(QStringLiteral("bracket-r12.dxf"))) << runLog.toStdString();
    EXPECT_TRUE(hostLog.contains(QStringLiteral("Back"))) << hostLog.toStdString();
    EXPECT_TRUE(hostLog.contains(QStringLiteral("zoom"), Qt::CaseInsensitive)) << hostLog.toStdString();
    EXPECT_EQ(again, runLog);
    EXPECT_EQ(countOf("1"), drawings) << output;
    EXPECT_GT(statusSeen, 0);
    EXPECT_EQ(questions, QStringList());
    const auto late = host.registry().readString("HKEY_CURRENT_USER",
                                                 RegistryFile::productKey() + "\\Recent File List\\File1");
    EXPECT_FALSE(late) << "the drawings of a run are none that a person has opened: " << *late;
}

TEST_F(DialogRunTest, ARunGoesOverTheDrawingsThatAreOpen) {
    begin("(entmake '((0 . \"POINT\") (10 7.0 7.0)))\r\nqsave\r\n");
    const QStringList names = {QStringLiteral("rooms-2000.dxf"), QStringLiteral("bracket-r12.dxf")};
    QList<QByteArray> before;
    for (const QString& name : names) {
        ASSERT_NE(host.openDocument(folder.filePath(name).toStdString(), OpenMode::ReadWrite).document,
                  nullptr);
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        before << file.readAll();
    }
    answer = QMessageBox::Yes;
    bool returned = false;
    onDialog = [&](QDialog& dialog) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        dialog.findChild<QTabWidget*>()->setCurrentWidget(
            dialog.findChild<QWidget*>(QStringLiteral("FilesTab")));
        auto* queue = dialog.findChild<QTreeView*>(QStringLiteral("queue"));
        queue->setFocus();
        QTest::keyClick(queue, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(queue, Qt::Key_Delete);
        EXPECT_EQ(queue->model()->rowCount(), 0);
        QTest::keyClick(&dialog, Qt::Key_O, Qt::AltModifier);
        EXPECT_EQ(queue->model()->rowCount(), 2) << "the new drawing has no file";
        QTest::keyClick(&dialog, Qt::Key_O, Qt::AltModifier);
        EXPECT_EQ(queue->model()->rowCount(), 2) << "none is there twice";
        onDialog = [&](QDialog& second) {
            EXPECT_EQ(countOf("1"), 2) << output;
            press(second, "allToDo");
            press(second, "close");
            returned = true;
        };
        press(dialog, "runScript");
    };
    host.input().type("TARNEL\n");
    EXPECT_TRUE(until([&] {
        return returned && !QApplication::activeModalWidget() && host.input().isIdle();
    })) << output;
    EXPECT_EQ(countOf("0"), 2) << "to be done once more";
    ASSERT_EQ(questions.size(), 1);
    EXPECT_TRUE(questions[0].contains(QStringLiteral("close all documents"))) << questions[0].toStdString();
    for (qsizetype i = 0; i < names.size(); ++i) {
        QFile file(folder.filePath(names[i]));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_NE(file.readAll(), before[i]) << names[i].toStdString() << " was not worked on";
    }
}

TEST_F(DialogRunTest, ARunGoesOverWhatWasChosenInAFolder) {
    begin("qsave\r\n");
    // The first opening begins in the current folder.
    QFile::remove(stateFile());
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    bool returned = false;
    onDialog = [&](QDialog& dialog) {
        dialog.findChild<QTabWidget*>()->setCurrentIndex(1);
        auto* files = dialog.findChild<QTreeView*>(QStringLiteral("fileList"));
        auto* queue = dialog.findChild<QTreeView*>(QStringLiteral("queue"));
        EXPECT_TRUE(until([&] { return files->model()->rowCount() == drawings; }));
        press(dialog, "addAll");
        EXPECT_EQ(queue->model()->rowCount(), drawings);
        queue->setFocus();
        queue->setCurrentIndex(queue->model()->index(0, 0));
        QTest::keyClick(queue, Qt::Key_Delete);
        answer = QMessageBox::Yes;
        onDialog = [&](QDialog& second) {
            press(second, "close");
            returned = true;
        };
        press(dialog, "runScript");
    };
    host.input().type("TARNEL\n");
    EXPECT_TRUE(until([&] {
        return returned && !QApplication::activeModalWidget() && host.input().isIdle();
    })) << output;
    QDir::setCurrent(before);
    EXPECT_EQ(countOf("1"), drawings - 1) << output;
}

TEST_F(DialogRunTest, CancelInTheMiddleLeavesTheRest) {
    begin("delay 300\r\nqsave\r\n");
    onStatus = [this](QWidget& window) {
        if (countOf("1") >= 1) {
            onStatus = {};
            press(window, "cancel");
        }
    };
    run([](QDialog& dialog) { press(dialog, "close"); });
    EXPECT_FALSE(onStatus) << "Cancel was pressed";
    EXPECT_GE(countOf("1"), 1);
    EXPECT_GE(countOf("0"), 1) << "what has not been begun stays to do";
    EXPECT_EQ(countOf("6"), 1);
    EXPECT_EQ(countOf("0") + countOf("1") + countOf("6"), drawings);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        EXPECT_FALSE(window->objectName() == u"StatusDialog" && window->isVisible());
    }
}

TEST_F(DialogRunTest, EmailLogPacksTheBundleAndOpensTheDraft) {
    const QByteArray path = qgetenv("PATH");
    QDir(folder.path()).mkdir(QStringLiteral("bin"));
    qputenv("PATH", QFile::encodeName(folder.filePath(QStringLiteral("bin"))));
    const QString mailer = folder.filePath(QStringLiteral("bin/xdg-email"));
    const QString sent = folder.filePath(QStringLiteral("sent"));
    const auto content = [](const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    begin("zoom e\r\nqsave\r\n");
    run([&](QDialog& dialog) {
        press(dialog, "emailLog");
        EXPECT_EQ(questions.size(), 1) << "there is no program for mail yet";
        QFile script(mailer);
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + QFile::encodeName(sent) + "'\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        dialog.findChild<QAbstractButton*>(QStringLiteral("readonly"))->click();
        press(dialog, "emailLog");
        // What is on the screen goes along.
        EXPECT_TRUE(content(stateFile()).contains("<ProcessReadOnly>1"));
        press(dialog, "close");
    });
    qputenv("PATH", path);
    EXPECT_EQ(questions.size(), 1) << questions.join(u'|').toStdString();
    const QByteArray archive = content(folder.filePath(QStringLiteral("Ovrix/TNLLog.zip")));
    for (const char* name : {"info.xml", "TarnelRunner.xml", "TNL Log.html", "TNLapp.log"}) {
        EXPECT_TRUE(archive.contains(name)) << name;
    }
    const QByteArray arguments = content(sent);
    EXPECT_TRUE(arguments.contains("--subject\nTNL Support\n")) << arguments.toStdString();
    EXPECT_TRUE(arguments.contains("TNLLog.zip\n")) << arguments.toStdString();
}

TEST_F(DialogRunTest, AScheduledRunAsksNothing) {
    begin("zoom e\r\n");
    QString waiting;
    onSchedule = [&](QDialog& schedule) {
        auto* go = schedule.findChild<QPushButton*>(QStringLiteral("go"));
        if (!schedule.findChild<QDateEdit*>()->isEnabled()) {
            waiting = go->text();
            onSchedule = {};
            QTest::mouseClick(go, Qt::LeftButton);
        } else if (go->isEnabled()) {
            QTest::mouseClick(go, Qt::LeftButton);
        } else {
            schedule.findChild<QDateEdit*>()->setDate(QDate::currentDate().addDays(1));
        }
    };
    run([](QDialog& dialog) { press(dialog, "close"); }, "schedule");
    EXPECT_EQ(waiting, QStringLiteral("Run Now"));
    EXPECT_EQ(questions, QStringList());
    EXPECT_EQ(countOf("1"), drawings) << output;
}

TEST_F(DialogRunTest, OpensAHundredTimesAndUnloads) {
    begin("zoom e\r\nqsave\r\n");
    const auto open = [this](int page) {
        bool left = false;
        onDialog = [&](QDialog& dialog) {
            auto* tabs = dialog.findChild<QTabWidget*>();
            tabs->setCurrentIndex(page % tabs->count());
            QCoreApplication::processEvents();
            press(dialog, "close");
            left = true;
        };
        host.input().type("TARNEL\n");
        return until([&] { return left && !QApplication::activeModalWidget() && host.input().isIdle(); });
    };
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(open(i)) << i;
    }
    EXPECT_EQ(countOf("0"), drawings) << "nothing but looking has happened";
    EXPECT_EQ(host.modules().unload("tnl3-19-64", false), automation::ModuleStatus::Done);
    EXPECT_TRUE(frame->findChildren<QDialog*>().isEmpty());
    output.clear();
    host.input().type("TARNEL\n");
    EXPECT_TRUE(until([&] { return output.find("Unknown command") != std::string::npos; })) << output;
    host.modules().load(MODULE_FILE, false);
    EXPECT_TRUE(open(3)) << "a second load starts anew";
}

}  // namespace
}  // namespace drafthost
