// SPDX-License-Identifier: GPL-3.0-or-later
// The start of a run: what is asked and set before the first drawing.
#include "acdocman.h"
#include "acedads.h"
#include "acframe.h"
#include "engine/Batch.h"
#include "engine/FileInWork.h"
#include "engine/HostVariables.h"
#include "engine/record/FileQueue.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/Restartable.h"
#include "engine/RunState.h"
#include "engine/RunUi.h"
#include "engine/Siblings.h"
#include "engine/Watch.h"
#include "log/Trace.h"
#include "state/StateFile.h"

#include <QFile>

#include <memory>

namespace {

void closeOtherDocuments(void*) {
    AcApDocManager* documents = acDocManagerPtr();
    const AcApDocument* current = documents->curDocument();
    const std::unique_ptr<AcApDocumentIterator> walk(documents->newAcApDocumentIterator());
    for (; !walk->done(); walk->step()) {
        AcApDocument* document = walk->document();
        if (document == current) {
            continue;
        }
        Trace("closeDocument\n");
        documents->closeDocument(document);
        acedPumpMessage();
    }
}

/// A run needs the host with one document. False when the user wants to keep the others.
bool leaveOneDocument() {
    if (acDocManagerPtr()->documentCount() <= 1) {
        return true;
    }
    if (!Run().Scheduled) {
        const auto answer = CurrentUi().Ask(
            TarnelData().ProductName,
            QStringLiteral("Tarnel operates in Single Document mode,\nbut will return to Multiple "
                           "Document mode upon completion.\n\nWould you like to close all documents "
                           "at this time?"),
            RunUi::YesNo);
        if (answer != RunUi::Yes) {
            Trace("Multile documents, user bailed\n");
            return false;
        }
    }
    Trace("executeInApplicationContext\n");
    acDocManagerPtr()->executeInApplicationContext(closeOtherDocuments, nullptr);
    return true;
}

/// Saves the current drawing, and lets the user answer whatever the host asks for that.
void saveCurrentDrawing() {
    ResBuf filedia;
    if (filedia.GetVar(QStringLiteral("FILEDIA")) == RTNORM && filedia.Integer(0) != 0) {
        acedInitDialog(true);
    }
    acedCommand(RTSTR, ACRX_T("._qsave"), RTNONE);
    while (HostTextVariable("CMDNAMES") == QLatin1String("QSAVE")) {
        acedPumpMessage();
        acedCommand(RTSTR, ACRX_T("\\"), RTNONE);
    }
}

/// False when the user breaks the start off. Changes that are not saved are dropped by the first open.
bool settleChanges() {
    Trace("Grab DBMod\n");
    if (!DrawingIsModified() || Run().Scheduled) {
        return true;
    }
    const auto answer = CurrentUi().Ask(
        TarnelData().ProductName, QStringLiteral("Save changes to %1?").arg(HostTextVariable("DWGNAME")),
        RunUi::YesNoCancel);
    if (answer == RunUi::Yes) {
        saveCurrentDrawing();
    }
    if (answer == RunUi::Yes || answer == RunUi::No) {
        return true;
    }
    Trace("User aborted during save document\n");
    return false;
}

/// All that a run needs before its first drawing. False when it is refused; nothing is tidied then.
bool prepareRun() {
    if (!leaveOneDocument() || !settleChanges()) {
        return false;
    }
    UnloadSiblings();
    Trace("SaveSystemVars\n");
    SaveSystemVars(SdiVar | CmddiaVar | FilediaVar | CmdechoVar, 0, 0, 0, 1);
    Trace("Delete log zip\n");
    QFile::remove(DataFile(QStringLiteral("TNLLog.zip")));
    Trace("EnsureRestartable\n");
    EnsureRestartable();
    Trace("StartWatch\n");
    if (StartWatch()) {
        return true;
    }
    CurrentUi().Ask(
        TarnelData().ProductName,
        QStringLiteral("Could not launch the TNLWatch process that is used to monitor\nthe progress of the "
                       "Tarnel. Batch aborted."),
        RunUi::OkOnly);
    Trace("Could not launch TNLWatch process, aborting\n");
    return false;
}

}  // namespace

bool DoStartBatch() {
    Trace("DoStartBatch\n");
    CTarnelData& data = TarnelData();
    if (data.StateFile.isEmpty()) {
        ResolveStateFile();
    }
    Trace("LoadState\n");
    const bool loaded = LoadRunState();
    if (!data.BatchRunning && (!RunFault().isEmpty() || (IsHostOfOneRun() && !loaded))) {
        RefuseRun(RunFault());
        return false;
    }
    if (QString error; !data.BatchRunning && !SyncState(&error)) {
        RefuseRun(error);
        return false;
    }
    const FileInWork inWork(data);
    BuildFileOrder(data);
    inWork.FindAgain(data);
    Run().AwaitsItsScript = false;
    if (!data.BatchRunning) {
        data.BatchRunning = true;
        // The host died in the run before; what it had set is not what this run must put back.
        if (data.SysVarsSaved) {
            Trace("Restoring Sys Vars\n");
            ResetSystemVars();
        }
        if (!prepareRun()) {
            return false;
        }
        Run().HasBegun = true;
    }
    Trace("DoNextFile\n");
    DoNextFile();
    return true;
}
