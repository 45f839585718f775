// SPDX-License-Identifier: GPL-3.0-or-later
// The order of the queue and the choice of the next drawing.
#include "engine/FilePicker.h"
#include "engine/LockMarker.h"
#include "engine/record/FileQueue.h"
#include "engine/RunState.h"
#include "tests/engine/RunFixture.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <QFile>
#include <QSysInfo>

namespace {

QString order(CTarnelData& data, int sortIdx, int reverse) {
    data.SortIdx = sortIdx;
    data.SortReverse = reverse;
    BuildFileOrder(data);
    QString text;
    for (const std::uint32_t entry : data.FileOrder) {
        text += QString::number(entry);
    }
    return text;
}

}  // namespace

TEST_F(RunTest, QueueIsSortedByEachKeyBothWays) {
    CTarnelData& data = TarnelData();
    for (const char* path : {"/b/One.dxf", "/A/two.dxf", "/a/one.dxf", "/C/Two.dxf"}) {
        AppendEntry(data, QString::fromLatin1(path));
    }
    data.FileStatus[0] = Error;
    data.FileStatus[3] = Done;
    EXPECT_EQ(order(data, 6, 0), "0123");
    EXPECT_EQ(order(data, 6, 1), "3210");
    EXPECT_EQ(order(data, 0, 0), "2013");
    EXPECT_EQ(order(data, 1, 0), "2013");
    EXPECT_EQ(order(data, 2, 0), "2103");
    EXPECT_EQ(order(data, 3, 0), "2103");
    EXPECT_EQ(order(data, 4, 0), "2130");
    EXPECT_EQ(order(data, 5, 0), "2130");
    EXPECT_EQ(order(data, 0, 1), "3102");
    EXPECT_EQ(order(data, 5, 1), "0312");
}

TEST_F(RunTest, EntriesKeepTheirFolderWithoutSeparators) {
    CTarnelData& data = TarnelData();
    for (const char* path : {"/w//a.dxf", "/root.dxf", "C:\\w\\b.dwg", "plain.dxf"}) {
        AppendEntry(data, QString::fromLatin1(path));
    }
    EXPECT_EQ(data.FileDirs[0], "/w");
    EXPECT_EQ(EntryPath(data, 1), "/root.dxf");
    EXPECT_EQ(data.FileDirs[2], "C:\\w");
    EXPECT_EQ(EntryPath(data, 2), "C:\\w\\b.dwg");
    EXPECT_EQ(EntryPath(data, 3), "plain.dxf");
}

TEST_F(RunTest, DrawingsThatOthersHoldAreLockedOrReadOnly) {
    const QString readOnly = MakeFile("ro.DXF");
    chmod(QFile::encodeName(readOnly).constData(), 0444);
    const QString inUse = MakeFile("inuse.dwg");
    const int handle = open(QFile::encodeName(inUse).constData(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(handle, LOCK_EX), 0);
    const QString marked = MakeFile("marked.1.dxf");
    MakeFile("marked.1.dwk");
    const QString inUseToo = Folder() + "/inuse.link.Dxf";
    ASSERT_EQ(symlink(QFile::encodeName(inUse).constData(), QFile::encodeName(inUseToo).constData()), 0);
    const QString free = MakeFile("free.dwg");
    CTarnelData& data = TarnelData();
    for (const QString& path : {readOnly, inUse, marked, inUseToo, free}) {
        AppendEntry(data, path);
    }
    QString picked;
    MarkTrace();
    ASSERT_TRUE(GetNextFile(picked));
    EXPECT_EQ(picked, free);
    EXPECT_EQ(data.CurrentFile, 4);
    EXPECT_FALSE(data.OpenReadOnly);
    EXPECT_EQ(std::vector<std::uint32_t>(data.FileStatus.begin(), data.FileStatus.end()),
              (std::vector<std::uint32_t>{Locked, Locked, Locked, Locked, ToDo}));
    EXPECT_EQ(TraceLines().filter("Could not open").size(), 3);
    EXPECT_EQ(TraceLines().filter("Lock file found").size(), 1);

    // Read-only processing takes them one by one, and the flag never leaks to the next.
    data.ProcessReadOnly = true;
    for (std::size_t i = 0; i < 5; ++i) {
        for (std::size_t k = 0; k < 5; ++k) {
            data.FileStatus[k] = k < i ? Done : ToDo;
        }
        ASSERT_TRUE(GetNextFile(picked));
        EXPECT_EQ(picked, EntryPath(data, i));
        EXPECT_EQ(data.OpenReadOnly, i < 4) << i;
    }
    close(handle);
}

TEST_F(RunTest, MarkersThatNobodyMeansHoldNothingUp) {
    const auto mark = [&](const QByteArray& text) {
        QFile marker(MakeFile("a.dwk"));
        EXPECT_TRUE(marker.open(QIODevice::WriteOnly | QIODevice::Truncate));
        marker.write(text);
        marker.close();
        return HasLockMarker(Folder() + "/a.dxf");
    };
    const QByteArray here = "drafthost\n" + QSysInfo::machineHostName().toUtf8() + '\n';
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    siginfo_t ended{};
    ASSERT_EQ(waitid(P_PID, id_t(child), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(mark(here + QByteArray::number(child) + "\n1\n")) << "killed, and not asked for yet";
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_FALSE(mark(here + QByteArray::number(child) + "\n1\n"));
    EXPECT_FALSE(mark(here + QByteArray::number(getpid()) + "\n1\n")) << "this host's own";
    EXPECT_FALSE(mark(here + "1\n99999999999\n")) << "a process of the same number, started later";
    EXPECT_TRUE(mark("drafthost\nelsewhere\n" + QByteArray::number(child) + "\n1\n"));
    EXPECT_TRUE(mark("somebody\n"));
    EXPECT_TRUE(mark(""));
}

TEST_F(RunTest, WhatIsNoFileIsLeftToTheHostToRefuse) {
    const QString pipe = Folder() + "/pipe.dxf";
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString& path : {Folder() + "/missing.dwg", Folder() + "/missing.DXF", pipe}) {
        CTarnelData& data = TarnelData();
        data.FileNames.clear();
        data.FileDirs.clear();
        data.FileStatus.clear();
        data.FileOrder.clear();
        AppendEntry(data, path);
        QString picked;
        ASSERT_TRUE(GetNextFile(picked)) << path.toStdString();
        EXPECT_EQ(picked, path);
        EXPECT_FALSE(data.OpenReadOnly);
    }
}

TEST_F(RunTest, OnlyDrawingsThatAreEditedAreTested) {
    const QString standards = MakeFile("ro.DWS");
    chmod(QFile::encodeName(standards).constData(), 0444);
    CTarnelData& data = TarnelData();
    for (const QString& path : {standards, Folder() + "/missing.dwt", Folder() + "/missing.dwg"}) {
        AppendEntry(data, path);
    }
    QString picked;
    MarkTrace();
    data.OpenReadOnly = true;
    ASSERT_TRUE(GetNextFile(picked));
    EXPECT_EQ(data.CurrentFile, 0);
    EXPECT_FALSE(data.OpenReadOnly);
    data.FileStatus[0] = Done;
    ASSERT_TRUE(GetNextFile(picked));
    EXPECT_EQ(data.CurrentFile, 1);
    data.FileStatus[1] = Done;
    data.RecoverMode = true;
    ASSERT_TRUE(GetNextFile(picked));
    EXPECT_EQ(data.CurrentFile, 2);
    EXPECT_TRUE(TraceLines().isEmpty());
    data.FileStatus[2] = Done;
    EXPECT_FALSE(GetNextFile(picked));
    EXPECT_EQ(data.CurrentFile, -1);
}

TEST_F(RunTest, StatusWithoutAFileInWorkChangesAndSavesNothing) {
    SetQueue({MakeFile("a.dxf")});
    QFile::remove(DataPath("TarnelRunner.xml"));
    SetCurrentFileStatus(Done);
    EXPECT_EQ(TarnelData().FileStatus[0], ToDo);
    EXPECT_FALSE(QFile::exists(DataPath("TarnelRunner.xml")));
}
