// SPDX-License-Identifier: GPL-3.0-or-later
// The right half of the page by keys and mouse: the queue's order, statuses, menus and the drag.
#include "files/StatusColors.h"
#include "tests/files/PageFixture.h"

#include <QHeaderView>

namespace {

class QueueListTest : public PageFixture {
  protected:
    void SetUp() override {
        PageFixture::SetUp();
        addEntry("/b/x.dwg", Done);
        addEntry("/a/y.dwg", ToDo);
        addEntry("/c/X.dwg", ToDo);
        addEntry("/a/x.dwg", Error);
    }
    /// Names with their directories, in the order shown.
    std::string shown() const {
        std::string all;
        for (int row = 0; row < queue()->RowCount(); ++row) {
            all += queue()->model()->index(row, 1).data().toString().toStdString() + '/' +
                   queue()->model()->index(row, 0).data().toString().left(1).toStdString() + ' ';
        }
        return all;
    }
    void sort(const char* entry) {
        clickLink("counts", QStringLiteral("sort"), QString::fromUtf8(entry), true);
    }
    void custom(int count) {
        TarnelData().SortIdx = 6;
        for (auto* texts : {&TarnelData().FileNames, &TarnelData().FileDirs}) {
            texts->clear();
        }
        TarnelData().FileStatus.clear();
        TarnelData().FileOrder.clear();
        for (int i = 0; i < count; ++i) {
            addEntry(("/d/" + std::to_string(i)).c_str());
        }
    }
    void dragFrom(int row) {
        QTest::mousePress(queue()->viewport(), Qt::LeftButton, {}, middle(queue(), row));
        QTest::mouseMove(queue()->viewport(), middle(queue(), row) + QPoint(0, 30));
        settle();
    }
    void moveTo(const QPoint& point) {
        QTest::mouseMove(queue()->viewport(), point);
        settle();
    }
    void drop(const QPoint& point) {
        QTest::mouseRelease(queue()->viewport(), Qt::LeftButton, {}, point);
        settle();
    }
    Qt::CursorShape cursor() const { return queue()->viewport()->cursor().shape(); }
};

TEST_F(QueueListTest, EachOrderAndItsReverse) {
    open();
    const struct {
        const char* Entry;
        const char* Expected;
        const char* Reversed;
    } orders[] = {
        {"File, Directory, Status", "/a/x /b/x /c/X /a/y ", "/a/y /c/X /b/x /a/x "},
        {"File, Status, Directory", "/c/X /b/x /a/x /a/y ", "/a/y /a/x /b/x /c/X "},
        {"Directory, File, Status", "/a/x /a/y /b/x /c/X ", "/c/X /b/x /a/y /a/x "},
        {"Directory, Status, File", "/a/y /a/x /b/x /c/X ", "/c/X /b/x /a/x /a/y "},
        {"Status, File, Directory", "/c/X /a/y /b/x /a/x ", "/a/x /b/x /a/y /c/X "},
        {"Status, Directory, File", "/a/y /c/X /b/x /a/x ", "/a/x /b/x /c/X /a/y "},
        {"Custom", "/b/x /a/y /c/X /a/x ", "/a/x /c/X /a/y /b/x "},
    };
    int index = 0;
    for (const auto& order : orders) {
        sort(order.Entry);
        EXPECT_EQ(shown(), order.Expected) << order.Entry;
        EXPECT_EQ(TarnelData().SortIdx, index++);
        sort("Reverse");
        EXPECT_EQ(shown(), order.Reversed) << order.Entry;
        EXPECT_EQ(TarnelData().SortReverse, 1);
        sort("Reverse");
    }
    EXPECT_EQ(menuTexts.join(u'|'),
              QStringLiteral("Sort By:|-|File, Directory, Status|File, Status, Directory|Directory, File, "
                             "Status|Directory, Status, File|Status, File, Directory|Status, Directory, "
                             "File|-|Reversex|-|Customx"));
    sort("");
    EXPECT_EQ(TarnelData().SortIdx, 6) << "no choice, no change";
}

TEST_F(QueueListTest, AHeaderOpensTheSortMenuAndTheSelectionFollows) {
    open();
    click(queue(), 3);
    EXPECT_EQ(rows(queue()), "x.dwg x.dwg X.dwg y.dwg* ");
    chooseNext(QStringLiteral("Reverse"));
    QTest::mouseClick(queue()->header()->viewport(), Qt::LeftButton, {}, QPoint(20, 8));
    EXPECT_EQ(rows(queue()), "y.dwg* X.dwg x.dwg x.dwg ");
}

TEST_F(QueueListTest, TitlesColoursAndCounts) {
    addEntry("/z/z.dwg", 9);
    open();
    const auto title = [&](int column) {
        return queue()->model()->headerData(column, Qt::Horizontal).toString();
    };
    EXPECT_EQ(title(0) + title(1) + title(2), QStringLiteral("File NameDirectoryStatus"));
    const QPalette palette = QApplication::palette();
    EXPECT_EQ(StatusColor(ToDo, palette), QColor(Qt::black));
    EXPECT_EQ(StatusColor(Done, palette), QColor(0, 128, 0));
    for (const auto red : {FailOpen, Timeout, Error}) {
        EXPECT_EQ(StatusColor(red, palette), QColor(255, 0, 0));
    }
    EXPECT_EQ(StatusColor(Locked, palette), QColor(0, 0, 255));
    EXPECT_EQ(StatusColor(Canceled, palette), QColor(255, 0, 255));
    EXPECT_FALSE(queue()->model()->index(4, 0).data(Qt::ForegroundRole).isValid()) << "a status that is none";
    QPalette dark = palette;
    dark.setColor(QPalette::Base, QColor(30, 31, 34));
    for (const auto status : {Done, FailOpen, Locked, Canceled}) {
        const QColor light = StatusColor(status, palette);
        const QColor onDark = StatusColor(status, dark);
        EXPECT_NEAR(onDark.hslHueF(), light.hslHueF(), 0.02F);
        // Magenta can be read as it is.
        EXPECT_GE(qGray(onDark.rgb()), qGray(light.rgb()) + (status == Canceled ? 0 : 20));
    }
    EXPECT_EQ(stripText("counts"), QStringLiteral("Files: 5, All ToDo, Remove Done, Sort"));
    clickLink("counts", QStringLiteral("removedone"));
    EXPECT_EQ(stripText("counts"), QStringLiteral("Files: 4, All ToDo, Sort"));
    clickLink("counts", QStringLiteral("alltodo"));
    EXPECT_EQ(stripText("counts"), QStringLiteral("Files: 4, Sort"));
    EXPECT_EQ(statuses(), "0000");
    tab->RemoveDone();
    EXPECT_EQ(balloon(), "Remove File: You have not selected a file to remove.");
}

TEST_F(QueueListTest, RemoveByButtonAndKey) {
    open();
    press("removeFiles");
    EXPECT_EQ(balloon(), "Remove File: You have not selected a file to remove.");
    click(queue(), 0);
    click(queue(), 2, Qt::ControlModifier);
    press("removeFiles");
    EXPECT_EQ(shown(), "/b/x /a/y ");
    EXPECT_EQ(rows(queue()), "x.dwg y.dwg ") << "nothing is selected";
    queue()->setFocus();
    click(queue(), 1);
    QTest::keyClick(queue(), Qt::Key_Delete);
    EXPECT_EQ(shown(), "/b/x ");
    press("removeAll");
    EXPECT_EQ(shown(), "");
    press("removeAll");
    EXPECT_EQ(balloon(), "Remove File: You have not selected a file to remove.");
}

TEST_F(QueueListTest, SetStatusByButtonDoubleClickAndEnter) {
    open();
    press("setStatus");
    EXPECT_EQ(balloon(), "Set Status: You have not selected a file to set the status for.");
    sort("Custom");
    click(queue(), 0);
    click(queue(), 2, Qt::ShiftModifier);
    chooseNext(QStringLiteral("Locked"));
    press("setStatus");
    EXPECT_EQ(statuses(), "4445");
    EXPECT_EQ(menuTexts.join(u'|'),
              QStringLiteral("ToDo|Done|FailOpen|Timeout|Locked|Error|Canceled|-|Cancel"));
    EXPECT_EQ(rows(queue()), "x.dwg* y.dwg* X.dwg* x.dwg ");
    chooseNext(QStringLiteral("Canceled"));
    doubleClick(queue(), 3);
    EXPECT_EQ(statuses(), "4446");
    chooseNext(QStringLiteral("Cancel"));
    QTest::keyClick(queue(), Qt::Key_Return);
    EXPECT_EQ(statuses(), "4446");
    chooseNext(QStringLiteral("Done"));
    QTest::keyClick(queue(), Qt::Key_Return);
    EXPECT_EQ(statuses(), "4441");
    press("allToDo");
    EXPECT_EQ(statuses(), "0000");
}

TEST_F(QueueListTest, ContextMenu) {
    open();
    sort("Custom");
    const auto menu = [&](const char* entry, QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) {
        chooseNext(QString::fromUtf8(entry));
        QContextMenuEvent event(reason, middle(queue(), 0),
                                queue()->viewport()->mapToGlobal(middle(queue(), 0)));
        QApplication::sendEvent(queue()->viewport(), &event);
        settle();
    };
    menu("Locked");
    EXPECT_EQ(statuses(), "1005") << "nothing was selected";
    EXPECT_EQ(balloon(), "");
    EXPECT_EQ(menuTexts.join(u'|'),
              QStringLiteral("ToDo|Done|FailOpen|Timeout|Locked|Error|Canceled|-|Select "
                             "All|Invert Selection|-|All ToDo|-|Cancel"));
    menu("Select All");
    EXPECT_EQ(rows(queue()), "x.dwg* y.dwg* X.dwg* x.dwg* ");
    click(queue(), 1);
    menu("Invert Selection", QContextMenuEvent::Keyboard);
    EXPECT_EQ(rows(queue()), "x.dwg* y.dwg X.dwg* x.dwg* ");
    menu("Timeout");
    EXPECT_EQ(statuses(), "3033");
    menu("All ToDo");
    EXPECT_EQ(statuses(), "0000");
}

TEST_F(QueueListTest, ThreeRowsDragged) {
    custom(8);
    open();
    click(queue(), 1);
    click(queue(), 3, Qt::ControlModifier);
    click(queue(), 4, Qt::ControlModifier);
    dragFrom(3);
    EXPECT_TRUE(queue()->IsDragging());
    moveTo(middle(queue(), 6));
    EXPECT_EQ(cursor(), Qt::ArrowCursor);
    moveTo(middle(queue(), 4));
    EXPECT_EQ(cursor(), Qt::ForbiddenCursor) << "over one of its own";
    moveTo(middle(queue(), 6));
    drop(middle(queue(), 6));
    EXPECT_EQ(rows(queue()), "0 2 5 6 1* 3* 4* 7 ");
    EXPECT_EQ(balloon(), "");
    // And upwards, from a row that was not selected before.
    click(queue(), 0);
    dragFrom(7);
    moveTo(middle(queue(), 0));
    drop(middle(queue(), 0));
    EXPECT_EQ(rows(queue()), "0 7* 2 5 6 1 3 4 ");
    EXPECT_FALSE(queue()->IsDragging());
}

TEST_F(QueueListTest, AListLongerThanItsWindowScrollsUnderADrag) {
    custom(300);
    open();
    click(queue(), 1);
    dragFrom(1);
    const QRect window = queue()->viewport()->rect();
    const auto shows = [&](int row) { return queue()->visualRect(queue()->model()->index(row, 0)); };
    moveTo(QPoint(20, window.bottom() - 2));
    EXPECT_TRUE(QTest::qWaitFor([&] { return shows(60).intersects(window); }, 20000))
        << "without a move of the mouse";
    moveTo(window.center());
    const QRect before = shows(60);
    QTest::qWait(200);
    EXPECT_EQ(shows(60), before) << "away from the edge it rests";
    moveTo(QPoint(20, -200));
    EXPECT_TRUE(QTest::qWaitFor([&] { return shows(0).intersects(window); }, 20000)) << "faster outside";
    moveTo(middle(queue(), 4));
    drop(middle(queue(), 4));
    EXPECT_EQ(rows(queue()).substr(0, 14), "0 2 3 4 1* 5 6");
}

TEST_F(QueueListTest, TheLinksOfTheStripsShowInANarrowPageToo) {
    open();
    const auto height = [&] { return tab->findChild<CHTMLayout*>(QStringLiteral("counts"))->height(); };
    tab->resize(1300, 300);
    settle();
    const int plain = height();
    for (const int width : {1300, 420, 300, 1300}) {
        tab->resize(width, 300);
        settle();
        for (const char* name : {"places", "counts"}) {
            auto* strip = tab->findChild<CHTMLayout*>(QLatin1String(name));
            for (const HtmlElement& link : strip->Links()) {
                EXPECT_TRUE(strip->viewport()->rect().contains(link.Box().center()))
                    << width << ' ' << link.Attribute(QStringLiteral("href")).toStdString();
            }
            EXPECT_FALSE(strip->geometry().intersects(queue()->geometry()));
            EXPECT_FALSE(strip->geometry().intersects(tree()->geometry()));
        }
        EXPECT_EQ(height() > plain, width < 1000) << width;
    }
}

TEST_F(QueueListTest, ADragThatMovesNothing) {
    custom(5);
    open();
    click(queue(), 1);
    click(queue(), 2, Qt::ControlModifier);
    dragFrom(1);
    moveTo(middle(queue(), 2));
    drop(middle(queue(), 2));
    EXPECT_EQ(rows(queue()), "0 1* 2* 3 4 ") << "released over the selection";
    dragFrom(1);
    moveTo(middle(queue(), 4));
    moveTo(QPoint(-200, 20));
    EXPECT_EQ(cursor(), Qt::ForbiddenCursor);
    drop(QPoint(-200, 20));
    EXPECT_EQ(rows(queue()), "0 1* 2* 3 4 ") << "released elsewhere";
    dragFrom(1);
    moveTo(middle(queue(), 4));
    QTest::keyClick(queue(), Qt::Key_Escape);
    EXPECT_FALSE(queue()->IsDragging());
    EXPECT_TRUE(tab->isVisible());
    drop(middle(queue(), 4));
    EXPECT_EQ(rows(queue()), "0 1* 2* 3 4 ") << "broken off with Esc";
}

TEST_F(QueueListTest, ADragMakesTheOrderCustomAndSaysSoOnce) {
    open();
    ASSERT_EQ(shown(), "/a/x /b/x /c/X /a/y ");
    click(queue(), 0);
    dragFrom(0);
    EXPECT_EQ(balloon(), "Sort: Changing the sort to Custom.");
    QTest::keyClick(queue(), Qt::Key_Escape);
    EXPECT_EQ(TarnelData().SortIdx, 6) << "the order stays, also after Esc";
    EXPECT_EQ(shown(), "/a/x /b/x /c/X /a/y ");
    EXPECT_EQ(statuses(), "5100");
    drop(middle(queue(), 0));
    dragFrom(0);
    moveTo(middle(queue(), 1));
    drop(middle(queue(), 1));
    EXPECT_EQ(balloon(), "");
    EXPECT_EQ(shown(), "/b/x /a/x /c/X /a/y ");
}

TEST_F(QueueListTest, RowsMoveByKeys) {
    custom(4);
    open();
    queue()->setFocus();
    click(queue(), 2);
    QTest::keyClick(queue(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(rows(queue()), "0 2* 1 3 ");
    QTest::keyClick(queue(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(queue(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(rows(queue()), "2* 0 1 3 ");
    QTest::keyClick(queue(), Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(queue(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(rows(queue()), "0 2* 1* 3 ") << "the keyboard stays with the row";
}

TEST_F(QueueListTest, ARefreshShowsWhatChangedBehindIt) {
    open();
    addEntry("/n/n.dwg");
    Q_EMIT TarnelData().Signals.RefreshSignal();
    EXPECT_EQ(queue()->RowCount(), 5);
    EXPECT_EQ(stripText("counts"), QStringLiteral("Files: 5, All ToDo, Remove Done, Sort"));
}

TEST_F(QueueListTest, SelectionIsOutlinedWithoutTheKeyboard) {
    custom(4);
    open();
    queue()->setFocus();
    click(queue(), 1);
    click(queue(), 2, Qt::ControlModifier);
    const QColor mark = queue()->palette().color(QPalette::Highlight);
    const QPoint inside = middle(queue(), 1) + QPoint(queue()->viewport()->width() / 4, 0);
    EXPECT_EQ(queue()->viewport()->grab().toImage().pixelColor(inside), mark);
    files()->setFocus();
    settle();
    const QImage picture = queue()->viewport()->grab().toImage();
    EXPECT_NE(picture.pixelColor(inside), mark) << "not filled";
    const QRect first = queue()->visualRect(queue()->model()->index(1, 0));
    const auto edge = [&](int y) {
        return qAbs(picture.pixelColor(60, y).blue() - mark.blue()) < 40 &&
               qAbs(picture.pixelColor(60, y).red() - mark.red()) < 40;
    };
    EXPECT_TRUE(edge(first.top()));
    EXPECT_FALSE(edge(first.bottom())) << "open towards the next selected row";
}

}  // namespace
