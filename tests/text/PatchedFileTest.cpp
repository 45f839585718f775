// SPDX-License-Identifier: GPL-3.0-or-later
// Saves that write over a part of the file must never mistake another's file for their own.
#include "text/PatchedFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <QFile>
#include <QTemporaryDir>

namespace {

class PatchedFileTest : public testing::Test {
  protected:
    QByteArray content() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    ino_t inode() const {
        struct stat status {};
        ::stat(QFile::encodeName(path).constData(), &status);
        return status.st_ino;
    }
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("state.xml"));
};

}  // namespace

TEST_F(PatchedFileTest, WritesOverWhatDiffersWithinOnePage) {
    QByteArray bytes(10000, 'a');
    ASSERT_EQ(WritePatchedFile(path, bytes), 0);
    const ino_t first = inode();
    for (const int at : {0, 4095, 4096, 9999}) {
        bytes[at] = 'b';
        ASSERT_EQ(WritePatchedFile(path, bytes), 0);
        EXPECT_EQ(content(), bytes);
        EXPECT_EQ(inode(), first);
    }
    // Over a page's end, and with another length, the file is made anew.
    bytes[4090] = 'c';
    bytes[4100] = 'c';
    ASSERT_EQ(WritePatchedFile(path, bytes), 0);
    EXPECT_EQ(content(), bytes);
    EXPECT_NE(inode(), first);
    bytes.append('d');
    ASSERT_EQ(WritePatchedFile(path, bytes), 0);
    EXPECT_EQ(content(), bytes);
}

TEST_F(PatchedFileTest, FileThatSomebodyElseChangedIsWrittenWhole) {
    QByteArray bytes(100, 'a');
    ASSERT_EQ(WritePatchedFile(path, bytes), 0);
    QFile other(path);
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    other.write("zzzz");
    other.close();
    // The clock of the file system may be too coarse to tell the two apart.
    const timespec times[2] = {{1000, 0}, {1000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    bytes[50] = 'b';
    ASSERT_EQ(WritePatchedFile(path, bytes), 0);
    EXPECT_EQ(content(), bytes);

    ASSERT_TRUE(QFile::remove(path));
    ASSERT_EQ(WritePatchedFile(path, bytes), 0);
    EXPECT_EQ(content(), bytes);
}
