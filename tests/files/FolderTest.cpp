// SPDX-License-Identifier: GPL-3.0-or-later
// Folders on disk: what is listed of them, links, places, and the tree.
#include "files/BrowseTree.h"
#include "files/FolderLinks.h"
#include "files/FolderListing.h"
#include "files/FolderPlaces.h"
#include "files/SlowJob.h"
#include "tests/files/Folder.h"

#include <sys/stat.h>
#include <QSignalSpy>
#include <QTest>

namespace {

class FolderTest : public ::testing::Test {
  protected:
    /// What is listed, relative to the folder and with "@" behind links.
    std::string list(const char* mask, bool recurse = false, bool readOnly = false) const {
        std::string all;
        const ListRequest request{folder.Path(), QString::fromUtf8(mask), recurse, readOnly};
        ListFolder(
            request, [] { return false; },
            [&](const FoundFiles& files) {
                for (std::size_t i = 0; i < files.Paths.size(); ++i) {
                    all += files.Paths[i].mid(folder.Path().size() + 1).toStdString() +
                           (files.IsLink[i] != 0 ? "@ " : " ");
                }
            });
        return all;
    }
    Folder folder;
};

TEST_F(FolderTest, FilesByMask) {
    for (const char* name : {"b.dxf", "A.DWG", "c.txt", ".hidden.dxf", "._b.dxf", "d.dwg", "e.lnk"}) {
        folder.Write(name);
    }
    folder.Make("sub.dwg");
    EXPECT_EQ(list("*.dwg,*.dxf"), "A.DWG b.dxf d.dwg ") << "names are lowered, folders pass";
    EXPECT_EQ(list("*.DWG"), "") << "the mask is not lowered";
    EXPECT_EQ(list("*.*"), "A.DWG b.dxf c.txt d.dwg ") << "a link is never a file";
    EXPECT_EQ(chmod(folder.Bytes("d.dwg").constData(), 0444), 0);
    EXPECT_EQ(list("*.dwg"), "A.DWG ");
    EXPECT_EQ(list("*.dwg", false, true), "A.DWG d.dwg ");
}

TEST_F(FolderTest, FoldersBelowInTheOrderOfThePaths) {
    for (const char* name :
         {"a/z.dxf", "a b.dxf", "a.dxf", "A/c.dxf", "b.dxf", "a/deep/y.dxf", ".git/x.dxf"}) {
        folder.Write(name);
    }
    folder.Link(".", "a/round");
    EXPECT_EQ(list("*.dxf"), "a b.dxf a.dxf b.dxf ");
    const std::string all = list("*.dxf", true);
    EXPECT_EQ(all, "a b.dxf a.dxf A/c.dxf a/deep/y.dxf a/round@ a/z.dxf b.dxf ");
}

TEST_F(FolderTest, LinksToFoldersAreListedWhateverTheMask) {
    folder.Make("target/below");
    folder.Write("plan.dxf");
    folder.Link("target", "near");
    folder.Link("near", "far");
    folder.Link("missing", "broken");
    folder.Link("loop2", "loop1");
    folder.Link("loop1", "loop2");
    folder.Link("plan.dxf", "same.dxf");
    const QByteArray url = "file://" + folder.Bytes("target/below");
    folder.Write("by url.desktop", "[Desktop Entry]\nType=Link\nName=x\nURL=" + url + "\n");
    folder.Write("by path.desktop",
                 "[Desktop Entry]\r\nType=Directory\r\nPath=" + folder.Bytes("target") + "\r\n");
    folder.Write("chain.desktop", "[Desktop Entry]\nType=Link\nURL=" + folder.Bytes("by url.desktop") + "\n");
    folder.Write("self.desktop", "[Desktop Entry]\nType=Link\nURL=" + folder.Bytes("self.desktop") + "\n");
    folder.Write("to file.desktop", "[Desktop Entry]\nType=Link\nURL=" + folder.Bytes("plan.dxf") + "\n");
    folder.Write("web.desktop", "[Desktop Entry]\nType=Link\nURL=https://example.org/\n");
    folder.Write("other host.desktop", "[Desktop Entry]\nType=Link\nURL=file://elsewhere/tmp\n");
    folder.Write("program.desktop", "[Desktop Entry]\nType=Application\nPath=/tmp\n");
    folder.Write("late.desktop", "[Other]\nType=Link\nURL=/tmp\n");
    EXPECT_EQ(list("*.dxf"), "by path.desktop@ by url.desktop@ chain.desktop@ far@ near@ plan.dxf same.dxf ");
    const QByteArray target = QFile::encodeName(QFileInfo(folder.Path("target")).canonicalFilePath());
    EXPECT_EQ(FolderOfLink(folder.Bytes("far")), target) << "no link is left in the path";
    EXPECT_EQ(FolderOfLink(folder.Bytes("chain.desktop")), target + "/below");
    for (const char* nothing : {"loop1", "broken", "self.desktop", "plan.dxf", "web.desktop", "gone"}) {
        EXPECT_EQ(FolderOfLink(folder.Bytes(nothing)), QByteArray()) << nothing;
    }
}

TEST_F(FolderTest, WhatCannotBeReadIsEmpty) {
    bool any = false;
    ListFolder(
        {folder.Path("missing"), QStringLiteral("*.*"), true, true}, [] { return false; },
        [&](const FoundFiles&) { any = true; });
    EXPECT_FALSE(any);
}

TEST_F(FolderTest, FavoritesFromEveryDesktop) {
    const QByteArray home = QFile::encodeName(QDir::homePath());
    const auto write = [](const QString& name, const QByteArray& content) {
        const QString path = QDir::home().filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    write(
        QStringLiteral(".config/user-dirs.dirs"),
        "# comment\nXDG_DOCUMENTS_DIR=\"$HOME/My Papers\"\nXDG_MUSIC_DIR=\"$HOME/\"\nXDG_DESKTOP_DIR=\"$HOME/"
        "Desktop\"\nXDG_VIDEOS_DIR=\"/data/films\"\n");
    write(QStringLiteral(".config/gtk-3.0/bookmarks"),
          "file:///srv/plans%20old Old plans\nsftp://host/x\nfile:///srv/new\nfile:///data/films/\n\n");
    write(QStringLiteral(".local/share/user-places.xbel"),
          "<?xml version=\"1.0\"?><xbel><bookmark href=\"file:///srv/kde\"><title>KDE &amp; "
          "co</title></bookmark>"
          "<bookmark href=\"remote:/\"><title>Network</title></bookmark><bookmark "
          "href=\"file:///srv/untitled\"/></xbel>");
    std::string all;
    for (const FolderPlace& place : FavoritePlaces()) {
        all += place.Path.toStdString() + '=' + place.Title.toStdString() + '\n';
    }
    EXPECT_EQ(all, home.toStdString() +
                       "/My Papers=My Papers\n/data/films=films\n/srv/plans old=Old plans\n/srv/new=new\n"
                       "/srv/kde=KDE & co\n/srv/untitled=untitled\n");
    const std::vector<FolderPlace> computer = ComputerPlaces();
    EXPECT_EQ(computer.front().Path, home);
    EXPECT_EQ(computer.back().Path, "/");
    QFile::remove(QDir::home().filePath(QStringLiteral(".config/user-dirs.dirs")));
    QFile::remove(QDir::home().filePath(QStringLiteral(".config/gtk-3.0/bookmarks")));
    QFile::remove(QDir::home().filePath(QStringLiteral(".local/share/user-places.xbel")));
}

class BrowseTreeTest : public FolderTest {
  protected:
    BrowseTreeTest() : spy(&tree, &BrowseTree::FolderSelected) {
        tree.resize(300, 400);
        tree.show();
        tree.StartBuild();
    }
    bool selects(const QByteArray& path, BrowseTree::Hows how = BrowseTree::Announce) {
        tree.SelectPath(path, how);
        return QTest::qWaitFor([&] { return tree.SelectedFolder() == path; }, 3000);
    }
    BrowseTree tree;
    QSignalSpy spy;
};

TEST_F(BrowseTreeTest, FoldersAreFoundAnnouncedAndShown) {
    folder.Make("one/Two/three");
    folder.Make("one/alpha");
    EXPECT_TRUE(selects(folder.Bytes("one/Two")));
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(spy[0][0].toByteArray(), folder.Bytes("one/Two"));
    const QModelIndex two = tree.currentIndex();
    EXPECT_EQ(two.row(), 1) << "by name without regard to case";
    EXPECT_TRUE(tree.isExpanded(two.parent()));
    EXPECT_FALSE(tree.isExpanded(two));
    EXPECT_TRUE(tree.viewport()->rect().intersects(tree.visualRect(two)));
    EXPECT_TRUE(selects(folder.Bytes("one"), BrowseTree::Hows(BrowseTree::Silent) | BrowseTree::Expand));
    EXPECT_EQ(spy.size(), 1) << "silently";
    EXPECT_TRUE(tree.isExpanded(tree.currentIndex()));
    EXPECT_FALSE(selects(folder.Bytes("one/missing")));
    EXPECT_EQ(tree.SelectedFolder(), folder.Bytes("one")) << "what is not there changes nothing";
    EXPECT_TRUE(selects(folder.Bytes("one/Two/three")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !tree.model()->hasChildren(tree.currentIndex()); }, 3000))
        << "no button without folders";
}

TEST_F(BrowseTreeTest, HiddenFoldersOnlyOnTheWay) {
    folder.Make("one/.secret/in");
    folder.Make("one/.other");
    folder.Make("one/open");
    EXPECT_TRUE(selects(folder.Bytes("one/open")));
    const QPersistentModelIndex one = tree.currentIndex().parent();
    EXPECT_EQ(tree.model()->rowCount(one), 1);
    EXPECT_TRUE(selects(folder.Bytes("one/.secret/in")));
    EXPECT_EQ(tree.model()->rowCount(one), 2);
    EXPECT_TRUE(selects(folder.Bytes("one/.other")));
    EXPECT_EQ(tree.model()->rowCount(one), 3);
}

TEST_F(BrowseTreeTest, DesktopAndFavorites) {
    tree.SelectDesktop();
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(spy[0][0].toByteArray(), DesktopFolder());
    tree.SelectFavorites();
    ASSERT_EQ(spy.size(), 2);
    EXPECT_EQ(spy[1][0].toByteArray(), QByteArray()) << "they are no folder";
    EXPECT_TRUE(selects(QFile::encodeName(QDir::homePath())));
    EXPECT_EQ(tree.currentIndex().parent().data().toString(), QStringLiteral("Desktop"));
    EXPECT_TRUE(selects("/"));
}

TEST_F(BrowseTreeTest, KeysWalkAndOpen) {
    folder.Make("one/two/three");
    ASSERT_TRUE(selects(folder.Bytes("one")));
    tree.setFocus();
    QTest::keyClick(&tree, Qt::Key_Return);
    EXPECT_TRUE(tree.isExpanded(tree.currentIndex()));
    QTest::keyClick(&tree, Qt::Key_Down);
    EXPECT_EQ(tree.SelectedFolder(), folder.Bytes("one/two"));
    QTest::keyClick(&tree, Qt::Key_Return);
    QTest::keyClick(&tree, Qt::Key_Return);
    EXPECT_FALSE(tree.isExpanded(tree.currentIndex()));
}

TEST(SlowJobTest, NothingComesAfterTheBreak) {
    int deliveries = 0;
    int ends = 0;
    {
        SlowJob job;
        job.Start(
            [&](SlowJob::Channel& channel) {
                for (int i = 0; i < 10; ++i) {
                    channel.Deliver([&] { ++deliveries; });
                }
            },
            [&] { ++ends; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return !job.IsRunning(); }, 3000));
        EXPECT_EQ(deliveries, 10);
        EXPECT_EQ(ends, 1);
        job.Start([&](SlowJob::Channel& channel) { channel.Deliver([&] { deliveries = 1000; }); },
                  [&] { ++ends; });
        job.BreakOff();
        QTest::qWait(50);
        // The same while a delivery is at work.
        job.Start(
            [&](SlowJob::Channel& channel) {
                channel.Deliver([&] { job.BreakOff(); });
                channel.Deliver([&] { deliveries = 1000; });
            },
            [&] { ++ends; });
        job.WaitFor(500);
        QTest::qWait(50);
        job.Start(
            [](SlowJob::Channel& channel) {
                while (!channel.Stopped()) {
                    QTest::qSleep(1);
                }
            },
            [&] { ++ends; });
        job.WaitFor(5);
        EXPECT_TRUE(job.IsRunning()) << "nobody waits for it";
    }
    QTest::qWait(20);
    EXPECT_EQ(deliveries, 10);
    EXPECT_EQ(ends, 1);
}

}  // namespace
