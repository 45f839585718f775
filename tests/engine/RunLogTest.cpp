// SPDX-License-Identifier: GPL-3.0-or-later
// What a run leaves behind: the run log and the archive of the host's logs.
#include "log/RunLog.h"
#include "log/RunLogText.h"
#include "state/StateFile.h"
#include "tests/engine/RunFixture.h"
#include "zip/ZipArchive.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <csignal>

namespace {

class RunLogTest : public RunTest {
  protected:
    /// The host writes a log of each drawing that is opened.
    void logEachDrawing() {
        host.OnCommand = [this](const QStringList& words) {
            if (words[0] == QLatin1String("._open")) {
                const QString log =
                    QStringLiteral("logs/%1.log").arg(QFileInfo(words.last()).completeBaseName());
                host.Variables["LOGFILENAME"] = MakeFile(log);
            }
            return RTNORM;
        };
    }
};

}  // namespace

TEST_F(RunLogTest, TellsTheFilesAndPacksTheirLogs) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b & c.dxf")});
    logEachDrawing();
    StartRun();
    const QString id = Folder().replace('/', '_') + "_logs_";
    const QString time = "\\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d";
    const QRegularExpression form(
        QStringLiteral(
            "^<html><body><span>T: <font color=blue>Batch started</font></span><br />\r\n"
            "<span>T: Processing file: <span id=\"%1a.log\">%2/a.dxf</span></span><br />\r\n"
            "<span>T: Processing file: <span id=\"%1b & c.log\">%2/b & c.dxf</span></span><br />\r\n"
            "<span>T: <font color=blue>Batch completed</font></span><br />\r\n</body></html>$")
            .arg(QRegularExpression::escape(id), QRegularExpression::escape(Folder()))
            .replace("T:", time + ':'));
    const QString text = QString::fromUtf8(Content(DataPath("tnl log.html")));
    EXPECT_TRUE(form.match(text).hasMatch()) << text.toStdString();

    CZipArchive archive;
    ASSERT_TRUE(archive.Open(DataPath("TNLLog.zip").toStdString(), CZipArchive::Existing));
    ASSERT_EQ(archive.Count(), 2);
    EXPECT_EQ(archive.FindFile((id + "a.log").toStdString(), true), 0);
    EXPECT_EQ(archive.ReadWholeFile(1), "x");
    EXPECT_TRUE(QDir(Folder() + "/logs").isEmpty());
}

TEST_F(RunLogTest, SecondRunKeepsNothingOfTheFirst) {
    SetQueue({MakeFile("a.dxf")});
    logEachDrawing();
    StartRun();
    ASSERT_TRUE(QFile::exists(DataPath("TNLLog.zip")));
    const QByteArray first = Content(DataPath("tnl log.html"));
    TarnelData().FileStatus[0] = ToDo;
    SaveState(nullptr, 1);
    host.OnCommand = nullptr;
    host.Variables["LOGFILENAME"] = "";
    StartRun();
    EXPECT_FALSE(QFile::exists(DataPath("TNLLog.zip")));
    EXPECT_EQ(Content(DataPath("tnl log.html")).count("Batch started"), 1);
}

TEST_F(RunLogTest, LogsStayWhenTheArchiveCannotBeWritten) {
    SetQueue({MakeFile("a.dxf")});
    logEachDrawing();
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(3);
    ASSERT_TRUE(QDir().mkpath(DataPath("TNLLog.zip/in the way")));
    host.RunInput();
    EXPECT_TRUE(QFile::exists(Folder() + "/logs/a.log"));
    EXPECT_TRUE(host.Printed.contains("TNLLog.zip"));
    EXPECT_TRUE(host.Printed.contains("the host's logs stay where they are"));
    EXPECT_EQ(SavedStatuses(), "1");
}

TEST_F(RunLogTest, LogThatIsGoneIsPassedOver) {
    SetQueue({MakeFile("a.dxf"), MakeFile("b.dxf")});
    logEachDrawing();
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(4);
    QFile::remove(Folder() + "/logs/a.log");
    host.RunInput();
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(DataPath("TNLLog.zip").toStdString(), CZipArchive::Existing));
    EXPECT_EQ(archive.Count(), 1);
    EXPECT_EQ(Content(DataPath("tnl log.html")).count("Processing file"), 2);
}

TEST_F(RunLogTest, RefusedDrawingHasAnEntryWithALogOfItsOwn) {
    const QStringList files = {MakeFile("a.dxf"), MakeFile("b.dxf"), MakeFile("c.dxf"), MakeFile("d.dxf")};
    SetQueue(files);
    logEachDrawing();
    const auto open = host.OnCommand;
    host.Variables["LASTPROMPT"] = "b.dxf, line 7: no number";
    host.OnCommand = [&](const QStringList& words) {
        const bool refused = words.last() == files[1] || words.last() == files[2];
        return words[0] == QLatin1String("._open") && refused ? RTERROR : open(words);
    };
    StartRun();
    EXPECT_EQ(SavedStatuses(), "1 2 2 1");
    const RunLogContent log = ReadRunLog(Content(DataPath("tnl log.html")));
    EXPECT_TRUE(log.IsWhole);
    QStringList names;
    QStringList texts;
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(DataPath("TNLLog.zip").toStdString(), CZipArchive::Existing));
    for (const RunLogEntry& entry : log.Entries) {
        if (entry.Kind != RunLogEntry::File) {
            continue;
        }
        names << entry.Name;
        const int index = archive.FindFile(entry.Id.toStdString(), true);
        texts << (index < 0 ? QString() : QString::fromStdString(archive.ReadWholeFile(index)));
    }
    EXPECT_EQ(names, files);
    const QString refused = "%1\r\nThe drawing was not opened.\r\nb.dxf, line 7: no number\r\n";
    EXPECT_EQ(texts, (QStringList{"x", refused.arg(files[1]), refused.arg(files[2]), "x"}));
    EXPECT_EQ(archive.Count(), 4);
    EXPECT_TRUE(QDir(DataPath("")).entryList({"unopened-*"}).isEmpty());
}

TEST_F(RunLogTest, WhatCouldNotBeWrittenIsTriedAgain) {
    const QStringList files = {MakeFile("a.dxf"), MakeFile("b.dxf")};
    SetQueue(files);
    ASSERT_TRUE(QDir().mkpath(DataPath("tnl log.html")));
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(2);
    EXPECT_EQ(host.Printed.count("tnl log.html: cannot be written: "), 1);
    ASSERT_TRUE(QDir().rmdir(DataPath("tnl log.html")));
    host.RunInput();
    const RunLogContent log = ReadRunLog(Content(DataPath("tnl log.html")));
    EXPECT_TRUE(log.IsWhole);
    ASSERT_EQ(log.Entries.size(), 4u);
    EXPECT_EQ(log.Entries[1].Name, files[0]);
    EXPECT_FALSE(host.Printed.contains("not whole"));

    TarnelData().FileStatus[0] = ToDo;
    SaveState(nullptr, 1);
    QFile::remove(DataPath("tnl log.html"));
    ASSERT_TRUE(QDir().mkpath(DataPath("tnl log.html")));
    StartRun();
    EXPECT_TRUE(host.Printed.contains("the run log is not whole"));
    EXPECT_EQ(SavedStatuses(), "1 1");
}

TEST_F(RunLogTest, LineThatWasCutOffIsCompleted) {
    OpenRunLog(TarnelData().DataDir);
    const qsizetype before = Content(DataPath("tnl log.html")).size();
    // The disk is full in the middle of the next line.
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit full = old;
    full.rlim_cur = static_cast<rlim_t>(before) + 10;
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    RunLogLine("one");
    RunLogLine("two");
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(Content(DataPath("tnl log.html")).size(), before + 10);
    EXPECT_EQ(host.Printed.count("cannot be written"), 1);
    CloseRunLog();
    const RunLogContent log = ReadRunLog(Content(DataPath("tnl log.html")));
    EXPECT_TRUE(log.IsWhole);
    ASSERT_EQ(log.Entries.size(), 4u);
    EXPECT_EQ(log.Entries[1].Html, "one");
    EXPECT_EQ(log.Entries[2].Html, "two");
}

TEST_F(RunLogTest, FileThatTakesNoMoreIsReplacedByAWholeOne) {
    OpenRunLog(TarnelData().DataDir);
    RunLogLine("one");
    const QString path = QFileInfo(DataPath("tnl log.html")).canonicalFilePath();
    // From here on writing fails through the descriptor that the log has open, and nowhere else.
    const int readOnly = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    int replaced = 0;
    for (const QFileInfo& link : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files)) {
        const int number = link.fileName().toInt();
        if (number != readOnly && link.symLinkTarget() == path && dup2(readOnly, number) == number) {
            ++replaced;
        }
    }
    ASSERT_EQ(replaced, 1);
    RunLogLine("two");
    CloseRunLog();
    close(readOnly);
    const RunLogContent log = ReadRunLog(Content(path));
    EXPECT_TRUE(log.IsWhole);
    ASSERT_EQ(log.Entries.size(), 4u);
    EXPECT_EQ(log.Entries[1].Html, "one");
    EXPECT_EQ(log.Entries[2].Html, "two");
    EXPECT_EQ(host.Printed.count("it is tried again"), 1);
    EXPECT_FALSE(host.Printed.contains("not whole"));
}

TEST(HostLogId, ReplacesDriveAndSeparators) {
    EXPECT_EQ(HostLogId(QStringLiteral("C:\\Logs\\a.log")), "C-_Logs_a.log");
    EXPECT_EQ(HostLogId(QStringLiteral("/var/log/a.log")), "_var_log_a.log");
}

TEST_F(RunTest, TraceGoesOnFromStartToStartAndEndsInDone) {
    TearDown();
    const QByteArray first = Content(DataPath("TNLapp.log"));
    EXPECT_TRUE(first.endsWith("\r\nDone"));
    SetUp();
    const QByteArray both = Content(DataPath("TNLapp.log"));
    EXPECT_TRUE(both.startsWith(first));
    const QRegularExpression banner(
        "^_{33}[0-9/]+ [0-9:]+ \\(3\\.0\\.0 built on \\w+ +\\d+ \\d+ [0-9:]+\\)\r\n");
    EXPECT_TRUE(banner.match(QString::fromUtf8(both.mid(first.size()))).hasMatch());
    const QString lines = QString::fromUtf8(both.mid(first.size())).section("\r\n", 1);
    EXPECT_EQ(
        lines,
        "InstallScriptHandler\r\nOvrixSetupToolbar: 1\r\nLoad HTMLayout\r\nScintilla_RegisterClasses\r\n"
        "Add Commands\r\nAdd Reactor\r\nCheck Watch\r\n");
}
