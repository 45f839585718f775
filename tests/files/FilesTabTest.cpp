// SPDX-License-Identifier: GPL-3.0-or-later
// The left half of the page by keys and mouse: folders, files, filter, and the way across to the queue.
#include "files/FilterDlg.h"
#include "files/FolderPlaces.h"
#include "tests/files/PageFixture.h"

#include <sys/stat.h>
#include <QCheckBox>
#include <QLineEdit>

namespace {

class FilesTabTest : public PageFixture {
  protected:
    void SetUp() override {
        PageFixture::SetUp();
        for (const char* name : {"c.dxf", "B.dwg", "a.dwg", "notes.txt", "sub/d.dwg"}) {
            folder.Write(name);
        }
    }
    QString title() const { return files()->model()->headerData(0, Qt::Horizontal).toString(); }
    /// Fills the filter dialog that comes up next.
    static void withFilter(const std::function<void(FilterDlg&)>& act) {
        QTimer::singleShot(5, qApp, [act] {
            auto* dialog = qobject_cast<FilterDlg*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
        });
    }
    static void check(FilterDlg& dialog, const char* box, bool on) {
        auto* found = dialog.findChild<QCheckBox*>(QLatin1String(box));
        if (found->isChecked() != on) {
            QTest::mouseClick(found, Qt::LeftButton, {}, QPoint(8, found->height() / 2));
        }
    }
    static void type(FilterDlg& dialog, const QString& mask) {
        auto* edit = dialog.findChild<QLineEdit*>();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, mask);
    }
    static void endDialog(FilterDlg& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<CXPStyleButtonST*>(QLatin1String(button)), Qt::LeftButton);
    }
};

TEST_F(FilesTabTest, AFolderChosenInTheTree) {
    open();
    EXPECT_EQ(title(), QStringLiteral("Drawing Files"));
    EXPECT_EQ(rows(files()), "a.dwg B.dwg c.dxf ");
    EXPECT_EQ(tree()->SelectedFolder(), folder.Bytes());
    folder.Write("other/x.dwg");
    tree()->SelectPath(folder.Bytes("sub"), BrowseTree::Announce);
    settle();
    EXPECT_EQ(rows(files()), "d.dwg ");
    // By keys: the next folder above is the one that the page began with.
    tree()->setFocus();
    QTest::keyClick(tree(), Qt::Key_Left);
    settle();
    EXPECT_EQ(rows(files()), "a.dwg B.dwg c.dxf ");
    const std::deque<QByteArray> expected = {folder.Bytes(), folder.Bytes("sub")};
    EXPECT_EQ(TarnelData().PreviousDirectories, expected);
}

TEST_F(FilesTabTest, FromTheFilesToTheQueue) {
    addEntry((folder.Path().toStdString() + "/a.dwg").c_str(), Done);
    open();
    press("add");
    EXPECT_EQ(balloon(), "Add File: You have not selected a file to add.");
    click(files(), 0);
    click(files(), 2, Qt::ControlModifier);
    press("add");
    EXPECT_EQ(rows(queue()), "a.dwg c.dxf ");
    EXPECT_EQ(statuses(), "10") << "what is there keeps its status";
    EXPECT_EQ(rows(files()), "a.dwg* B.dwg c.dxf* ") << "the selection stays";
    EXPECT_EQ(TarnelData().FileDirs[1], folder.Path() + u'/');
    press("addAll");
    EXPECT_EQ(rows(queue()), "a.dwg B.dwg c.dxf ");
    EXPECT_EQ(rows(files()), "a.dwg* B.dwg* c.dxf* ");
    EXPECT_EQ(TarnelData().FileNames.size(), 3U);
    EXPECT_EQ(balloon(), "");
    press("removeAll");
    EXPECT_EQ(rows(queue()), "");
    doubleClick(files(), 1);
    EXPECT_EQ(rows(queue()), "B.dwg ");
    files()->setFocus();
    QTest::keyClick(files(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(files(), Qt::Key_Return);
    EXPECT_EQ(rows(queue()), "a.dwg B.dwg c.dxf ");
    EXPECT_EQ(stripText("counts"), QStringLiteral("Files: 3, Sort"));
}

TEST_F(FilesTabTest, NamesAreFoundByTyping) {
    open();
    files()->setFocus();
    QTest::keyClicks(files(), QStringLiteral("c."));
    EXPECT_EQ(rows(files()), "a.dwg B.dwg c.dxf* ");
}

TEST_F(FilesTabTest, ALinkIsEnteredAndNeverQueued) {
    folder.Make("elsewhere/deep");
    folder.Write("elsewhere/deep/e.dxf");
    folder.Link(folder.Path("elsewhere/deep").toStdString(), "b-link");
    open();
    ASSERT_EQ(rows(files()), "a.dwg b-link B.dwg c.dxf ");
    EXPECT_EQ(files()->model()->index(1, 0).data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::blue));
    EXPECT_TRUE(files()->model()->index(1, 0).data(Qt::FontRole).value<QFont>().underline());
    press("addAll");
    EXPECT_EQ(rows(queue()), "a.dwg B.dwg c.dxf ");
    doubleClick(files(), 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return rows(files()) == "e.dxf "; }, 3000)) << rows(files());
    const QByteArray target = QFile::encodeName(QFileInfo(folder.Path("elsewhere/deep")).canonicalFilePath());
    EXPECT_EQ(TarnelData().PreviousDirectories.front(), target);
    EXPECT_EQ(tree()->SelectedFolder(), target);
    EXPECT_EQ(TarnelData().PreviousDirectories.size(), 2U);
}

// The row's number is looked up in the order found. The two differ where names differ in case alone.
TEST_F(FilesTabTest, ADoubleClickLooksAtTheRowNumber) {
    open();
    TarnelData().BrowseIsLink[0] = 1;
    doubleClick(files(), 0);
    EXPECT_EQ(rows(queue()), "") << "taken for a link, which it is not";
    doubleClick(files(), 1);
    EXPECT_EQ(rows(queue()), "B.dwg ");
}

TEST_F(FilesTabTest, PreviousFolders) {
    open();
    // No menu with one folder; it would wait for an answer.
    tab->PreviousMenu({10, 10});
    tree()->SelectPath(folder.Bytes("sub"), BrowseTree::Announce);
    tree()->SelectDesktop();
    clickLink("places", QStringLiteral("previous"), folder.Path(), true);
    const QStringList expected = {folder.Path("sub"), folder.Path(), QStringLiteral("-"),
                                  QStringLiteral("Cancel")};
    EXPECT_EQ(menuTexts, expected);
    EXPECT_EQ(rows(files()), "a.dwg B.dwg c.dxf ");
    EXPECT_EQ(tree()->SelectedFolder(), folder.Bytes());
    EXPECT_EQ(TarnelData().PreviousDirectories.size(), 3U);
    EXPECT_EQ(TarnelData().PreviousDirectories.front(), folder.Bytes());
    clickLink("places", QStringLiteral("previous"), QStringLiteral("Cancel"), true);
    EXPECT_EQ(TarnelData().PreviousDirectories.front(), folder.Bytes());
}

TEST_F(FilesTabTest, DesktopAndFavoritesByTheStrip) {
    QDir().mkpath(QString::fromUtf8(DesktopFolder()));
    open();
    clickLink("places", QStringLiteral("desktop"));
    EXPECT_EQ(tree()->SelectedFolder(), DesktopFolder());
    EXPECT_EQ(rows(files()), "");
    tree()->SelectPath(folder.Bytes(), BrowseTree::Announce);
    settle();
    clickLink("places", QStringLiteral("fav"));
    EXPECT_EQ(rows(files()), "") << "no folder, no files";
    EXPECT_EQ(TarnelData().PreviousDirectories.front(), folder.Bytes()) << "and nothing to go back to";
    tab->FollowLink(QStringLiteral("AddAll"), {});
    EXPECT_EQ(balloon(), "Add File: You have not selected a file to add.") << "names in any case";
    tab->FollowLink(QStringLiteral("nothing"), {});
    EXPECT_EQ(balloon(), "");
}

TEST_F(FilesTabTest, FilterAccepted) {
    ASSERT_EQ(chmod(folder.Bytes("a.dwg").constData(), 0444), 0);
    open();
    EXPECT_EQ(rows(files()), "B.dwg c.dxf ");
    withFilter([](FilterDlg& dialog) {
        check(dialog, "useFilter", true);
        check(dialog, "includeReadOnly", true);
        check(dialog, "recurse", true);
        type(dialog, QStringLiteral("*.DWG,*.Txt"));
        EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), QStringLiteral("*.dwg,*.txt"));
        endDialog(dialog, "ok");
    });
    press("filter");
    EXPECT_EQ(rows(files()), "a.dwg B.dwg notes.txt d.dwg ");
    EXPECT_EQ(title(), QStringLiteral("Files (*.dwg,*.txt)"));
    const CTarnelData& data = TarnelData();
    EXPECT_TRUE(data.UseFilter == 1 && data.IncludeReadOnly == 1 && data.Recurse == 1);
}

TEST_F(FilesTabTest, FilterCancelledAndBlank) {
    TarnelData().Filter = QStringLiteral("*.txt");
    open();
    withFilter([](FilterDlg& dialog) {
        check(dialog, "useFilter", true);
        check(dialog, "recurse", true);
        type(dialog, {});
        endDialog(dialog, "ok");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(balloon(), "Filter: You cannot have a blank filter.\nUse *.* to specify all files.");
        endDialog(dialog, "cancel");
    });
    press("filter");
    const CTarnelData& data = TarnelData();
    EXPECT_TRUE(data.UseFilter == 0 && data.Recurse == 0);
    EXPECT_EQ(data.Filter, QStringLiteral("*.txt"));
    EXPECT_EQ(title(), QStringLiteral("Drawing Files"));
    withFilter([](FilterDlg& dialog) {
        type(dialog, {});
        endDialog(dialog, "ok");
        EXPECT_FALSE(dialog.isVisible()) << "a filter that is not used may be blank";
    });
    press("filter");
    EXPECT_EQ(rows(files()), "a.dwg B.dwg c.dxf ");
}

TEST_F(FilesTabTest, AFileComesUpWhenTheSettingSaysSo) {
    for (const bool refresh : {false, true}) {
        TarnelData().DoDirRefresh = refresh;
        open();
        const int chosen = files()->RowCount() - 2;
        click(files(), chosen);
        folder.Write(refresh ? "aa.dxf" : "ab.dxf");
        if (!refresh) {
            QTest::qWait(500);
            EXPECT_EQ(rows(files()), "a.dwg B.dwg* c.dxf ");
        } else {
            const auto shown = [&] { return rows(files()) == "a.dwg aa.dxf ab.dxf B.dwg* c.dxf "; };
            EXPECT_TRUE(QTest::qWaitFor(shown, 5000)) << rows(files());
            folder.Remove("aa.dxf");
            folder.Remove("B.dwg");
            EXPECT_TRUE(QTest::qWaitFor([&] { return rows(files()) == "a.dwg ab.dxf c.dxf "; }, 5000))
                << rows(files());
        }
    }
}

TEST_F(FilesTabTest, EscBreaksTheReadingOff) {
    for (int i = 0; i < 5000; ++i) {
        folder.Write("many/" + std::to_string(i) + ".dxf", {});
    }
    TarnelData().Recurse = 1;
    open();
    tree()->SelectPath(folder.Bytes("many"), BrowseTree::Announce);
    files()->setFocus();
    // However far it has come: what has been found stays, in order, and the page goes on working.
    QTest::keyClick(files(), Qt::Key_Escape);
    const int found = files()->RowCount();
    QTest::qWait(50);
    EXPECT_EQ(files()->RowCount(), found);
    tree()->SelectPath(folder.Bytes("sub"), BrowseTree::Announce);
    EXPECT_TRUE(QTest::qWaitFor([&] { return rows(files()) == "d.dwg "; }, 5000));
}

TEST_F(FilesTabTest, ButtonsWithPicturesAlone) {
    open();
    const QRect wide = queue()->geometry();
    auto* add = tab->findChild<CXPStyleButtonST*>(QStringLiteral("add"));
    EXPECT_TRUE(add->toolTip().isEmpty() && add->text() == u"Add");
    TarnelData().FileTabButtonText = false;
    open();
    add = tab->findChild<CXPStyleButtonST*>(QStringLiteral("add"));
    EXPECT_TRUE(add->toolTip() == u"Add" && add->text().isEmpty() && !add->icon().isNull());
    EXPECT_EQ(add->width(), 25);
    EXPECT_LT(queue()->x(), wide.x());
    EXPECT_EQ(queue()->geometry().right(), wide.right());
}

TEST_F(FilesTabTest, ColumnsKeepTheirWidths) {
    open();
    std::array<int, 4> widths = tab->ColumnWidths();
    EXPECT_EQ(widths[2], 0) << "the directory is hidden at first";
    EXPECT_GE(widths[3], 60);
    TarnelData().ColumnWidths = {90, 80, 70, 60};
    tab = std::make_unique<FilesTab>();
    EXPECT_EQ(tab->ColumnWidths(), TarnelData().ColumnWidths);
    tab->resize(1000, 500);
    tab->show();
    settle();
    widths = tab->ColumnWidths();
    EXPECT_EQ(widths[2], 70);
    EXPECT_GT(widths[1], 80) << "the names get what is left";
}

TEST_F(FilesTabTest, OpensWithTheFolderOfLastTime) {
    TarnelData().PreviousDirectories = {folder.Bytes("sub"), folder.Bytes(), "/"};
    open();
    EXPECT_EQ(rows(files()), "d.dwg ");
    const std::deque<QByteArray> expected = {folder.Bytes("sub"), folder.Bytes(), "/"};
    EXPECT_EQ(TarnelData().PreviousDirectories, expected);
}

TEST_F(FilesTabTest, OpensWithoutAHistory) {
    TarnelData().PreviousDirectories.clear();
    open();
    ASSERT_EQ(TarnelData().PreviousDirectories.size(), 1U);
    EXPECT_EQ(TarnelData().PreviousDirectories.front(), QFile::encodeName(QDir::currentPath()));
    TarnelData().PreviousDirectories = {folder.Bytes("gone"), "\x14\x00\x1f not a path"};
    open();
    EXPECT_EQ(rows(files()), "");
}

TEST_F(FilesTabTest, OpensAndClosesWhileFilesComeAndGo) {
    TarnelData().DoDirRefresh = true;
    TarnelData().Recurse = 1;
    for (int i = 0; i < 100; ++i) {
        tab = std::make_unique<FilesTab>();
        tab->show();
        const std::string name = "sub/n" + std::to_string(i % 7) + ".dxf";
        folder.Write(name);
        QCoreApplication::processEvents();
        if (i % 2 == 0) {
            folder.Remove(name);
        }
        QTest::qWait(i % 10 == 0 ? 300 : 1);
    }
}

}  // namespace
