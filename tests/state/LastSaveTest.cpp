// SPDX-License-Identifier: GPL-3.0-or-later
// A save that only brings the last one up to date must give what a save from nothing gives.
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <QFile>
#include <QTemporaryDir>

namespace {

class LastSaveTest : public testing::Test {
  protected:
    void SetUp() override {
        ResetTarnelData();
        TarnelData().DataDir = dir.path();
        ResolveStateFile();
        for (int i = 0; i < 300; ++i) {
            AppendEntry(TarnelData(), QStringLiteral("/work/<File Status=\"%1.dxf").arg(i));
        }
        TarnelData().Script = "<File Status=\"0\">";
    }
    void TearDown() override { ResetTarnelData(); }

    /// Saves, and compares with a save under another name, which is made from nothing.
    void expectFreshSave() {
        QString error;
        SaveState(nullptr, 1, &error);
        ASSERT_EQ(error, QString());
        const QString other = dir.filePath(QStringLiteral("other%1.xml").arg(++count));
        const QByteArray saved = content(TarnelData().StateFile);
        SaveState(&other, 1);
        EXPECT_EQ(saved, content(other));
        SaveState(nullptr, 1);
        EXPECT_EQ(saved, content(TarnelData().StateFile));
    }
    static QByteArray content(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir dir;
    int count = 0;
};

}  // namespace

TEST_F(LastSaveTest, EqualsASaveFromNothingAfterEachKindOfChange) {
    CTarnelData& data = TarnelData();
    SaveState(nullptr, 1);
    for (const std::uint32_t entry : {0u, 150u, 299u}) {
        data.FileStatus[entry] = Error;
        SaveState(nullptr, 1);
    }
    EXPECT_EQ(content(data.StateFile).count("Status=\"5\""), 3);
    expectFreshSave();
    data.FileNames[7] = QStringLiteral("renamed.dxf");
    expectFreshSave();
    data.FileStatus[7] = 12;
    expectFreshSave();
    data.FileStatus[7] = Done;
    data.MaxTime = 5;
    expectFreshSave();
    data.SysVarsSaved = true;
    expectFreshSave();
    data.FileNames.erase(0);
    data.FileDirs.erase(0);
    data.FileStatus.erase(0);
    expectFreshSave();
}

TEST_F(LastSaveTest, StatusIsWrittenOverTheOldOneWhereItStands) {
    CTarnelData& data = TarnelData();
    SaveState(nullptr, 1);
    // Kept open: a file that takes this one's place cannot have its number.
    QFile file(data.StateFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto isStillNamed = [&] {
        struct stat opened {};
        struct stat named {};
        return ::fstat(file.handle(), &opened) == 0 &&
               ::stat(QFile::encodeName(data.StateFile).constData(), &named) == 0 &&
               opened.st_ino == named.st_ino;
    };
    data.FileStatus[150] = Error;
    SaveState(nullptr, 1);
    EXPECT_TRUE(isStillNamed());
    EXPECT_EQ(content(data.StateFile).count("Status=\"5\""), 1);
    data.Script = "longer than before";
    SaveState(nullptr, 1);
    EXPECT_FALSE(isStillNamed());
}

TEST_F(LastSaveTest, HalfWrittenStateIsTakenAwayUnlessSomebodyWritesIt) {
    const QString half = TarnelData().StateFile + QStringLiteral(".new");
    const auto make = [&] {
        QFile file(half);
        return file.open(QIODevice::WriteOnly) && file.write("half") == 4;
    };
    ASSERT_TRUE(make());
    ResolveStateFile();
    EXPECT_FALSE(QFile::exists(half));

    ASSERT_TRUE(make());
    const int writer = ::open(QFile::encodeName(half).constData(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(writer, LOCK_EX | LOCK_NB), 0);
    ResolveStateFile();
    EXPECT_TRUE(QFile::exists(half));
    ::close(writer);
}
