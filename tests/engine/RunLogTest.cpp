// What a run leaves behind: the run log and the archive of the host's logs.
#include "log/RunLog.h"
#include "log/ZipArchive.h"
#include "state/StateFile.h"
#include "tests/engine/RunFixture.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

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
