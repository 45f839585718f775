// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Module.h"

#include "accmd.h"
#include "acdocman.h"
#include "acedads.h"
#include "engine/Batch.h"
#include "engine/HostVariables.h"
#include "engine/record/FileName.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "engine/report/Report.h"
#include "engine/Restartable.h"
#include "engine/RunState.h"
#include "engine/RunUi.h"
#include "engine/Watch.h"
#include "host/CmdLine.h"
#include "host/InstallScript.h"
#include "host/LispFunctions.h"
#include "host/Toolbar.h"
#include "host/WindowUi.h"
#include "log/Trace.h"
#include "rxregsvc.h"
#include "state/StateFile.h"
#include "system/OwnFile.h"
#include "text/WholeFile.h"

#include <QFile>

#include <memory>

namespace {

constexpr ACHAR CommandGroup[] = ACRX_T("OVRXTARNEL");

/// What stands from the start to the stop.
struct ModuleContext {
    CmdLine Reactor;
    /// The dialogs, where the host has a frame.
    std::unique_ptr<RunUi> Windows;
};
std::unique_ptr<ModuleContext> context;

void openStepThrough() {
    CurrentUi().OpenStepThrough();
}

void makeDataDir() {
    CTarnelData& data = TarnelData();
    data.DataDir = UserDataDir();
    if (const int error = files::MakeFolder(QFile::encodeName(data.DataDir).toStdString())) {
        ConsoleLine(QStringLiteral("%1: the folder cannot be made: %2; nothing will be kept.")
                        .arg(data.DataDir, SystemMessage(error)));
    }
}

void findModule() {
    CTarnelData& data = TarnelData();
    data.Version = QStringLiteral(TNL_VERSION);
    data.Build = QStringLiteral(TNL_BUILD);
    ACHAR path[2048] = {};
    if (acrxModulePath(HostText(QString::fromLatin1(ModuleFileName)), path, 2048)) {
        data.ModuleDir = CFileName(FromHost(path)).GetDirectory();
    }
}

void addCommands() {
    Trace("Add Commands\n");
    AcEdCommandStack* commands = acedRegCmdsPtr();
    commands->addCommand(CommandGroup, ACRX_T("TARNEL"), ACRX_T("TARNEL"), ACRX_CMD_MODAL, DoBatch);
    commands->addCommand(CommandGroup, ACRX_T("TNL_DEBUG"), ACRX_T("TNL_DEBUG"), ACRX_CMD_MODAL,
                         openStepThrough);
}

void printState(const char* what) {
    const CTarnelData& data = TarnelData();
    HostPrint(QStringLiteral("%1 v%2 %3!\n").arg(data.ProductName, data.Version, QString::fromLatin1(what)));
}

}  // namespace

void StartModule() {
    SetConsole(HostPrint);
    ResetRun();
    context = std::make_unique<ModuleContext>();
    acDocManagerPtr()->pushResourceHandle();
    makeDataDir();
    findModule();
    CTarnelData& data = TarnelData();
    data.TraceFile = BeginTrace(data.DataDir, data.Version);
    Trace("InstallScriptHandler\n");
    InstallScriptHandler();
    Trace(QStringLiteral("OvrixSetupToolbar: %1\n").arg(OvrixSetupToolbar()));
    Trace("Load HTMLayout\n");
    context->Windows = MakeWindowUi();
    SetUi(context->Windows.get());
    Trace("Scintilla_RegisterClasses\n");
    addCommands();
    Trace("Add Reactor\n");
    acedEditorPtr()->addReactor(&context->Reactor);
    printState("loaded");
    RestoreLeftSystemVars();
    Trace("Check Watch\n");
    if (CheckWatch()) {
        data.BatchRunning = true;
        Trace("Queue Start Batch\n");
        ads_queueexpr(ACRX_T("(TNL_Start_Batch)\n"));
    }
    acDocManagerPtr()->popResourceHandle();
}

void StopModule() {
    if (!context) {
        return;
    }
    Trace("OvrixRemoveToolbar\n");
    OvrixRemoveToolbar();
    Trace("Remove reactor\n");
    acedEditorPtr()->removeReactor(&context->Reactor);
    Trace("Remove Commands\n");
    acedRegCmdsPtr()->removeGroup(CommandGroup);
    Trace("Done");
    printState("unloaded");
    if (CurrentUi().IsStepThroughVisible()) {
        CurrentUi().CloseStepThrough();
    }
    SetUi(nullptr);
    context.reset();
    ResetRun();
}
