// SPDX-License-Identifier: GPL-3.0-or-later
// Stepping through a script in the drawing, and recording what is typed there, with the shipped module.
#include "drafthost/window/FramePlace.h"
#include "tests/window/DialogRun.h"

#include <Qsci/qsciscintillabase.h>
#include <QDockWidget>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QWindow>

namespace drafthost {
namespace {

class StepThroughTest : public DialogRunTest {
  protected:
    void SetUp() override {
        ApiHost::setDocking(
            [this] { keepTools(*frame, host.registry()); },
            [this](QDockWidget* tool) { return restoreTool(*frame, *tool, host.registry()); });
    }
    QDockWidget* bar() const {
        return frame->findChild<QDockWidget*>(QStringLiteral("{37B0EB0F-D66C-4DD1-BEB3-949A815D08BC}"));
    }
    QWidget* script() const { return frame->findChild<QWidget*>(QStringLiteral("DebugScript")); }
    QPushButton* button(const char* name) const {
        return bar()->findChild<QPushButton*>(QString::fromLatin1(name));
    }
    /// Text of the editor beside the drawing. The class is the module's own, so its messages are sent by
    /// name.
    QByteArray text() const {
        const auto* editor = bar()->findChild<QsciScintillaBase*>();
        return {static_cast<const char*>(
                    editor->SendScintillaPtrResult(QsciScintillaBase::SCI_GETCHARACTERPOINTER)),
                editor->SendScintilla(QsciScintillaBase::SCI_GETLENGTH)};
    }
    void opensBy(const char* pressed) {
        onDialog = [=](QDialog& dialog) {
            dialog.findChild<QTabWidget*>()->setCurrentIndex(2);
            press(dialog, pressed);
        };
        host.input().type("TARNEL\n");
        ASSERT_TRUE(until([&] { return bar() != nullptr && host.input().isIdle(); })) << output;
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    }
    /// Presses a button of the bar that ends it, and leaves the dialog that comes back.
    void backBy(const char* pressed) {
        bool returned = false;
        onDialog = [&](QDialog& dialog) {
            returned = true;
            press(dialog, "close");
        };
        QTest::mouseClick(button(pressed), Qt::LeftButton);
        EXPECT_TRUE(until([&] {
            return returned && QApplication::activeModalWidget() == nullptr && host.input().isIdle();
        })) << output;
        EXPECT_EQ(bar(), nullptr);
    }
    bool execute() {
        if (!button("execute")->isEnabled()) {
            return false;
        }
        QTest::mouseClick(button("execute"), Qt::LeftButton);
        QTest::qWait(20);
        EXPECT_TRUE(until([&] { return host.input().isIdle(); })) << output;
        return true;
    }
    void keys(const char* typed) {
        for (const char* at = typed; *at != 0; ++at) {
            QTest::keyClick(frame->windowHandle(), *at);
        }
        QCoreApplication::processEvents();
    }
    void key(Qt::Key which) {
        QTest::keyClick(frame->windowHandle(), which);
        QCoreApplication::processEvents();
    }
    long variable(const char* name) { return host.variables().integer(name, -1); }
    std::string lisp(const std::string& form) {
        output.clear();
        host.input().type(form + "(princ \"|end|\")\n");
        EXPECT_TRUE(until([&] { return output.find("|end|") != output.rfind("|end|"); })) << output;
        return output;
    }
    QByteArray state() const {
        QFile file(stateFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(StepThroughTest, LineByLineToTheEndAndBackToTheDialog) {
    begin(";first\r\n-layer m stepped\r\n\r\n(setq seen currentfile)\r\n;last\r\n");
    ASSERT_NE(host.openDocument(folder.filePath(QStringLiteral("rooms-2000.dxf")).toStdString(),
                                OpenMode::ReadWrite)
                  .document,
              nullptr);
    lisp("(setvar \"FILEDIA\" 1)");
    opensBy("stepThru");
    EXPECT_EQ(bar()->windowTitle(), QStringLiteral("Step Thru Script"));
    EXPECT_EQ(frame->dockWidgetArea(bar()), Qt::RightDockWidgetArea);
    EXPECT_EQ(text(), QByteArray("-layer m stepped\r\r(setq seen currentfile)\r"));
    EXPECT_EQ(variable("FILEDIA"), 0);
    // The drawing stays, whatever is tried.
    Document* const stepped = host.current();
    EXPECT_EQ(host.newDocument().document, nullptr);
    host.activate(*host.documents().front());
    EXPECT_EQ(host.current(), stepped);

    EXPECT_TRUE(execute());
    EXPECT_FALSE(host.current()->commandLine().atPrompt());
    EXPECT_TRUE(execute());
    EXPECT_TRUE(execute());
    EXPECT_FALSE(execute()) << "behind the last line the button is off";
    EXPECT_NE(lisp("(princ (strcat \"<\" seen \",\" currentext \">\"))").find("<rooms-2000,.dxf>"),
              std::string::npos)
        << output;
    EXPECT_NE(lisp("(princ (tblsearch \"LAYER\" \"stepped\"))").find("stepped"), std::string::npos) << output;
    backBy("close");
    EXPECT_EQ(variable("FILEDIA"), 1);
    EXPECT_NE(host.newDocument().document, nullptr) << "other drawings can be opened again";
    EXPECT_FALSE(output.find("step-through") != std::string::npos);
}

TEST_F(StepThroughTest, ALastLineWithoutAnEndIsNotReached) {
    begin("(setq a 1)\r\n(setq b 2)");
    opensBy("stepThru");
    EXPECT_TRUE(execute());
    EXPECT_FALSE(execute());
    backBy("close");
}

TEST_F(StepThroughTest, TheCommandItselfAndTarnelInBetween) {
    begin("zoom e\r\n");
    host.input().type("TNL_DEBUG\n");
    ASSERT_TRUE(until([&] { return bar() != nullptr && host.input().isIdle(); }));
    host.input().type("TNL_DEBUG\n");
    ASSERT_TRUE(until([&] { return host.input().isIdle(); }));
    EXPECT_EQ(frame->findChildren<QDockWidget*>(bar()->objectName()).size(), 1);
    // Docked elsewhere, it is found there the next time.
    frame->addDockWidget(Qt::LeftDockWidgetArea, bar());
    int dialogs = 0;
    onDialog = [&](QDialog& dialog) {
        ++dialogs;
        EXPECT_EQ(bar(), nullptr) << "TARNEL takes the place of the bar";
        press(dialog, "close");
    };
    host.input().type("TARNEL\n");
    ASSERT_TRUE(until([&] { return dialogs == 1 && host.input().isIdle(); }));
    QTest::qWait(100);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "it comes once";
    host.input().type("TNL_DEBUG\n");
    ASSERT_TRUE(until([&] { return bar() != nullptr && host.input().isIdle(); }));
    EXPECT_EQ(frame->dockWidgetArea(bar()), Qt::LeftDockWidgetArea);
    // Its own button for closing does the same.
    onDialog = [&](QDialog& dialog) {
        ++dialogs;
        press(dialog, "close");
    };
    bar()->close();
    EXPECT_TRUE(until([&] { return dialogs == 2 && bar() == nullptr; }));
}

TEST_F(StepThroughTest, WhatIsTypedBecomesTheScript) {
    begin("; before\r\nzoom e\r\n");
    const QString own = folder.filePath(QStringLiteral("typed.dxf"));
    ASSERT_TRUE(QFile::copy(folder.filePath(QStringLiteral("rooms-2000.dxf")), own));
    ASSERT_NE(host.openDocument(own.toStdString(), OpenMode::ReadWrite).document, nullptr);
    opensBy("capture");
    EXPECT_EQ(bar()->windowTitle(), QStringLiteral("TNL Keystroke Capture"));
    EXPECT_EQ(button("execute")->text(), QStringLiteral("Update"));
    EXPECT_EQ(button("close")->text(), QStringLiteral("Cancel"));
    EXPECT_EQ(text(), QByteArray("zoom e\r"));
    key(Qt::Key_Backspace);
    EXPECT_EQ(text(), QByteArray("zoom e\r")) << "what was there is not eaten";
    // With the keyboard on the drawing, which passes it on.
    frame->view()->setFocus();
    keys("-layerx");
    key(Qt::Key_Backspace);
    key(Qt::Key_Return);
    keys("m");
    key(Qt::Key_Return);
    keys("captured");
    key(Qt::Key_Return);
    key(Qt::Key_Return);
    EXPECT_EQ(text(), QByteArray("zoom e\r-layer\rm\rcaptured\r\r"));
    key(Qt::Key_Pause);
    EXPECT_EQ(bar()->windowTitle(), QStringLiteral("TNL Keystroke Capture - Paused"));
    keys("regen");
    key(Qt::Key_Return);
    key(Qt::Key_Pause);
    EXPECT_EQ(bar()->windowTitle(), QStringLiteral("TNL Keystroke Capture"));
    key(Qt::Key_Escape);
    QTest::keyClick(frame->windowHandle(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(frame->windowHandle(), Qt::Key_Shift, Qt::ShiftModifier);
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("(princ \"\u00e9\")"));
    QApplication::sendEvent(frame->focusWidget(), &composed);
    key(Qt::Key_Return);
    keys("qsave");
    key(Qt::Key_Return);
    ASSERT_TRUE(until([&] { return host.input().isIdle(); }));
    EXPECT_NE(lisp("(princ (tblsearch \"LAYER\" \"captured\"))").find("captured"), std::string::npos)
        << output;
    keys("TarNel");
    // Not Enter: that would open the dialog; it is typed into the editor beside.
    const QByteArray typed = "zoom e\r-layer\rm\rcaptured\r\r(princ \"\xC3\xA9\")\rqsave\rTarNel";
    EXPECT_EQ(text(), typed);
    auto* editor = bar()->findChild<QsciScintillaBase*>();
    editor->setFocus();
    key(Qt::Key_Return);
    EXPECT_EQ(text(), typed + '\r') << "once, by the editor itself";
    backBy("execute");
    EXPECT_TRUE(state().contains("<Script>zoom e\r\n-layer\r\nm\r\ncaptured\r\n\r\n(princ "))
        << state().left(900).toStdString();
    EXPECT_FALSE(state().contains("TarNel\r\n"));
    // The captured script runs over drawings; those that are open and changed are given up.
    answer = QMessageBox::Yes;
    run([&](QDialog& dialog) { press(dialog, "close"); });
    EXPECT_EQ(countOf("1"), drawings) << output;
    QFile file(folder.filePath(QStringLiteral("rooms-2000.dxf")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("captured"));
}

TEST_F(StepThroughTest, CancelThrowsTheCaptureAway) {
    begin("zoom e\r\n");
    opensBy("capture");
    keys("regen");
    key(Qt::Key_Return);
    backBy("close");
    EXPECT_TRUE(state().contains("<Script>zoom e\r\n</Script>")) << state().left(500).toStdString();
    keys("x");
    EXPECT_EQ(bar(), nullptr);
}

TEST_F(StepThroughTest, ALineOfAnotherSystemIsTypedAsTheTextThatItIs) {
    const QString path = folder.filePath(QStringLiteral("old.scr"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "-layer m Stra\xDF"
        "e\r\n\r\n(setq there (tblsearch \"LAYER\" \"Stra\\U+00DFe\"))\r\n");
    file.close();
    begin("zoom e</Script>\r\n<LastScriptFile>" + path.toUtf8() + "</LastScriptFile>\r\n<Script>");
    opensBy("stepThru");
    while (execute()) {
    }
    EXPECT_NE(lisp("(princ (strcat \"ma\" (if there \"de\" \"-\")))").find("made"), std::string::npos)
        << output;
    backBy("close");
}

TEST_F(StepThroughTest, OpensAndClosesAHundredTimesAndUnloads) {
    begin("zoom e\r\n");
    for (int i = 0; i < 100; ++i) {
        opensBy(i % 2 == 0 ? "stepThru" : "capture");
        backBy("close");
    }
    opensBy("capture");
    host.shutDown();
    EXPECT_EQ(bar(), nullptr) << "it goes with the module";
}

}  // namespace
}  // namespace drafthost
