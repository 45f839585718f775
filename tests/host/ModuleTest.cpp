// SPDX-License-Identifier: GPL-3.0-or-later
// The shipped file: what it exports, and that it can come and go.
#include "dbmain.h"
#include "host/CmdLine.h"
#include "rxregsvc.h"
#include "tests/engine/RunFixture.h"

#include <dlfcn.h>
#include <QFile>

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId);

namespace {

QString toolbarCalls;

int addToToolbar(const ACHAR* command, const ACHAR* label, void* resources, int picture, int, int) {
    toolbarCalls += QStringLiteral("add %1%2 %3 %4;")
                        .arg(TextOf(command), TextOf(label))
                        .arg(resources != nullptr)
                        .arg(picture);
    return 7;
}

int removeFromToolbar(const ACHAR* command) {
    toolbarCalls += QStringLiteral("remove ") + TextOf(command);
    return 7;
}

void offerToolbar(RecordingHost& host) {
    host.Modules["ovrixtoolbar-19-64.arx"] = "/opt/ovrixtoolbar-19-64.arx";
    host.ModuleSymbols["ovrixtoolbar-19-64.arx!AddToToolbar"] = reinterpret_cast<void*>(&addToToolbar);
    host.ModuleSymbols["ovrixtoolbar-19-64.arx!RemoveFromToolbar"] =
        reinterpret_cast<void*>(&removeFromToolbar);
}

class Database : public AcDbDatabase {
  public:
    void disablePartialOpen() override { ++Calls; }
    int Calls = 0;
};

}  // namespace

TEST_F(RunTest, ShippedModuleLoadsUnloadsAndLoadsAgain) {
    void* module = dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    ASSERT_NE(module, nullptr) << dlerror();
    using Entry = AcRx::AppRetCode (*)(AcRx::AppMsgCode, void*);
    const auto entry = reinterpret_cast<Entry>(dlsym(module, "acrxEntryPoint"));
    const auto version = reinterpret_cast<int (*)()>(dlsym(module, "acrxGetApiVersion"));
    ASSERT_TRUE(entry && version && dlsym(module, "OvrixSetupToolbar"));
    EXPECT_EQ(dlsym(module, "_Z7DoBatchv"), nullptr);
    EXPECT_EQ(version(), kArxApiVersion);
    for (int round = 0; round < 2; ++round) {
        host.Reset();
        EXPECT_EQ(entry(AcRx::kInitAppMsg, nullptr), AcRx::kRetOK);
        EXPECT_EQ(host.CallsOf("unlock").size() + host.CallsOf("registerApp").size(), 2);
        entry(AcRx::kLoadDwgMsg, nullptr);
        entry(AcRx::kLoadDwgMsg, nullptr);
        EXPECT_EQ(host.Codes.front(), 1);
        EXPECT_EQ(host.Codes.size(), 30U);
        EXPECT_EQ(host.Codes.back(), 15) << "each drawing's functions have the codes of the last one's";
        EXPECT_EQ(host.Functions.value("TARNEL_SETMASK"), 15);
        EXPECT_EQ(host.CallLisp("Tarnel_SetRecoverMode"), "nil");
        host.CallLisp("Tarnel_SetRecoverMode", {LispValue::T()});
        EXPECT_EQ(host.Reactors.size(), 1u);
        EXPECT_EQ(host.Commands.size(), 2);
        entry(AcRx::kUnloadAppMsg, nullptr);
        EXPECT_TRUE(host.Reactors.empty());
        EXPECT_TRUE(host.Commands.isEmpty());
        EXPECT_TRUE(host.Printed.startsWith("Tarnel v3.0.0 loaded!\n"));
        EXPECT_TRUE(host.Printed.endsWith("Tarnel v3.0.0 unloaded!\n"));
        EXPECT_EQ(host.ResourceDepth, 0);
    }
}

TEST_F(RunTest, StopClosesTheStepThroughAfterTheCommandsAreGone) {
    ui.StepThroughVisible = true;
    MarkTrace();
    TearDown();
    EXPECT_FALSE(ui.StepThroughVisible);
    EXPECT_EQ(TraceLines(), (QStringList{"OvrixRemoveToolbar", "Remove reactor", "Remove Commands", "Done"}));
    SetUp();
}

TEST_F(RunTest, ToolbarButtonComesAndGoesWithTheModule) {
    TearDown();
    toolbarCalls.clear();
    // The sibling's file stands beside the module and is not loaded yet.
    host.Reset();
    MakeFile("module/ovrixtoolbar-19-64.arx");
    host.OnLoadModule = [&](const QString&) { offerToolbar(host); };
    host.Modules["tnl3-19-64.arx"] = Folder() + "/module/tnl3-19-64.arx";
    acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
    EXPECT_EQ(host.CallsOf("loadModule"),
              QStringList{"loadModule " + Folder() + "/module/ovrixtoolbar-19-64.arx 01"});
    acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
    EXPECT_EQ(toolbarCalls, "add tarnel\nTarnel 1 1036;remove tarnel\n");
    // Loaded already: no second load.
    host.Calls.clear();
    acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
    EXPECT_TRUE(host.CallsOf("loadModule").isEmpty());
    acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
    SetUp();
}

TEST_F(RunTest, ScriptPackagesAreAssociatedOnceAndFollowTheModule) {
    const QString classes = "HKEY_CLASSES_ROOT\\";
    EXPECT_EQ(host.Registry[classes + ".iscr\\"], "TarnelRunner.InstallScript");
    EXPECT_EQ(host.Registry[classes + ".iscr\\Content Type"], "application/TarnelRunner-InstallScript");
    EXPECT_EQ(host.Registry[classes + "TarnelRunner.InstallScript\\"], "TarnelRunner Install Script");
    EXPECT_EQ(host.Registry[classes + "TarnelRunner.InstallScript\\EditFlags"], 0x10000);
    EXPECT_EQ(host.Registry[classes + "TarnelRunner.InstallScript\\DefaultIcon\\"],
              Folder() + "/module/tnl3-19-64.arx,0");
    const QString command = classes + "TarnelRunner.InstallScript\\shell\\open\\command\\";
    EXPECT_EQ(host.Registry[command], '"' + Folder() + "/module/TNLWatch.exe\" /install \"%1\"");
    // The desktop knows them from what is installed: a start leaves nothing in the user's folders.
    EXPECT_EQ(QDir(Folder() + "/share").entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList("Ovrix"));

    TearDown();
    const auto registry = host.Registry;
    host.Reset();
    host.Registry = registry;
    host.Modules["tnl3-19-64.arx"] = "/new place/tnl3-19-64.arx";
    acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
    // Only the two values that name the module's folder are written again.
    EXPECT_EQ(host.CallsOf("registry").size(), 2);
    EXPECT_EQ(host.Registry[command], "\"/new place/TNLWatch.exe\" /install \"%1\"");
    acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
    SetUp();
}

TEST_F(RunTest, ReactorCountsAndOpensDrawingsOfARunWhole) {
    CmdLine reactor;
    reactor.commandEnded(ACRX_T("LINE"));
    EXPECT_EQ(reactor.Depth, 0);
    reactor.commandWillStart(ACRX_T("LINE"));
    reactor.lispWillStart(ACRX_T("(x)"));
    EXPECT_EQ(reactor.Depth, 2);
    reactor.lispCancelled();
    reactor.commandFailed(ACRX_T("LINE"));
    EXPECT_EQ(reactor.Depth, 0);

    Database database;
    reactor.databaseConstructed(&database);
    TarnelData().BatchRunning = true;
    reactor.databaseConstructed(&database);
    EXPECT_EQ(database.Calls, 1);
    TarnelData().BatchRunning = false;
}

TEST_F(RunTest, LeavingTheHostPutsItsVariablesBack) {
    SetQueue({MakeFile("a.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(1);
    EXPECT_EQ(host.Variables["FILEDIA"], 0);
    static_cast<AcEditorReactor*>(static_cast<AcRxEventReactor*>(host.Reactors.front()))->beginQuit();
    EXPECT_EQ(host.Variables["FILEDIA"], 1);
}
