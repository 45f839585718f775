// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CmdLine.h"

#include "acframe.h"
#include "dbmain.h"
#include "engine/Batch.h"
#include "engine/HostVariables.h"
#include "engine/record/TarnelData.h"
#include "log/Trace.h"

#include <ctime>

CmdLine::CmdLine() : StartTime(std::time(nullptr)) {}

void CmdLine::begin() {
    StartTime = std::time(nullptr);
    ++Depth;
}

void CmdLine::end() {
    if (Depth > 0) {
        --Depth;
    }
}

void CmdLine::databaseConstructed(AcDbDatabase* database) {
    if (database && TarnelData().BatchRunning) {
        database->disablePartialOpen();
    }
}

void CmdLine::commandWillStart(const ACHAR*) {
    begin();
}

void CmdLine::commandEnded(const ACHAR*) {
    end();
}

void CmdLine::commandCancelled(const ACHAR*) {
    end();
}

void CmdLine::commandFailed(const ACHAR*) {
    end();
}

void CmdLine::lispWillStart(const ACHAR*) {
    begin();
}

void CmdLine::lispEnded() {
    end();
}

void CmdLine::lispCancelled() {
    end();
}

void CmdLine::beginQuit() {
    Trace("CmdLine::beginQuit():ResetSystemVars\n");
    ResetSystemVars();
    // A host without a frame belongs to whoever started it, who knows what its death means for the run.
    if (acedGetAcadFrame() != nullptr) {
        LeaveRun();
    }
}
