// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the host will load the module at its next start.
#include "engine/Restartable.h"
#include "tests/engine/RunFixture.h"

#include <QFile>

namespace {

const QString product = QStringLiteral("HKEY_LOCAL_MACHINE\\Software\\Maker\\Product\\R1");
const QString controls = product + QStringLiteral("\\Applications\\OvrixTNL3\\LOADCTRLS");
const QString suite = QStringLiteral(
    "HKEY_CURRENT_USER\\Software\\Maker\\Product\\Profiles\\Standard\\Dialogs\\Appload\\Startup");

}  // namespace

TEST_F(RunTest, EntryStandsForTheLengthOfARun) {
    SetQueue({MakeFile("a.dxf")});
    for (int i = 0; i < 2; ++i) {
        EnsureRestartable();
        EXPECT_TRUE(TarnelData().TemporarilyLoadFromRegistry);
        EXPECT_EQ(host.Registry[controls], 2);
        RemoveRestartable();
        EXPECT_FALSE(TarnelData().TemporarilyLoadFromRegistry);
        EXPECT_EQ(host.Registry[controls], 8);
    }
    EXPECT_EQ(host.Registry[product + "\\Applications\\OvrixTNL3\\RegPath"],
              "\\\\HKEY_LOCAL_MACHINE\\Software\\Maker\\Product\\R1\\AutodeskApps\\OvrixTNL3");
    EXPECT_EQ(host.Registry[product + "\\AutodeskApps\\OvrixTNL3\\Commands\\tarnel"], "tarnel");
    EXPECT_EQ(host.Registry[product + "\\AutodeskApps\\OvrixTNL3\\Loader\\MODULE"],
              Folder() + "/module/tnl3-19-64.arx");
    EXPECT_EQ(host.Registry[product + "\\AutodeskApps\\OvrixTNL3\\Name\\tarnel"], "tarnel");
    // Looking for the suite brings its number into being.
    EXPECT_EQ(host.Registry[suite + "\\NumStartup"], "0");
}

TEST_F(RunTest, EntryThatWasThereStays) {
    host.Registry[controls] = 2;
    SetQueue({MakeFile("a.dxf")});
    StartRun();
    EXPECT_EQ(host.Registry[controls], 2);
    EXPECT_FALSE(host.Registry.contains(product + "\\AutodeskApps\\OvrixTNL3\\Name\\tarnel"));
}

TEST_F(RunTest, StartupSuiteCountsUnderAnyPath) {
    host.Registry[suite + "\\NumStartup"] = "2";
    host.Registry[suite + "\\1Startup"] = "/opt/other.arx";
    host.Registry[suite + "\\2Startup"] = "/opt/Tarnel/TNL3-19-64.ARX";
    MarkTrace();
    EnsureRestartable();
    EXPECT_EQ(TraceLines().last(), "Found");
    EXPECT_FALSE(TarnelData().TemporarilyLoadFromRegistry);
    EXPECT_FALSE(host.Registry.contains(controls));
}

TEST_F(RunTest, ListOfModulesCountsUnlessCommentedOut) {
    const QString list = MakeFile("acad.rx");
    host.Files["acad.rx"] = list;
    const auto loads = [&](const char* text) {
        QFile file(list);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        file.close();
        host.Registry.clear();
        MarkTrace();
        EnsureRestartable();
        return TraceLines().last() == QLatin1String("Loaded from acad.rx");
    };
    EXPECT_FALSE(loads("; tnl3-19-64.arx\r\n"));
    EXPECT_FALSE(loads("other.arx\n\nmy-tnl3-19-64.arx\n"));
    EXPECT_TRUE(loads("other.arx\r\n\r\nC:\\apps\\TNL3-19-64.ARX\r\n"));
    EXPECT_TRUE(loads("/opt/tarnel/tnl3-19-64.arx"));
}

TEST_F(RunTest, RegistryThatTakesNoWritesStopsNothing) {
    host.RegistryWritable = false;
    SetQueue({MakeFile("a.dxf")});
    StartRun();
    EXPECT_EQ(SavedStatuses(), "1");
}
