// The window by mouse and keys: wheel and drag over a drawing, history, completion and Esc.
#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/window/CommandLineWidget.h"
#include "drafthost/window/DrawingView.h"
#include "drafthost/window/MainFrame.h"

#include <gtest/gtest.h>
#include <QLineEdit>
#include <QPlainTextEdit>
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
    host.closeDocument(*host.current());
    settle();
    EXPECT_EQ(tabs->count(), 1);
}

}  // namespace
}  // namespace drafthost
