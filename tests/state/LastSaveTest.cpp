// SPDX-License-Identifier: GPL-3.0-or-later
// A save that only brings the last one up to date must give what a save from nothing gives.
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"

#include <gtest/gtest.h>
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
        SaveState(nullptr, 1);
        ASSERT_EQ(LastStateError(), QString());
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
