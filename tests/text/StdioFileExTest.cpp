// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/text/TestText.h"
#include "text/StdioFileEx.h"

#include <QStringList>

namespace {

QStringList linesOf(const QString& path, std::uint32_t flags, int page) {
    CStdioFileEx file;
    file.TextPage = page;
    EXPECT_TRUE(file.Open(path, flags));
    QStringList lines;
    QString line;
    while (file.ReadString(line)) {
        lines += line;
    }
    return lines;
}

class StdioFileEx : public testing::Test {
  protected:
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("t.txt"));
};

TEST_F(StdioFileEx, CutsEachKindOfLineEnd) {
    WriteBytes(path, "abc\r\nde\n\nlone\rcr\r\n\r\nlast");
    EXPECT_EQ(linesOf(path, CStdioFileEx::modeRead, 1252),
              QStringList({"abc", "de", "", "lone\rcr", "", "last"}));
}

TEST_F(StdioFileEx, LongLinesComeInPiecesOfWholeCharacters) {
    const QString longLine = QString(4094, u'x') + QString::fromUtf8("€uro");
    WriteBytes(path, longLine.toUtf8() + "\nnext\n");
    const QStringList lines = linesOf(path, CStdioFileEx::modeRead, 65001);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0].size(), 4094);
    EXPECT_EQ(lines[0] + lines[1], longLine);
    EXPECT_EQ(lines[2], QStringLiteral("next"));
}

TEST_F(StdioFileEx, WideFilesNeedTheTextFlag) {
    WriteBytes(path, QByteArray("\xFF\xFE"
                                "a\0\xAC\x20\r\0\n\0"
                                "b\0",
                                12));
    EXPECT_EQ(linesOf(path, CStdioFileEx::typeText, -1), QStringList({QString::fromUtf8("a€"), "b"}));
    EXPECT_TRUE(linesOf(path, CStdioFileEx::modeRead, 1252)[0].startsWith(QString::fromUtf8("ÿþa")));

    CStdioFileEx file;
    ASSERT_TRUE(
        file.Open(path, CStdioFileEx::modeCreate | CStdioFileEx::modeWrite | CStdioFileEx::WriteWideFlag));
    EXPECT_TRUE(file.WriteString(u"x\n") && file.WriteString(u"y") && file.Close());
    EXPECT_EQ(ReadBytes(path), QByteArray("\xFF\xFEx\0\n\0y\0", 8));
}

TEST_F(StdioFileEx, WritesThePageAndMarksWhatItLacks) {
    CStdioFileEx file;
    file.TextPage = 1252;
    ASSERT_TRUE(file.Open(path, CStdioFileEx::modeCreate | CStdioFileEx::modeWrite));
    // A decomposed accent is composed first; what the page lacks is one "#", a surrogate pair included.
    EXPECT_TRUE(file.WriteString(QString::fromUtf8("é e\xCC\x81 中 😀\n")));
    // One line end each, also when CR and LF come in two calls.
    EXPECT_TRUE(file.WriteString(u"a\r\nb\r") && file.WriteString(u"\nc"));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadBytes(path), QByteArray("\xE9 \xE9 # #\r\na\r\nb\r\nc"));
}

TEST_F(StdioFileEx, TellsWhyItFails) {
    CStdioFileEx file;
    QString error;
    EXPECT_FALSE(file.Open(folder.filePath(QStringLiteral("none")), CStdioFileEx::modeRead, &error));
    EXPECT_EQ(Plain(error), "No such file or directory");
    QString line = QStringLiteral("kept");
    EXPECT_FALSE(file.ReadString(line));
    EXPECT_EQ(Plain(line), "kept");
    ASSERT_TRUE(file.Open(QStringLiteral("/dev/full"), CStdioFileEx::modeWrite));
    EXPECT_FALSE(file.WriteString(u"x") && file.Close());
    EXPECT_EQ(Plain(file.Error()), "No space left on device");
}

}  // namespace
