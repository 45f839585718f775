// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The shipped module in the host with its frame, driven only by what a user sees: the command, the buttons of
// the dialog, the status window.
#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/window/CommandLineWidget.h"
#include "drafthost/window/DrawingView.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QClipboard>
#include <QDateEdit>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include "drafthost/window/MainFrame.h"

namespace drafthost {

class DialogRunTest : public testing::Test {
  protected:
    DialogRunTest() {
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
        host.setHasFrame(true);
        registerCommands(host.commands());
        registerSystemVariables(host.variables());
        frame = std::make_unique<MainFrame>(host);
        host.setOutput([this](std::string_view text) { output += text; });
        ApiHost::setFrame(frame.get(), frame.get(), frame->view());
        frame->show();
        QTimer::singleShot(0, &watch, [this] { look(); });
    }
    ~DialogRunTest() override {
        host.shutDown();
        ApiHost::setFrame(nullptr, nullptr, nullptr);
        host.setOutput({});
    }

    /// Copies the samples, writes a state with them as the queue, and loads the module.
    void begin(const QByteArray& script) {
        QByteArray state = "<TarnelRunner Version=\"3.0.0\" Build=\"0\">\r\n<Options>\r\n<Script>" + script +
                           "</Script>\r\n<MaxTime>60</MaxTime>\r\n<AlarmTime>40</AlarmTime>\r\n"
                           "</Options>\r\n<Files>\r\n";
        const QDir samples(QStringLiteral(SAMPLE_FOLDER));
        for (const QString& name : samples.entryList({QStringLiteral("*.dxf")})) {
            const QString copy = folder.filePath(name);
            ASSERT_TRUE(QFile::copy(samples.filePath(name), copy));
            QFile(copy).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
            state += "<File Status=\"0\">" + copy.toUtf8() + "</File>\r\n";
            ++drawings;
        }
        ASSERT_GT(drawings, 3);
        QDir(folder.path()).mkdir(QStringLiteral("Ovrix"));
        QFile file(stateFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(state + "</Files>\r\n</TarnelRunner>\r\n");
        file.close();
        host.modules().load(MODULE_FILE, false);
        host.newDocument();
    }
    QString stateFile() const { return folder.filePath(QStringLiteral("Ovrix/TarnelRunner.xml")); }
    int countOf(const QByteArray& status) const {
        QFile file(stateFile());
        return file.open(QIODevice::ReadOnly) ? int(file.readAll().count("<File Status=\"" + status + "\">"))
                                              : -1;
    }
    /// Looks at the windows again and again, in whatever loop runs, and does what the test asks for.
    void look() {
        // Before anything else: what is pressed below may ask a question, in a loop inside this call.
        QTimer::singleShot(1, &watch, [this] { look(); });
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            if (dialog->objectName() == u"TarnelDlg") {
                if (auto act = std::exchange(onDialog, {})) {
                    act(*dialog);
                }
            } else if (dialog->objectName() == u"Schedule") {
                if (auto act = onSchedule) {
                    act(*dialog);
                }
            } else if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
                questions << box->text();
                if (QAbstractButton* button = box->button(answer)) {
                    button->click();
                } else {
                    box->reject();
                }
            }
        }
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == u"StatusDialog" && window->isVisible()) {
                ++statusSeen;
                if (onStatus) {
                    onStatus(*window);
                }
            }
        }
    }
    /// Presses Run Script, or another button, in the dialog; the act gets the dialog that comes back after
    /// the run.
    void run(std::function<void(QDialog&)> after, const char* button = "runScript") {
        bool returned = false;
        onDialog = [&](QDialog& dialog) {
            press(dialog, button);
            onDialog = [&](QDialog& second) {
                after(second);
                returned = true;
            };
        };
        host.input().type("TARNEL\n");
        EXPECT_TRUE(until([&] {
            return returned && !QApplication::activeModalWidget() && host.input().isIdle();
        })) << output;
    }
    static bool until(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 30000); }
    static void press(QWidget& window, const char* name) {
        auto* button = window.findChild<QPushButton*>(QString::fromLatin1(name));
        ASSERT_NE(button, nullptr) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }
    /// The text of a page, taken as a user copies it.
    static QString textOf(QWidget* view) {
        QApplication::clipboard()->clear();
        QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
        return QApplication::clipboard()->text();
    }

    QTemporaryDir folder;
    Host host{folder.filePath(QStringLiteral("registry.ini")).toStdString()};
    ApiHost api{host};
    std::unique_ptr<MainFrame> frame;
    QObject watch;
    std::string output;
    std::function<void(QDialog&)> onDialog;
    std::function<void(QDialog&)> onSchedule;
    std::function<void(QWidget&)> onStatus;
    QStringList questions;
    /// What a question gets; without such a button it is left.
    QMessageBox::StandardButton answer = QMessageBox::NoButton;
    int statusSeen = 0;
    int drawings = 0;
};

}  // namespace drafthost
