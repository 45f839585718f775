// SPDX-License-Identifier: GPL-3.0-or-later
// What is done to the queue before a run, on values.
#include "engine/record/FileQueue.h"
#include "files/QueueEdit.h"

#include <gtest/gtest.h>

namespace {

class QueueEditTest : public ::testing::Test {
  protected:
    void add(const char* path, std::uint32_t status = ToDo) {
        AppendEntry(data, QString::fromUtf8(path));
        data.FileStatus[data.FileStatus.size() - 1] = status;
    }
    /// Names in the order of the entries, with their status numbers.
    std::string entries() const {
        std::string all;
        for (std::size_t i = 0; i < data.FileNames.size(); ++i) {
            all += EntryPath(data, i).toStdString() + ':' + std::to_string(EntryStatus(data, i)) + ' ';
        }
        return all;
    }
    void fill(int count) {
        for (int i = 0; i < count; ++i) {
            add(("/d/" + std::string(1, static_cast<char>('a' + i))).c_str());
        }
    }
    std::string names() const {
        std::string all;
        for (const QString& name : data.FileNames) {
            all += name.toStdString();
        }
        return all;
    }

    CTarnelData data;
};

TEST_F(QueueEditTest, AFileIsThereOnce) {
    add("/d/a.dwg", Done);
    add("/a.dwg", Locked);
    add("C:\\d\\a.dwg", Timeout);
    // As lists from elsewhere bring it: with a separator at the end of the directory.
    data.FileDirs[0] = QStringLiteral("/d/");
    AddToQueue(data, {QStringLiteral("/d/a.dwg"), QStringLiteral("/d/b.dwg"), QStringLiteral("/d/b.dwg"),
                      QStringLiteral("/d/A.dwg"), QStringLiteral("/a.dwg"), QStringLiteral("C:\\d\\a.dwg"),
                      QStringLiteral("a.dwg")});
    EXPECT_EQ(entries(), "/d/a.dwg:1 /a.dwg:4 C:\\d\\a.dwg:3 /d/b.dwg:0 /d/A.dwg:0 a.dwg:0 ");
    EXPECT_EQ(data.FileDirs[3], QStringLiteral("/d/")) << "the separator stays";
}

TEST_F(QueueEditTest, AnOldGroupWithoutStatusesStaysUsable) {
    add("/d/a.dwg");
    add("/d/b.dwg");
    data.FileStatus.erase(1);
    AddToQueue(data, {QStringLiteral("/d/c.dwg")});
    EXPECT_EQ(entries(), "/d/a.dwg:0 /d/b.dwg:5 /d/c.dwg:0 ");
    data.FileStatus.erase(2);
    data.FileStatus.erase(1);
    RemoveFromQueue(data, {0});
    EXPECT_EQ(entries(), "/d/b.dwg:5 /d/c.dwg:5 ");
}

TEST_F(QueueEditTest, RemovingTakesAllThreeArrays) {
    fill(6);
    SetStatusOfEntries(data, {1, 4}, Done);
    RemoveFromQueue(data, EntriesOfStatus(data, Done));
    EXPECT_EQ(entries(), "/d/a:0 /d/c:0 /d/d:0 /d/f:0 ");
    RemoveFromQueue(data, {3, 0});
    EXPECT_EQ(names(), "cd");
    EXPECT_THROW(RemoveFromQueue(data, {2}), std::out_of_range);
}

TEST_F(QueueEditTest, TheOrderShownBecomesTheOrderOfTheEntries) {
    add("/d/b.dwg", Done);
    add("/d/a.dwg", Error);
    add("/d/c.dwg", ToDo);
    data.SortIdx = 4;
    BuildFileOrder(data);
    EXPECT_TRUE(FlattenOrder(data));
    EXPECT_EQ(entries(), "/d/c.dwg:0 /d/b.dwg:1 /d/a.dwg:5 ");
    EXPECT_EQ(data.SortIdx, 6);
    EXPECT_FALSE(FlattenOrder(data)) << "a second time there is nothing to tell";
    data.SortReverse = 1;
    BuildFileOrder(data);
    EXPECT_FALSE(FlattenOrder(data)) << "nor for a list that was only backwards";
    EXPECT_EQ(names(), "a.dwgb.dwgc.dwg");
    EXPECT_EQ(data.SortReverse, 0);
}

TEST_F(QueueEditTest, DroppedRowsLandBehindTheRow) {
    fill(6);
    RowRange moved = MoveRows(data, {1, 4}, 2);
    EXPECT_EQ(names(), "acbedf");
    EXPECT_EQ(moved.First, 2);
    EXPECT_EQ(moved.Count, 2);
    moved = MoveRows(data, {0, 1, 2}, 5);
    EXPECT_EQ(names(), "edfacb") << "the last row";
    EXPECT_EQ(moved.First, 3);
    moved = MoveRows(data, {3, 5}, 0);
    EXPECT_EQ(names(), "eabdfc") << "upwards, behind the first";
    EXPECT_EQ(moved.First, 1);
}

TEST_F(QueueEditTest, RowsShiftedByOne) {
    fill(5);
    EXPECT_EQ(ShiftRows(data, {1, 2, 4}, -1), (std::vector<int>{0, 1, 3}));
    EXPECT_EQ(names(), "bcaed");
    EXPECT_EQ(ShiftRows(data, {0, 1, 3}, -1), (std::vector<int>{0, 1, 2})) << "what is at the top stays";
    EXPECT_EQ(names(), "bcead");
    EXPECT_EQ(ShiftRows(data, {2, 4}, 1), (std::vector<int>{3, 4}));
    EXPECT_EQ(names(), "bcaed");
}

TEST_F(QueueEditTest, TheHistoryHoldsTenFoldersEachOnce) {
    for (int i = 0; i < 14; ++i) {
        RememberFolder(data, "/f" + QByteArray::number(i));
    }
    EXPECT_EQ(data.PreviousDirectories.size(), 10U);
    RememberFolder(data, data.PreviousDirectories.back());
    EXPECT_EQ(data.PreviousDirectories.size(), 10U);
    EXPECT_EQ(data.PreviousDirectories.front(), "/f4");
    EXPECT_EQ(data.PreviousDirectories.back(), "/f5");
}

}  // namespace
