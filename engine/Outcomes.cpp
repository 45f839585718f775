// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Outcomes.h"

#include "acedads.h"
#include "engine/Batch.h"
#include "engine/HostVariables.h"
#include "engine/record/FileQueue.h"
#include "engine/record/HostText.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/report/Report.h"
#include "engine/RunState.h"
#include "log/RunLog.h"
#include "log/Trace.h"
#include "state/DrawingName.h"

#include <QJsonObject>

namespace {

/// The leading "_y" drops the changes of the drawing before, the trailing one opens read-only.
int openDocument(const QString& path, bool modified, bool readOnly) {
    const ACHAR* file = HostText(path);
    if (modified && readOnly) {
        return acedCommand(RTSTR, ACRX_T("._open"), RTSTR, ACRX_T("_y"), RTSTR, file, RTSTR, ACRX_T("_y"),
                           RTNONE);
    }
    if (modified) {
        return acedCommand(RTSTR, ACRX_T("._open"), RTSTR, ACRX_T("_y"), RTSTR, file, RTNONE);
    }
    if (readOnly) {
        return acedCommand(RTSTR, ACRX_T("._open"), RTSTR, file, RTSTR, ACRX_T("_y"), RTNONE);
    }
    return acedCommand(RTSTR, ACRX_T("._open"), RTSTR, file, RTNONE);
}

int newDocument(bool modified) {
    if (modified) {
        return acedCommand(RTSTR, ACRX_T("._new"), RTSTR, ACRX_T("_y"), RTSTR, ACRX_T(""), RTNONE);
    }
    return acedCommand(RTSTR, ACRX_T("._new"), RTSTR, ACRX_T(""), RTNONE);
}

/// The file in work is settled, and the next one is picked. What is left of the script must not settle that
/// one too, be it behind the call in the same expression or in a file that no next script has taken over.
bool goOn() {
    Run().AwaitsItsScript = true;
    const bool goesOn = DoNextFile();
    if (!goesOn) {
        Run().AwaitsItsScript = false;
    }
    return goesOn;
}

/// The shape that the reports of a failure share. True when the run goes on.
bool endFile(const char* trace, FileStatusValue status, bool byTime = false) {
    Trace(trace);
    if (Run().AwaitsItsScript && !byTime) {
        acedRetT();
        return true;
    }
    // A script may report in the middle of a command, which would take the start of the next script as its
    // answer.
    if (!HostTextVariable("CMDNAMES").isEmpty()) {
        acedCommand(RTNONE);
    }
    SetCurrentFileStatus(status);
    Trace("Call DoNextFile\n");
    const bool goesOn = goOn();
    if (goesOn) {
        Trace("SaveState\n");
        SaveRunState();
    } else {
        Trace("Cleanup\n");
    }
    acedRetT();
    return goesOn;
}

}  // namespace

void DoScriptStart() {
    Trace("DoScriptStart\n");
    CTarnelData& data = TarnelData();
    Run().AwaitsItsScript = false;
    const std::uint32_t entry = data.FileOrder[static_cast<std::size_t>(data.CurrentFile)];
    const QString path = EntryPath(data, entry);
    const bool modified = DrawingIsModified();
    int result = RTNORM;
    if (!data.RecoverMode && IsDrawingName(path)) {
        Trace("Open document\n");
        result = openDocument(path, modified, data.OpenReadOnly);
    } else {
        Trace("Start New Document\n");
        result = newDocument(modified);
    }
    if (result != RTNORM) {
        LogUnopenedFile(HostTextVariable("LASTPROMPT"));
        // When the file before was refused too, this one was given Error ahead of its turn, below.
        if (data.FileStatus[entry] != FailOpen) {
            SetCurrentFileStatus(FailOpen);
        }
        // The file keeps FailOpen. With none left the run has ended in there, and ends once more here: a
        // second new drawing and a second main dialog are what users of refused last files know.
        Trace("Call DoNextFile\n");
        if (!goOn()) {
            Trace("Cleanup\n");
            Cleanup();
            acedRetT();
            return;
        }
        // The next file is marked ahead of its own start. Its line in the run log comes with that: the log
        // that the host has here is of another drawing.
        SetCurrentFileStatus(Error);
        acedRetT();
        Trace("Return\n");
        return;
    }
    Trace("Turn on logfile\n");
    acedCommand(RTSTR, ACRX_T("._logfileon"), RTNONE);
    Trace("WatchNewLogFile\n");
    ResBuf logFile;
    logFile.GetVar(QStringLiteral("logfilename"));
    WatchNewLogFile(logFile.IsEmpty() ? QString() : logFile.String(0));
    SetCurrentFileStatus(Error);
    acedRetT();
    Trace("Return\n");
}

void DoScriptSetVars() {
    Trace("DoScriptSetVars\n");
    SetScriptVariables();
    acedRetT();
    Trace("Return\n");
}

bool DoScriptComplete() {
    if (Run().AwaitsItsScript) {
        Trace("DoScriptComplete\n");
        acedRetT();
        Trace("Return\n");
        return true;
    }
    const QString waiting = HostTextVariable("CMDNAMES");
    if (!waiting.isEmpty()) {
        // A script that ends in the middle of a command has not run to its end, and what the chain sends next
        // would be taken as the answer. The time limit ends the drawing, as with every script that stops.
        Trace("DoScriptComplete\n");
        acedCommand(RTNONE);
        HostPrint(QStringLiteral("\n%1: the script ends while %2 waits for an answer.\n")
                      .arg(TarnelData().ProductName, waiting));
        acedRetVoid();
        return false;
    }
    if (TarnelData().BatchRunning && Run().MustSave && DrawingHasChanges()) {
        const QString text = QStringLiteral("the script has ended and left changes that nothing has saved");
        HostPrint(QStringLiteral("\n%1: %2.\n").arg(TarnelData().ProductName, text));
        Report({{QStringLiteral("event"), QStringLiteral("unsaved")}, {QStringLiteral("text"), text}});
        endFile("DoScriptComplete\n", Error);
        return true;
    }
    Trace("DoScriptComplete\nTurn log off\n");
    acedCommand(RTSTR, ACRX_T("._logfileoff"), RTNONE);
    if (!TarnelData().BatchRunning) {
        acedRetT();
        Trace("Return\n");
        return true;
    }
    SetCurrentFileStatus(Done);
    Trace("Call DoNextFile\n");
    Trace("SaveState\n");
    SaveRunState();
    const bool goesOn = goOn();
    acedRetT();
    if (goesOn) {
        Trace("Return\n");
    }
    return true;
}

void DoScriptError() {
    endFile("DoScriptError\n", Error);
}

void DoScriptTimeout() {
    // The time limit also ends a file whose script never begins.
    if (endFile("DoScriptTimeout\n", Timeout, Run().TimeIsOver)) {
        Trace("Return\n");
    }
}

void DoScriptOpenTimeout() {
    endFile("DoScriptOpenTimeout\n", FailOpen);
}
