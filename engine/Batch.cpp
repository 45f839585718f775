// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Batch.h"

#include "acdocman.h"
#include "acedads.h"
#include "engine/ConsoleUi.h"
#include "engine/FilePicker.h"
#include "engine/HostInput.h"
#include "engine/HostVariables.h"
#include "engine/record/HostText.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/Restartable.h"
#include "engine/RunState.h"
#include "engine/RunUi.h"
#include "engine/ScriptChain.h"
#include "engine/Siblings.h"
#include "engine/Watch.h"
#include "engine/WatchTimers.h"
#include "log/Trace.h"
#include "state/StateFile.h"

namespace {

/// The module's resources are in force while this stands.
class ResourceScope {
  public:
    ResourceScope() { acDocManagerPtr()->pushResourceHandle(); }
    ~ResourceScope() { acDocManagerPtr()->popResourceHandle(); }
    ResourceScope(const ResourceScope&) = delete;
    ResourceScope& operator=(const ResourceScope&) = delete;
};

/// From this release on the host draws its tab wrong after a modal dialog unless its window is set anew.
constexpr double RefreshFromRelease = 17.2;

double hostRelease() {
    ResBuf version;
    if (version.GetVar(QStringLiteral("acadver")) != RTNORM) {
        return 0;
    }
    const QString text = version.String(0);
    qsizetype length = 0;
    while (length < text.size() && (text[length].isDigit() || text[length] == QLatin1Char('.'))) {
        ++length;
    }
    return text.left(length).toDouble();
}

void afterCancel() {
    CTarnelData& data = TarnelData();
    if (data.DebugRequested || CurrentUi().IsKeyCaptureOn()) {
        data.DebugRequested = false;
        Trace("Call Debug Script\n");
        CurrentUi().OpenStepThrough();
    }
    if (hostRelease() >= RefreshFromRelease) {
        CurrentUi().RefreshActiveWindow();
    }
}

/// A drawing that did not end well has left the host's log on, and the new drawing that ends the run would
/// begin a log that belongs to nothing.
void turnLogOff() {
    ResBuf mode;
    if (mode.GetVar(QStringLiteral("LOGFILEMODE")) == RTNORM && mode.Integer(0) != 0) {
        acedCommand(RTSTR, ACRX_T("._logfileoff"), RTNONE);
    }
}

}  // namespace

void DoBatch() {
    const ResourceScope resources;
    CTarnelData& data = TarnelData();
    if (data.BatchRunning) {
        Cleanup();
        return;
    }
    if (CurrentUi().IsStepThroughVisible()) {
        Trace("KillDebugScript\n");
        CurrentUi().CloseStepThrough();
    }
    if (data.StateFile.isEmpty()) {
        Trace("Getting State File Name\n");
        ResolveStateFile();
    }
    Trace("Loading State\n");
    const bool loaded = LoadRunState();
    if (!Run().HasBegun && IsHostOfOneRun() && (!loaded || !RunFault().isEmpty())) {
        RefuseRun(RunFault());
        return;
    }
    Trace("Restoring Sys Vars\n");
    ResetSystemVars();
    Trace("Showing MainDlg\n");
    const RunUi::Answer answer = CurrentUi().RunMainDialog();
    const QString fault = answer == RunUi::Cancel ? QString() : ScriptFault();
    Trace("Saving State\n");
    const bool saved = SaveRunState();
    if (answer == RunUi::Cancel) {
        afterCancel();
        return;
    }
    if (!saved || !fault.isEmpty()) {
        RefuseRun(saved ? fault : RunFault());
        return;
    }
    Trace("Send Start Batch\n");
    SendToHost(StartString());
}

bool DoNextFile() {
    CTarnelData& data = TarnelData();
    // What the next drawing comes to could not be kept either.
    const bool broken = !Run().Unsaved.isEmpty();
    Trace("GetNextFile\n");
    QString path;
    if (broken || !GetNextFile(path)) {
        if (broken) {
            ConsoleLine(QStringLiteral("run broken off: ") + RunFault());
        }
        Trace("Cleanup\n");
        Cleanup();
        return false;
    }
    SetCurrentFileStatus(FailOpen);
    if (!Run().Unsaved.isEmpty()) {
        // It has not been opened.
        data.FileStatus[data.FileOrder[static_cast<std::size_t>(data.CurrentFile)]] = ToDo;
        return DoNextFile();
    }
    Trace("WatchNewFile\n");
    WatchNewFile(path);
    StartNextScript();
    return true;
}

namespace {

/// What a run leaves behind goes, and what has become of its files is on the disk.
void endRun() {
    CTarnelData& data = TarnelData();
    DeleteScripts();
    turnLogOff();
    Trace("CloseWatch\n");
    CloseWatch();
    if (data.TemporarilyLoadFromRegistry) {
        Trace("RemoveRestartable\n");
        RemoveRestartable();
    }
    data.BatchRunning = false;
    Trace("SaveState\n");
    SaveRunState();
    if (QString error; !SyncState(&error)) {
        ConsoleLine(error);
    }
}

}  // namespace

void Cleanup() {
    endRun();
    Trace("Start New Document\n");
    if (DrawingIsModified()) {
        acedCommand(RTSTR, ACRX_T("._new"), RTSTR, ACRX_T("y"), RTSTR, ACRX_T(""), RTNONE);
    } else {
        acedCommand(RTSTR, ACRX_T("._new"), RTSTR, ACRX_T(""), RTNONE);
    }
    LoadSiblings();
    Trace("Call DoBatch\n");
    DoBatch();
    // What is left of a script that has called the end itself would go on in the empty drawing.
    if (IsHostOfOneRun()) {
        SendToHost(BreakString());
    }
}

void LeaveRun() {
    if (!TarnelData().BatchRunning) {
        return;
    }
    SetCurrentFileStatus(Canceled);
    endRun();
}

void DoCancelBatch() {
    Trace("DoCancelBatch\n");
    SetCurrentFileStatus(Canceled);
    Trace("Cleanup\n");
    Cleanup();
    acedRetT();
    Trace("Return\n");
}
