// SPDX-License-Identifier: GPL-3.0-or-later
// What must never be lost: the state on the disk, whatever happens to the process or the disk.
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"
#include "tests/text/TestText.h"
#include "text/WholeFile.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <QDir>

namespace {

class StateSafety : public testing::Test {
  protected:
    StateSafety() {
        ResetTarnelData();
        TarnelData().StateFile = path;
    }
    ~StateSafety() override { ResetTarnelData(); }

    static void fillQueue(int count) {
        for (int i = 0; i < count; ++i) {
            TarnelData().FileDirs.push_back(QStringLiteral("/w/"));
            TarnelData().FileNames.push_back(QString::number(i) + QStringLiteral(".dxf"));
            TarnelData().FileStatus.push_back(0);
        }
    }

    /// Saves while no file may grow past 20,000 bytes, which plays the disk that is full. The error told.
    static QString saveOnFullDisk() {
        rlimit old{};
        getrlimit(RLIMIT_FSIZE, &old);
        rlimit small = old;
        small.rlim_cur = 20000;
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
        QString error;
        SaveState(nullptr, 1, &error);
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, handler);
        return error;
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("TarnelRunner.xml"));
};

TEST_F(StateSafety, AKillLeavesOneWholeState) {
    fillQueue(3000);
    SaveState(nullptr, 1);
    constexpr int Kills = 25;
    for (int round = 0; round < Kills; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (std::uint32_t status = 1;; status = status % 6 + 1) {
                for (std::uint32_t& each : TarnelData().FileStatus) {
                    each = status;
                }
                SaveState(nullptr, 1);
            }
        }
        usleep(static_cast<useconds_t>(2000 + round * 331));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        ASSERT_EQ(Plain(CheckStateFile(path)), "");
        LoadState(nullptr, 1);
        ASSERT_EQ(TarnelData().FileNames.size(), 3000U);
        for (const std::uint32_t status : TarnelData().FileStatus) {
            ASSERT_EQ(status, TarnelData().FileStatus[0]) << "two states in one file";
        }
    }
    TarnelData().DataDir = folder.path();
    ResolveStateFile();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1) << "what killed processes left is gone";
}

TEST_F(StateSafety, AFullDiskLeavesTheOldStateAndSaysSo) {
    fillQueue(1);
    SaveState(nullptr, 1);
    const QByteArray before = ReadBytes(path);
    fillQueue(5000);
    QString error = saveOnFullDisk();
    EXPECT_EQ(Plain(error), Plain(path) + ": cannot be written: File too large");
    EXPECT_EQ(ReadBytes(path), before);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    SaveState(nullptr, 1, &error);
    EXPECT_TRUE(error.isEmpty()) << "a save that works clears the error";
    EXPECT_TRUE(SyncState(&error)) << error.toStdString();
}

TEST_F(StateSafety, WritesInPlaceWhereNothingCanStandBeside) {
    // A name so long that no longer one can stand beside it.
    TarnelData().StateFile = folder.filePath(QString(251, u'n') + QStringLiteral(".xml"));
    fillQueue(100);
    QString error;
    SaveState(nullptr, 1, &error);
    EXPECT_EQ(Plain(error), "");
    const QByteArray before = ReadBytes(TarnelData().StateFile);
    fillQueue(5000);
    EXPECT_FALSE(saveOnFullDisk().isEmpty());
    EXPECT_EQ(ReadBytes(TarnelData().StateFile), before);
    TarnelData().FileNames.resize(1);
    TarnelData().FileDirs.resize(1);
    SaveState(nullptr, 1);
    EXPECT_TRUE(ReadBytes(TarnelData().StateFile).endsWith("</TarnelRunner>\r\n"));
    EXPECT_EQ(Plain(CheckStateFile(TarnelData().StateFile)), "");
}

TEST_F(StateSafety, LinksAndModesStay) {
    const QString real = folder.filePath(QStringLiteral("elsewhere.xml"));
    WriteBytes(real, "old");
    ASSERT_EQ(chmod(real.toUtf8().constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(real, path));
    QString error;
    SaveState(nullptr, 1, &error);
    EXPECT_EQ(Plain(error), "");
    EXPECT_EQ(Plain(QFile::symLinkTarget(path)), Plain(real));
    EXPECT_TRUE(ReadBytes(real).startsWith("<TarnelRunner"));
    struct stat status {};
    ASSERT_EQ(stat(real.toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(StateSafety, AFailureIsTold) {
    TarnelData().StateFile = folder.filePath(QStringLiteral("none/TarnelRunner.xml"));
    QString error;
    EXPECT_EQ(SaveState(nullptr, 1, &error), 1);
    EXPECT_EQ(Plain(error), Plain(TarnelData().StateFile) + ": cannot be written: No such file or directory");
    EXPECT_FALSE(SyncState(&error));
    EXPECT_EQ(Plain(error),
              Plain(TarnelData().StateFile) + ": cannot be brought to the disk: No such file or directory");
    TarnelData().StateFile = folder.path();
    EXPECT_EQ(LoadState(nullptr, 1, &error), 1);
    EXPECT_EQ(Plain(error), Plain(folder.path()) + ": cannot be read: Is a directory");
}

TEST_F(StateSafety, AFileThatIsNoStateIsTold) {
    EXPECT_EQ(Plain(CheckStateFile(path)), "");
    const std::vector<std::pair<QByteArray, std::string>> cases = {
        {"", ": the file is empty"},
        {"hello", ": not a state file: it has no element TarnelRunner"},
        {"<Other><Options/><Files/></Other>", ": not a state file: it has no element TarnelRunner"},
        {"<TarnelRunner>\n<Options/>\n<Files><File>\n",
         ": not a whole state file: unended_start_tag \"File\" in line 3"},
        {"<TarnelRunner><Options/></TarnelRunner>",
         ": not a whole state file: it has no elements Options and Files"},
    };
    for (const auto& [bytes, problem] : cases) {
        WriteBytes(path, bytes);
        EXPECT_EQ(Plain(CheckStateFile(path)), Plain(path) + problem);
    }
    WriteBytes(path, QByteArray(4096, '\0'));
    EXPECT_FALSE(CheckStateFile(path).isEmpty()) << "what a power cut can leave";
    SaveState(nullptr, 1);
    EXPECT_EQ(Plain(CheckStateFile(path)), "");
    EXPECT_EQ(Plain(CheckStateFile(folder.path())),
              Plain(folder.path()) + ": cannot be read: Is a directory");
}

}  // namespace
