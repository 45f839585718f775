// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/GroupFile.h"

#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"
#include "tests/text/TestText.h"

#include <QStringList>

namespace {

class GroupFile : public testing::Test {
  protected:
    GroupFile() {
        ResetTarnelData();
        TarnelData().FileDirs.push_back(QStringLiteral("/old/"));
        TarnelData().FileNames.push_back(QStringLiteral("old.dwg"));
        TarnelData().FileStatus.push_back(Locked);
    }
    ~GroupFile() override { ResetTarnelData(); }

    /// Loads a file of that name with these bytes; what the user is told.
    std::string load(const QString& name, const QByteArray& bytes) {
        const QString path = folder.filePath(name);
        WriteBytes(path, bytes);
        QString message;
        loaded = LoadGroupFile(path, &message);
        return Plain(message);
    }
    static QStringList queue() {
        QStringList paths;
        for (std::size_t i = 0; i < TarnelData().FileNames.size(); ++i) {
            paths += TarnelData().FileDirs[i] + QLatin1Char('|') + TarnelData().FileNames[i];
        }
        return paths;
    }

    QTemporaryDir folder;
    bool loaded = false;
};

TEST_F(GroupFile, ReadsPlainLists) {
    EXPECT_EQ(load(QStringLiteral("LIST.LST"), "@comment\n/Work/A.dxf\r\n\nb.dxf"), "");
    EXPECT_EQ(queue(), QStringList({"/Work/|A.dxf", "|", "|b.dxf"}));
    EXPECT_EQ(TarnelData().FileStatus[2], ToDo);
    EXPECT_EQ(TarnelData().FileOrder.size(), 3U);
}

TEST_F(GroupFile, ReadsListsMadeOnOtherSystems) {
    EXPECT_EQ(load(QStringLiteral("l.txt"),
                   "\xEF\xBB\xBF@head\r\nC:\\Work\\A.DWG\r\n\\\\Srv\\x\\B.dwg\r\nsub\\C.dxf\r\n"),
              "");
    EXPECT_EQ(queue(), QStringList({"c:\\work\\|a.dwg", "\\\\srv\\x\\|b.dwg", "sub/|C.dxf"}));
    EXPECT_EQ(load(QStringLiteral("l.txt"), "/pl\xE4ne/gr\xFCn.dxf\r\n/pl\xC3\xA4ne/a.dxf\n"),
              "line 1 is not in UTF-8; it and others like it are read as Windows code page 1252");
    EXPECT_TRUE(loaded);
    EXPECT_EQ(queue(),
              QStringList({QString::fromUtf8("/pläne/|grün.dxf"), QString::fromUtf8("/pläne/|a.dxf")}));
    EXPECT_EQ(load(QStringLiteral("l.txt"), QString::fromUtf8("/pläne/grün.dxf\n").toUtf8()), "");
    EXPECT_EQ(queue(), QStringList({QString::fromUtf8("/pläne/|grün.dxf")}));
}

TEST_F(GroupFile, ReadsOldScriptFiles) {
    const QString script = folder.filePath(QStringLiteral("s.scr"));
    WriteBytes(script, "zoom\re\r\n\n\xE9");
    const QByteArray head = "Tarnel V2.6.5 Script File\r\n" + script.toUtf8() + "\r\n90\r\n45\r\n";
    EXPECT_EQ(
        load(QStringLiteral("g.GRP"), head + "0 ____/W/A.dwg\r\n1     /W/b.dwg\r\n2     c:\\W\\c.dwg\r\n"
                                             "3     d\r\n4     e\r\n5     f\r\n"),
        Plain(script) + ": line 3 is not in UTF-8; it and others like it are read as Windows code page 1252");
    EXPECT_EQ(queue(), QStringList({"/W/|A.dwg", "/W/|b.dwg", "c:\\W\\|c.dwg", "|d", "|e", "|f"}));
    const CheckedArray<std::uint32_t>& statuses = TarnelData().FileStatus;
    EXPECT_EQ(std::vector<std::uint32_t>(statuses.begin(), statuses.end()),
              (std::vector<std::uint32_t>{Error, FailOpen, Timeout, Locked, ToDo, Done}));
    EXPECT_EQ(TarnelData().Script, QByteArray("zoom\re\r\n\né"));
    EXPECT_EQ(TarnelData().MaxTime, 90U);
    EXPECT_EQ(TarnelData().AlarmTime, 45U);
    EXPECT_EQ(Plain(TarnelData().LastScriptFile), Plain(script));
}

TEST_F(GroupFile, EntriesWithoutAStatusHarmNothing) {
    const QString script = folder.filePath(QStringLiteral("s.scr"));
    WriteBytes(script, "zoom e\n");
    TarnelData().SortIdx = 4;
    EXPECT_EQ(load(QStringLiteral("g.grp"), "Tarnel V2 Script File\n" + script.toUtf8() +
                                                "\n90\n45\n9     a.dxf\n4     b.dxf\n7     c.dxf\n"),
              "");
    EXPECT_EQ(queue(), QStringList({"|a.dxf", "|b.dxf", "|c.dxf"}));
    EXPECT_EQ(TarnelData().FileStatus.size(), 1U) << "the statuses move up, as they always did";
    AppendEntry(TarnelData(), QStringLiteral("d.dxf"));
    EXPECT_EQ(EntryStatus(TarnelData(), 3), ToDo) << "and none of the others is";
    EXPECT_EQ(EntryStatus(TarnelData(), 2), Error);
    const QString saved = folder.filePath(QStringLiteral("state.xml"));
    QString error;
    EXPECT_TRUE(SaveGroupFile(saved, &error)) << error.toStdString();
    EXPECT_TRUE(ReadBytes(saved).contains("<File Status=\"0\">a.dxf</File>"));
    EXPECT_TRUE(ReadBytes(saved).contains("<File Status=\"5\">c.dxf</File>"));
    TarnelData().StateFile = saved;
    SaveState(nullptr, 1);
    SaveState(nullptr, 1);
    EXPECT_TRUE(ReadBytes(saved).contains("<File Status=\"5\">b.dxf</File>"));
}

TEST_F(GroupFile, RefusalsChangeNothing) {
    const QStringList before = queue();
    EXPECT_EQ(load(QStringLiteral("g.grp"), "Tarnel V2 Script File \n/none.scr\n1\n1\n"),
              "Invalid file contents.");
    EXPECT_EQ(load(QStringLiteral("g.grp"), "Tarnel V2 Script File\n/none.scr\n1\n1\n0     x\n"),
              "Invalid script file location.");
    for (const char* name : {"none.grp", "none.lst", "none.xml"}) {
        QString message;
        EXPECT_FALSE(LoadGroupFile(folder.filePath(QString::fromLatin1(name)), &message));
        EXPECT_EQ(Plain(message), "Could not open file.") << name;
    }
    WriteBytes(folder.filePath(QStringLiteral("b.scr")), QByteArray("a\0\n", 3));
    const QByteArray binary = folder.filePath(QStringLiteral("b.scr")).toUtf8();
    EXPECT_EQ(load(QStringLiteral("g.grp"), "Tarnel V2 Script File\n" + binary + "\n1\n1\n0     x\n"),
              (binary + ": line 1 holds a NUL, so this is no script").toStdString());
    QString message;
    EXPECT_FALSE(LoadGroupFile(folder.path(), &message));
    EXPECT_EQ(Plain(message), "Could not open file.") << "a folder empties no queue";
    EXPECT_EQ(queue(), before);
    EXPECT_EQ(TarnelData().FileStatus[0], Locked);
    EXPECT_EQ(TarnelData().MaxTime, 60U);
}

TEST_F(GroupFile, SavesAndReadsXmlUnderAnyCase) {
    TarnelData().MaxTime = 5;
    const QString path = folder.filePath(QStringLiteral("DATA.XML"));
    QString message;
    EXPECT_TRUE(SaveGroupFile(path, &message));
    ResetTarnelData();
    EXPECT_TRUE(LoadGroupFile(path, &message));
    EXPECT_EQ(queue(), QStringList({"/old/|old.dwg"}));
    EXPECT_EQ(TarnelData().FileStatus[0], Locked);
    EXPECT_EQ(TarnelData().MaxTime, 5U);
    EXPECT_FALSE(SaveGroupFile(folder.filePath(QStringLiteral("no/g.xml")), &message));
    EXPECT_TRUE(message.contains(QStringLiteral("no/g.xml: cannot be written"))) << message.toStdString();
}

}  // namespace
