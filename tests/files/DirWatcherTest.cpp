// SPDX-License-Identifier: GPL-3.0-or-later
// The watcher on real folders: what counts as a change, what does not, and how often it is told.
#include "files/DirWatcher.h"
#include "log/Trace.h"
#include "tests/files/Folder.h"

#include <gtest/gtest.h>
#include <QSignalSpy>
#include <QTest>

namespace {

class DirWatcherTest : public ::testing::Test {
  protected:
    DirWatcherTest() : spy(&watcher, &DirWatcher::Changed) {}

    void watch(const QString& path, bool subtree, bool folders) {
        watcher.SetPaused(true);
        watcher.SetDirectory(path);
        watcher.SetWatchSubtree(subtree);
        watcher.SetWatchDirs(folders);
        watcher.SetPaused(false);
        quiet();
    }
    /// True when a change is told.
    bool told() {
        const bool came = !spy.isEmpty() || spy.wait(3000);
        quiet();
        return came;
    }
    /// True when nothing is told in a time in which it would have been.
    bool silent() {
        QTest::qWait(600);
        const bool none = spy.isEmpty();
        spy.clear();
        return none;
    }
    void quiet() {
        while (spy.wait(400)) {
        }
        spy.clear();
    }

    Folder folder;
    DirWatcher watcher;
    QSignalSpy spy;
};

TEST_F(DirWatcherTest, FilesComeGoAndAreReplaced) {
    watch(folder.Path() + QStringLiteral("//"), false, false);
    EXPECT_EQ(watcher.Directory(), folder.Path()) << "separators at the end go";
    folder.Write("a.dxf");
    EXPECT_TRUE(told());
    folder.Rename("a.dxf", "b.dxf");
    EXPECT_TRUE(told());
    folder.Write("c.tmp");
    folder.Rename("c.tmp", "b.dxf");
    EXPECT_TRUE(told()) << "a file that is replaced";
    folder.Remove("b.dxf");
    EXPECT_TRUE(told());
    folder.Make("new");
    EXPECT_TRUE(silent()) << "names of folders do not count";
    folder.Write("new/x.dxf");
    EXPECT_TRUE(silent()) << "nor what lies below";
}

TEST_F(DirWatcherTest, FolderNamesCountWhenTheyAreWatched) {
    watch(folder.Path(), false, true);
    folder.Make("new");
    EXPECT_TRUE(told());
}

TEST_F(DirWatcherTest, EverythingBelowAlsoWhatComesLater) {
    folder.Make("one/two");
    watch(folder.Path(), true, false);
    folder.Write("one/two/a.dxf");
    EXPECT_TRUE(told());
    folder.Make("one/three/four");
    quiet();
    folder.Write("one/three/four/b.dxf");
    EXPECT_TRUE(told()) << "a folder made meanwhile is watched";
    folder.Make("fast/deep");
    folder.Write("fast/deep/c.dxf");
    EXPECT_TRUE(told()) << "files of a folder that was filled before it could be watched";
    const Folder outside;
    outside.Make("moved");
    outside.Write("moved/d.dxf");
    ASSERT_TRUE(QFile::rename(outside.Path("moved"), folder.Path("moved")));
    EXPECT_TRUE(told()) << "a folder that comes with files in it";
    ASSERT_TRUE(QFile::rename(folder.Path("one"), outside.Path("one")));
    EXPECT_TRUE(told()) << "its files have gone";
    outside.Write("one/two/e.dxf");
    EXPECT_TRUE(silent()) << "what has left the tree is not watched";
}

TEST_F(DirWatcherTest, BeyondTheLimitTheRestIsWatchedAndItIsToldOnce) {
    const Folder logs;
    const QString trace = BeginTrace(logs.Path(), QStringLiteral("3.0.0"));
    for (const char* name : {"one/a", "two/b", "three/c"}) {
        folder.Make(name);
    }
    watcher.SetMostFolders(3);
    watch(folder.Path(), true, false);
    folder.Write("here.dxf");
    EXPECT_TRUE(told()) << "what fits under the limit is watched";
    folder.Make("four");
    watch(folder.Path(), true, false);
    QFile log(trace);
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QByteArray text = log.readAll();
    EXPECT_EQ(text.count("The system's limit of watched folders is reached; not watched from here on: " +
                         folder.Bytes() + '/'),
              1)
        << text.toStdString();
}

TEST_F(DirWatcherTest, PausedAndElsewhereNothingIsTold) {
    watch(folder.Path(), false, false);
    watcher.SetPaused(true);
    folder.Write("a.dxf");
    EXPECT_TRUE(silent());
    watcher.SetPaused(false);
    EXPECT_TRUE(silent()) << "what came up in the pause is not told afterwards";
    folder.Write("b.dxf");
    EXPECT_TRUE(told());
    const Folder other;
    watcher.SetDirectory(other.Path());
    folder.Write("c.dxf");
    EXPECT_TRUE(silent());
    other.Write("d.dxf");
    EXPECT_TRUE(told());
    watcher.SetDirectory(other.Path("missing"));
    other.Write("e.dxf");
    EXPECT_TRUE(silent());
    watcher.SetDirectory({});
    EXPECT_TRUE(silent());
}

TEST_F(DirWatcherTest, ManyChangesAreToldAFewTimes) {
    watch(folder.Path(), true, true);
    for (int i = 0; i < 10000; ++i) {
        folder.Write(i % 100 == 0 ? "d/" + std::to_string(i) : std::to_string(i) + ".dxf");
        if (i % 500 == 0) {
            QCoreApplication::processEvents();
        }
    }
    int count = 0;
    while (spy.wait(800)) {
    }
    count = static_cast<int>(spy.size());
    EXPECT_GE(count, 1);
    EXPECT_LE(count, 50) << "a few a second, however long the making took";
}

TEST_F(DirWatcherTest, TheEndOfTheFolderItself) {
    folder.Make("gone");
    watch(folder.Path("gone"), false, false);
    ASSERT_TRUE(QDir(folder.Path("gone")).removeRecursively());
    EXPECT_TRUE(told());
}

TEST_F(DirWatcherTest, GoesAtAnyMoment) {
    for (int i = 0; i < 60; ++i) {
        folder.Make("t" + std::to_string(i) + "/a/b/c");
    }
    for (int i = 0; i < 50; ++i) {
        DirWatcher one;
        one.SetWatchSubtree(true);
        one.SetDirectory(folder.Path());
        folder.Write("f" + std::to_string(i));
        if (i % 3 == 0) {
            QCoreApplication::processEvents();
        }
        one.SetPaused(i % 2 == 0);
    }
}

}  // namespace
