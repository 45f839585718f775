// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/StateFile.h"

#include "engine/record/TarnelData.h"
#include "tests/text/TestText.h"

#include <QDir>
#include <vector>

namespace {

class StateFile : public testing::Test {
  protected:
    StateFile() {
        ResetTarnelData();
        TarnelData().StateFile = path;
    }
    ~StateFile() override { ResetTarnelData(); }

    void load(const QByteArray& inside, int full = 1) {
        WriteBytes(path, "<TarnelRunner>" + inside + "</TarnelRunner>");
        EXPECT_EQ(LoadState(nullptr, full), 1);
    }
    static void addEntry(const QString& directory, const QString& name, std::uint32_t status) {
        TarnelData().FileDirs.push_back(directory);
        TarnelData().FileNames.push_back(name);
        TarnelData().FileStatus.push_back(status);
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("TarnelRunner.xml"));
};

const QByteArray optionsText =
    "<Options>\r\n<UseFilter>0</UseFilter>\r\n<Filter>*.dwg</Filter>\r\n<Recurse>0</Recurse>\r\n"
    "<IncludeReadOnly>0</IncludeReadOnly>\r\n<ProcessReadOnly>0</ProcessReadOnly>\r\n<ScriptDescription/>\r\n"
    "<Script>zoom e\r\nqsave</Script>\r\n<ScriptModified>0</ScriptModified>\r\n"
    "<LastScriptFile>C:\\scripts\\z.scr</LastScriptFile>\r\n<MaxTime>60</MaxTime>\r\n"
    "<AlarmTime>40</AlarmTime>\r\n<SortIdx>0</SortIdx>\r\n<SortReverse>0</SortReverse>\r\n"
    "<FileTabButtonText>1</FileTabButtonText>\r\n<DoDirRefresh>0</DoDirRefresh>\r\n"
    "<ShowWhitespace>1</ShowWhitespace>\r\n<ShowEOL>1</ShowEOL>\r\n<WarnNoSave>1</WarnNoSave>\r\n"
    "<WarnDialogCommand>1</WarnDialogCommand>\r\n"
    "<WarnDialogCmdReplacement>1</WarnDialogCmdReplacement>\r\n";
const QByteArray fullText =
    "<TemporarilyLoadFromRegistry>0</TemporarilyLoadFromRegistry>\r\n<WindowState>\r\n<LastTab>0</"
    "LastTab>\r\n"
    "<WasMaximized>0</WasMaximized>\r\n<Left>10</Left>\r\n<Right>810</Right>\r\n<Top>-20</Top>\r\n"
    "<Bottom>580</Bottom>\r\n<ColumnWidth0>-1</ColumnWidth0>\r\n<ColumnWidth1>0</ColumnWidth1>\r\n"
    "<ColumnWidth2>0</ColumnWidth2>\r\n<ColumnWidth3>0</ColumnWidth3>\r\n</WindowState>\r\n"
    "<DebugWindowState>\r\n<Left>0</Left>\r\n<Right>0</Right>\r\n<Top>0</Top>\r\n<Bottom>0</Bottom>\r\n"
    "</DebugWindowState>\r\n<PreviousDirectories>\r\n<Directory Type=\"pidl\" Path=\"/work\">\r\nL3dvcms=\r\n"
    "</Directory>\r\n</PreviousDirectories>\r\n";
const QByteArray filesText =
    "<Files>\r\n<File Status=\"1\">C:\\work\\a.dwg</File>\r\n<File Status=\"0\">/r&amp;d/b.dwg</File>\r\n"
    "</Files>\r\n</TarnelRunner>\r\n";

TEST_F(StateFile, IsWrittenByteForByte) {
    CTarnelData& data = TarnelData();
    data.Build = QStringLiteral("17");
    data.Script = "zoom e\r\nqsave";
    data.LastScriptFile = QStringLiteral("C:\\scripts\\z.scr");
    data.MainWindow = {10, 810, -20, 580};
    data.PreviousDirectories = {"/work", ""};
    data.SysVarsSaved = true;
    data.SavedSysVars[0] = 0;
    data.SavedSysVars[1] = 1;
    data.SavedSysVars[3] = 1;
    addEntry(QStringLiteral("C:\\work"), QStringLiteral("a.dwg"), Done);
    addEntry(QStringLiteral("/r&d/"), QStringLiteral("b.dwg"), ToDo);
    const QByteArray root = "<TarnelRunner Version=\"3.0.0\" Build=\"17\">\r\n";
    EXPECT_EQ(SaveState(nullptr, 1), 1);
    EXPECT_EQ(ReadBytes(path).toStdString(),
              (root + optionsText + fullText +
               "</Options>\r\n<SysVars>\r\n<SDI>0</SDI>\r\n<CMDDIA>1</CMDDIA>\r\n"
               "<CMDECHO>1</CMDECHO>\r\n</SysVars>\r\n" +
               filesText)
                  .toStdString());

    const QString group = folder.filePath(QStringLiteral("g.xml"));
    SaveState(&group, 0);
    EXPECT_EQ(ReadBytes(group).toStdString(),
              (root + optionsText + "</Options>\r\n" + filesText).toStdString());

    // What was written comes back, and is written the same.
    const QByteArray saved = ReadBytes(path);
    ResetTarnelData();
    TarnelData().StateFile = path;
    TarnelData().Build = QStringLiteral("17");
    LoadState(nullptr, 1);
    EXPECT_EQ(Plain(TarnelData().FileDirs[0]), "C:\\work\\");
    EXPECT_EQ(Plain(TarnelData().FileNames[1]), "b.dwg");
    EXPECT_EQ(TarnelData().FileOrder.size(), 2U);
    EXPECT_TRUE(TarnelData().SysVarsSaved && !TarnelData().SavedSysVars[2]);
    EXPECT_EQ(TarnelData().PreviousDirectories, std::deque<QByteArray>{"/work"});
    SaveState(nullptr, 1);
    EXPECT_EQ(ReadBytes(path), saved);
}

TEST_F(StateFile, OddContentsSurvive) {
    CTarnelData& data = TarnelData();
    data.UseWatcher = false;
    data.Script = QByteArray("; grün <&> ]]> \"'\r; only CR\r(setq a \"&lt;\")\n\n  ");
    data.ScriptDescription = QStringLiteral("  blanks  ");
    data.Filter = QString::fromUtf8("*.dwg,ä😀*.dxf");
    data.PreviousDirectories = {QByteArray(200, '\xff'), "/b"};
    data.MaxTime = 0;
    addEntry(QString::fromUtf8("/ä & <b>/"), QString::fromUtf8("😀'\".dxf"), 6);
    addEntry(QString(), QStringLiteral("relative.dxf"), 3);
    const QByteArray script = data.Script;
    SaveState(nullptr, 1);
    EXPECT_TRUE(ReadBytes(path).contains("<Options>\r\n<UseWatcher>0</UseWatcher>\r\n<UseFilter>"));
    ResetTarnelData();
    TarnelData().StateFile = path;
    LoadState(nullptr, 1);
    CTarnelData& again = TarnelData();
    EXPECT_FALSE(again.UseWatcher);
    EXPECT_EQ(again.Script, script);
    EXPECT_EQ(Plain(again.ScriptDescription), "  blanks  ");
    EXPECT_EQ(Plain(again.Filter), "*.dwg,ä😀*.dxf");
    EXPECT_EQ(again.PreviousDirectories, (std::deque<QByteArray>{QByteArray(200, '\xff'), "/b"}));
    EXPECT_EQ(again.MaxTime, 0U);
    ASSERT_EQ(again.FileNames.size(), 2U);
    EXPECT_EQ(Plain(again.FileDirs[0] + again.FileNames[0]), "/ä & <b>/😀'\".dxf");
    EXPECT_EQ(Plain(again.FileDirs[1] + again.FileNames[1]), "relative.dxf");
    EXPECT_EQ(again.FileStatus[0], 6U);
}

TEST_F(StateFile, WhatIsMissingKeepsItsValue) {
    TarnelData().MaxTime = 7;
    TarnelData().PreviousDirectories = {"/x"};
    TarnelData().SysVarsSaved = true;
    addEntry(QStringLiteral("/w/"), QStringLiteral("a.dwg"), ToDo);
    QString error;
    EXPECT_EQ(LoadState(nullptr, 1, &error), 1);
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(TarnelData().MaxTime, 7U);
    EXPECT_TRUE(TarnelData().FileNames.empty() && TarnelData().PreviousDirectories.empty());
    EXPECT_FALSE(TarnelData().SysVarsSaved);

    load("<Options><Filter>*.x</Filter><UseFilter>1</UseFilter><MaxTime>nine</MaxTime></Options>");
    EXPECT_EQ(TarnelData().UseFilter, 1);
    EXPECT_EQ(Plain(TarnelData().Filter), "*.dwg") << "it stands before what was already found";
    EXPECT_EQ(TarnelData().MaxTime, 0U);

    // The rest of a file that was cut off still counts.
    WriteBytes(path,
               "<TarnelRunner><Options><UseFilter>1</UseFilter></Options><Files>"
               "<File Status=\"5\">/w/a.dwg</File><File Status=\"0\">/w/b.d");
    LoadState(nullptr, 1);
    EXPECT_EQ(TarnelData().FileNames.size(), 0U);
    EXPECT_FALSE(CheckStateFile(path).isEmpty());
}

TEST_F(StateFile, ReadsLooseValues) {
    const std::vector<std::pair<QByteArray, bool>> booleans = {
        {"<UseWatcher/>", true},
        {"<UseWatcher>FALSE</UseWatcher>", false},
        {"<UseWatcher>no</UseWatcher>", true},
        {"<UseWatcher>0</UseWatcher>", false},
        {"<UseWatcher> 0</UseWatcher>", true},
    };
    for (const auto& [text, value] : booleans) {
        TarnelData().UseWatcher = !value;
        load("<Options>" + text + "</Options>");
        EXPECT_EQ(TarnelData().UseWatcher, value) << text.constData();
    }
    load(
        "<Options><PreviousDirectories><Directory>/plain</Directory><Directory Type=\"pidl\">*</Directory>"
        "<Directory Type=\"pidl\"> L2\n I= </Directory></PreviousDirectories></Options>"
        "<Files><File>/w/a.dwg</File><File Status=\"x\">b.dwg</File><File Status=\"4\"/></Files>");
    EXPECT_EQ(TarnelData().PreviousDirectories, (std::deque<QByteArray>{"/plain", "/b"}));
    ASSERT_EQ(TarnelData().FileNames.size(), 3U);
    EXPECT_EQ(TarnelData().FileStatus[0], 0U);
    EXPECT_EQ(TarnelData().FileStatus[1], 0U);
    EXPECT_EQ(TarnelData().FileStatus[2], 4U);
    load("<Files/>");
    EXPECT_TRUE(TarnelData().FileNames.empty());
}

TEST_F(StateFile, GroupsLeaveTheRunAlone) {
    TarnelData().TemporarilyLoadFromRegistry = true;
    TarnelData().SysVarsSaved = true;
    TarnelData().LastTab = 3;
    TarnelData().PreviousDirectories = {"/x"};
    load(
        "<Options><TemporarilyLoadFromRegistry>0</TemporarilyLoadFromRegistry><WindowState><LastTab>1</"
        "LastTab>"
        "</WindowState><PreviousDirectories/></Options>",
        0);
    EXPECT_TRUE(TarnelData().TemporarilyLoadFromRegistry && TarnelData().SysVarsSaved);
    EXPECT_EQ(TarnelData().LastTab, 3);
    EXPECT_EQ(TarnelData().PreviousDirectories.size(), 1U);
}

TEST_F(StateFile, ASecondLoadKeepsTheFirstSavedVariables) {
    load("<SysVars><SDI>1</SDI><FILEDIA>0</FILEDIA></SysVars>");
    load("<SysVars><SDI>0</SDI></SysVars>");
    EXPECT_TRUE(TarnelData().SysVarsSaved);
    EXPECT_EQ(TarnelData().SavedSysVars[0], 1);
    EXPECT_EQ(TarnelData().SavedSysVars[2], 0);
    EXPECT_FALSE(TarnelData().SavedSysVars[1]);
}

TEST_F(StateFile, LoadingAnnouncesTheScriptAndSortsTheQueue) {
    int announced = 0;
    QObject::connect(&TarnelData().Signals, &TarnelSignals::ScriptModifiedChanged,
                     [&](bool modified) { announced += modified ? 1 : 100; });
    const QByteArray files = "<Files><File>/2/b</File><File>/1/B</File><File>/3/a</File></Files>";
    load("<Options><ScriptModified>1</ScriptModified><SortIdx>0</SortIdx></Options>" + files);
    EXPECT_EQ(announced, 1);
    const CheckedArray<std::uint32_t>& order = TarnelData().FileOrder;
    EXPECT_EQ(std::vector<std::uint32_t>(order.begin(), order.end()), (std::vector<std::uint32_t>{2, 1, 0}));
    load("<Options><SortIdx>6</SortIdx><SortReverse>1</SortReverse></Options>" + files);
    EXPECT_EQ(std::vector<std::uint32_t>(order.begin(), order.end()), (std::vector<std::uint32_t>{0, 1, 2}));
}

TEST_F(StateFile, TakesTheOldNameOverUnlessThereIsANewFile) {
    const QString oldPath = folder.filePath(QStringLiteral("Tarnel.xml"));
    TarnelData().DataDir = folder.path();
    WriteBytes(oldPath, "<TarnelRunner><Options><MaxTime>11</MaxTime></Options></TarnelRunner>");
    ResolveStateFile();
    EXPECT_EQ(Plain(TarnelData().StateFile), Plain(path));
    EXPECT_FALSE(QFile::exists(oldPath));
    LoadState(nullptr, 1);
    EXPECT_EQ(TarnelData().MaxTime, 11U);
    WriteBytes(oldPath, "old");
    ResolveStateFile();
    EXPECT_EQ(ReadBytes(oldPath), QByteArray("old"));
    EXPECT_TRUE(ReadBytes(path).contains("11"));

    TarnelData().DataDir.clear();
    qputenv("XDG_DATA_HOME", folder.filePath(QStringLiteral("deep/er")).toUtf8());
    ResolveStateFile();
    EXPECT_EQ(Plain(TarnelData().StateFile),
              Plain(folder.filePath(QStringLiteral("deep/er/Ovrix/TarnelRunner.xml"))));
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("deep/er/Ovrix"))));
    qunsetenv("XDG_DATA_HOME");
}

}  // namespace
