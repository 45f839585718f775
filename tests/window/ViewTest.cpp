// SPDX-License-Identifier: GPL-3.0-or-later
// The window by mouse and keys: wheel and drag over a drawing, history, completion and Esc.
#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/window/CommandLineWidget.h"
#include "drafthost/window/DrawingView.h"
#include "drafthost/window/FramePlace.h"
#include "drafthost/window/MainFrame.h"

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>

namespace drafthost {
namespace {

class WindowTest : public testing::Test {
  protected:
    WindowTest() {
        host.setHasFrame(true);
        registerCommands(host.commands());
        registerSystemVariables(host.variables());
        frame = std::make_unique<MainFrame>(host);
        host.setOutput([this](std::string_view text) {
            frame->commandLine()->append(QString::fromUtf8(text.data(), qsizetype(text.size())));
        });
        frame->show();
        host.newDocument();
        settle();
    }
    ~WindowTest() override {
        host.shutDown();
        host.setOutput({});
    }
    static void settle() { QTest::qWait(80); }
    QLineEdit* line() { return frame->findChild<QLineEdit*>(QStringLiteral("commandLine")); }
    QString said() { return frame->commandLine()->findChild<QPlainTextEdit*>()->toPlainText(); }
    void enter(const QString& text) {
        QTest::keyClicks(line(), text);
        QTest::keyClick(line(), Qt::Key_Return);
        settle();
    }

    /// Copies of a sample, opened in this order.
    void open(const QStringList& names) {
        for (const QString& name : names) {
            const QString path = folder.filePath(name);
            ASSERT_TRUE(QFile::copy(QStringLiteral(SAMPLE_FOLDER "/rooms-2000.dxf"), path));
            QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
            ASSERT_NE(host.openDocument(path.toStdString(), OpenMode::ReadWrite).document, nullptr);
        }
        settle();
    }
    QByteArray content(const QString& name) const {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void trigger(const QString& text) {
        for (QAction* action : frame->findChildren<QAction*>()) {
            if (action->text() == text) {
                return action->trigger();
            }
        }
        ADD_FAILURE() << text.toStdString() << " is in no menu";
    }
    void answerNext(QMessageBox::StandardButton button) {
        QTimer::singleShot(5, frame.get(), [this, button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr) {
                return answerNext(button);
            }
            ++questions;
            box->button(button)->click();
        });
    }
    /// Types a path into the file dialog that is open.
    void chooseFile(const QString& path) {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
        if (QFile::exists(path)) {
            answerNext(QMessageBox::Yes);
        }
        dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
    }

    int questions = 0;
    QTemporaryDir folder;
    Host host{folder.filePath(QStringLiteral("registry.ini")).toStdString()};
    ApiHost api{host};
    std::unique_ptr<MainFrame> frame;
};

TEST_F(WindowTest, WheelAndDrag) {
    DrawingView* view = frame->view();
    enter(QStringLiteral("(entmake '((0 . \"LINE\") (10 0.0 0.0) (11 100.0 50.0)))"));
    EXPECT_EQ(view->list().items.size(), 1u) << "what LISP makes is seen";
    enter(QStringLiteral("ZOOM"));
    enter(QStringLiteral("E"));
    const QPointF middle = view->toDrawing(QRectF(view->rect()).center());
    EXPECT_NEAR(middle.x(), 50, 1);
    EXPECT_NEAR(middle.y(), 25, 1);

    const QPointF at(40, 30);
    const QPointF before = view->toDrawing(at);
    const double width = view->toDrawing(QPointF(200, 0)).x() - view->toDrawing(QPointF(100, 0)).x();
    QWheelEvent wheel(at, view->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(view, &wheel);
    EXPECT_NEAR(view->toDrawing(at).x(), before.x(), 1e-6) << "the place under the pointer stays";
    EXPECT_NEAR(view->toDrawing(at).y(), before.y(), 1e-6);
    EXPECT_LT(view->toDrawing(QPointF(200, 0)).x() - view->toDrawing(QPointF(100, 0)).x(), width);

    const QPointF grabbed = view->toDrawing(QPointF(100, 100));
    QTest::mousePress(view, Qt::LeftButton, {}, QPoint(100, 100));
    QMouseEvent move(QEvent::MouseMove, QPointF(160, 130), view->mapToGlobal(QPointF(160, 130)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view, &move);
    QTest::mouseRelease(view, Qt::LeftButton, {}, QPoint(160, 130));
    EXPECT_NEAR(view->toDrawing(QPointF(160, 130)).x(), grabbed.x(), 1e-6);
    EXPECT_NEAR(view->toDrawing(QPointF(160, 130)).y(), grabbed.y(), 1e-6);

    // A command that changes nothing of the view leaves what the mouse did.
    const QPointF kept = view->toDrawing(QPointF(0, 0));
    enter(QStringLiteral("(+ 1 2)"));
    EXPECT_EQ(view->toDrawing(QPointF(0, 0)), kept);
}

TEST_F(WindowTest, ZoomExtentsShowsAllWhateverTheMouseDid) {
    DrawingView* view = frame->view();
    enter(QStringLiteral("(entmake '((0 . \"LINE\") (10 0.0 0.0) (11 1000.0 10.0)))"));
    const auto isWhole = [&] {
        const QRectF seen(view->toDrawing(QPointF(0, view->height())),
                          view->toDrawing(QPointF(view->width(), 0)));
        return seen.left() < 0 && seen.right() > 1000 && seen.width() < 1100 &&
               std::abs(seen.center().x() - 500) < 1 && std::abs(seen.center().y() - 5) < 1;
    };
    for (const QSize& size : {QSize(500, 700), QSize(1000, 500)}) {
        frame->resize(size);
        settle();
        for (int i = 0; i < 2; ++i) {
            enter(QStringLiteral("ZOOM"));
            enter(QStringLiteral("E"));
            EXPECT_TRUE(isWhole()) << size.width() << " round " << i;
            QWheelEvent wheel(QPointF(9, 9), view->mapToGlobal(QPointF(9, 9)), QPoint(), QPoint(0, 360),
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view, &wheel);
            EXPECT_FALSE(isWhole());
        }
    }
}

TEST_F(WindowTest, TypingAnywhereGoesToTheCommandLine) {
    auto* messages = frame->commandLine()->findChild<QPlainTextEdit*>();
    messages->setFocus();
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("(strcat"));
    EXPECT_EQ(line()->text(), QStringLiteral("(strcat"));
    EXPECT_TRUE(line()->hasFocus());
    frame->findChild<QTabBar*>()->setFocus();
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral(" \"an\" \"y\")"));
    messages->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    settle();
    EXPECT_TRUE(said().contains(QStringLiteral("\"any\""))) << said().toStdString();
    messages->setFocus();
    messages->selectAll();
    QTest::keyClick(messages, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(messages->hasFocus()) << "what has been said can still be copied";
}

TEST_F(WindowTest, CommandLineKeys) {
    enter(QStringLiteral("(strcat \"si\" \"xty\")"));
    EXPECT_TRUE(said().contains(QStringLiteral("\"sixty\""))) << said().toStdString();
    enter(QStringLiteral("(* 6 7)"));
    QTest::keyClick(line(), Qt::Key_Up);
    EXPECT_EQ(line()->text(), QStringLiteral("(* 6 7)"));
    QTest::keyClick(line(), Qt::Key_Up);
    QTest::keyClick(line(), Qt::Key_Up);
    EXPECT_TRUE(line()->text().startsWith(QStringLiteral("(strcat"))) << "the oldest line is the end";
    QTest::keyClick(line(), Qt::Key_Down);
    QTest::keyClick(line(), Qt::Key_Down);
    EXPECT_EQ(line()->text(), QString());

    QTest::keyClicks(line(), QStringLiteral("zoo"));
    QTest::keyClick(line(), Qt::Key_Tab);
    EXPECT_EQ(line()->text(), QStringLiteral("ZOOM"));
    QTest::keyClick(line(), Qt::Key_Return);
    settle();
    EXPECT_NE(host.current()->commandLine().names(), "");
    QTest::keyClicks(line(), QStringLiteral("half"));
    QTest::keyClick(line(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(line()->text(), QString());
    EXPECT_EQ(host.current()->commandLine().names(), "") << "Esc cancels the command";
}

TEST_F(WindowTest, AnEndFromOutsideIsHeardAtThePrompt) {
    bool ended = false;
    host.input().setOnEnd([&] { ended = true; });
    host.input().terminate();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended; }, 5000));
}

TEST_F(WindowTest, TabsFollowTheDocuments) {
    auto* tabs = frame->findChild<QTabBar*>();
    EXPECT_EQ(tabs->count(), 1);
    host.newDocument();
    settle();
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->currentIndex(), 1);
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(0).center());
    settle();
    EXPECT_EQ(host.current(), host.documents()[0]);
    // While something waits on the stack the drawing stays, and so does its tab.
    line()->setText(QStringLiteral("(getstring \"name\")"));
    QTest::keyClick(line(), Qt::Key_Return);
    bool stayed = false;
    QTimer::singleShot(40, frame.get(),
                       [&] { QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center()); });
    QTimer::singleShot(80, frame.get(), [&] {
        stayed = tabs->currentIndex() == 0 && host.current() == host.documents()[0] && !host.input().isIdle();
        // The answer, without which nothing above goes on.
        QTest::keyClick(line(), Qt::Key_Return);
    });
    settle();
    EXPECT_TRUE(stayed);
    host.closeDocument(*host.current());
    settle();
    EXPECT_EQ(tabs->count(), 1);
}

TEST_F(WindowTest, ChangesAreMarkedAndAskedAboutInABox) {
    open({QStringLiteral("a.dxf"), QStringLiteral("b.dxf")});
    auto* tabs = frame->findChild<QTabBar*>();
    ASSERT_EQ(tabs->count(), 3);
    const QByteArray before = content(QStringLiteral("b.dxf"));
    EXPECT_EQ(tabs->tabText(2), QStringLiteral("b.dxf"));
    EXPECT_FALSE(frame->isWindowModified());
    enter(QStringLiteral("(entmake '((0 . \"POINT\") (10 1.0 1.0)))"));
    EXPECT_EQ(tabs->tabText(2), QStringLiteral("b.dxf*"));
    EXPECT_TRUE(frame->isWindowModified());

    // A click on the tab's button: Cancel keeps it, Discard closes it, and the file is as it was.
    const auto clickClose = [&](int index) {
        auto* button = tabs->tabButton(index, QTabBar::RightSide);
        ASSERT_NE(button, nullptr);
        QTest::mouseClick(button, Qt::LeftButton);
        settle();
        settle();
    };
    answerNext(QMessageBox::Cancel);
    clickClose(2);
    EXPECT_EQ(tabs->count(), 3);
    answerNext(QMessageBox::Discard);
    clickClose(2);
    EXPECT_EQ(tabs->count(), 2);
    EXPECT_EQ(content(QStringLiteral("b.dxf")), before);
    EXPECT_EQ(questions, 2);

    // QUIT goes through all that have changes; one Cancel keeps the host.
    enter(QStringLiteral("(entmake '((0 . \"POINT\") (10 1.0 1.0)))"));
    answerNext(QMessageBox::Cancel);
    frame->close();
    settle();
    EXPECT_FALSE(host.quitRequested());
    // By a program it is a matter of the command line, as ever.
    enter(QStringLiteral("(command \"QUIT\" \"N\")"));
    EXPECT_EQ(questions, 3);
    EXPECT_FALSE(host.quitRequested());
    answerNext(QMessageBox::Save);
    enter(QStringLiteral("quit"));
    EXPECT_TRUE(host.quitRequested());
    EXPECT_NE(content(QStringLiteral("a.dxf")), before);
}

TEST_F(WindowTest, SaveAsAndTheFilesOfLate) {
    enter(QStringLiteral("(entmake '((0 . \"POINT\") (10 1.0 1.0)))"));
    QString path = folder.filePath(QStringLiteral("with blank.dxf"));
    const auto saveAs = [&] {
        QTimer::singleShot(0, frame.get(), [&] { chooseFile(path); });
        trigger(QStringLiteral("Save &as..."));
        settle();
        settle();
    };
    saveAs();
    EXPECT_EQ(host.current()->path(), path.toStdString()) << said().toStdString();
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_FALSE(frame->isWindowModified());
    open({QStringLiteral("a.dxf")});
    path = folder.filePath(QStringLiteral("old.dxf"));
    ASSERT_TRUE(QFile::copy(folder.filePath(QStringLiteral("a.dxf")), path));
    // The dialog has asked about the old file; nothing waits on the command line.
    saveAs();
    EXPECT_EQ(host.current()->path(), path.toStdString()) << said().toStdString();
    EXPECT_TRUE(host.current()->commandLine().atPrompt()) << said().toStdString();
    EXPECT_FALSE(said().contains(QStringLiteral("needs a file name"))) << said().toStdString();

    auto* recent = frame->findChild<QMenu*>(QStringLiteral("recent"));
    ASSERT_NE(recent, nullptr);
    Q_EMIT qobject_cast<QMenu*>(recent->parent())->aboutToShow();
    QStringList names;
    for (const QAction* action : recent->actions()) {
        names << action->text().section(u' ', 1).section(QStringLiteral("  - "), 0, 0);
    }
    EXPECT_EQ(names, (QStringList{QStringLiteral("old.dxf"), QStringLiteral("a.dxf"),
                                  QStringLiteral("with blank.dxf")}));
    trigger(QStringLiteral("&Close"));
    settle();
    settle();
    const std::size_t open = host.documents().size();
    recent->actions().at(1)->trigger();
    settle();
    EXPECT_EQ(host.documents().size(), open + 1) << said().toStdString();
    EXPECT_EQ(host.current()->title(), "a.dxf");
    recent->actions().at(2)->trigger();
    settle();
    EXPECT_EQ(host.documents().size(), open + 1) << "what is open already is shown";
    EXPECT_EQ(host.current()->title(), "with blank.dxf");
}

TEST_F(WindowTest, WithoutADrawingItCanStillOpenAndQuit) {
    open({QStringLiteral("a.dxf")});
    host.closeDocument(*host.documents()[0]);
    trigger(QStringLiteral("&Close"));
    settle();
    settle();
    EXPECT_EQ(host.current(), nullptr);
    EXPECT_EQ(frame->findChild<QTabBar*>()->count(), 0);
    trigger(QStringLiteral("&New"));
    settle();
    ASSERT_NE(host.current(), nullptr) << said().toStdString();
    trigger(QStringLiteral("&Close"));
    settle();
    settle();
    enter(QStringLiteral("OPEN"));
    enter(folder.filePath(QStringLiteral("a.dxf")));
    ASSERT_NE(host.current(), nullptr) << said().toStdString();
    EXPECT_EQ(host.current()->title(), "a.dxf");
    trigger(QStringLiteral("&Close"));
    settle();
    settle();
    frame->close();
    settle();
    EXPECT_TRUE(host.quitRequested()) << said().toStdString();
}

TEST_F(WindowTest, AMenuLeavesARunningScriptAlone) {
    QFile script(folder.filePath(QStringLiteral("s.scr")));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("delay 300\n(setq done 1)\n");
    script.close();
    enter(QStringLiteral("SCRIPT"));
    enter(script.fileName());
    trigger(QStringLiteral("Zoom &extents"));
    QTest::qWait(500);
    enter(QStringLiteral("done"));
    EXPECT_FALSE(said().contains(QStringLiteral("ZOOM"))) << said().toStdString();
    EXPECT_TRUE(said().contains(QStringLiteral("(setq done 1)")));
    // What waits half answered goes.
    enter(QStringLiteral("SAVEAS"));
    trigger(QStringLiteral("Zoom &extents"));
    settle();
    EXPECT_EQ(host.current()->commandLine().names(), "");
    EXPECT_TRUE(said().contains(QStringLiteral("Command: ZOOM"))) << said().toStdString();
}

TEST_F(WindowTest, OpensInsideTheScreenWhereItWasLeft) {
    const QRect available(0, 30, 800, 570);
    EXPECT_EQ(placedInside(QRect(-50, 10, 1000, 720), available), available);
    EXPECT_EQ(placedInside(QRect(700, 500, 300, 200), available), QRect(500, 400, 300, 200));
    EXPECT_EQ(placedInside(QRect(90, 90, 300, 200), available), QRect(90, 90, 300, 200));

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.contains(frame->geometry())) << "at its first start";
    const QRect left(60, 70, 500, 400);
    frame->setGeometry(left);
    settle();
    keepPlace(*frame, host.registry());
    QMainWindow again;
    restorePlace(again, host.registry());
    EXPECT_EQ(again.geometry(), left);
    frame->setGeometry(QRect(5000, 4000, 500, 400));
    keepPlace(*frame, host.registry());
    QMainWindow gone;
    restorePlace(gone, host.registry());
    EXPECT_TRUE(screen.contains(gone.geometry())) << "the screen it stood on has gone";
}

}  // namespace
}  // namespace drafthost
