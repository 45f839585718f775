// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RunGuard.h"

#include "acedads.h"
#include "engine/HostVariables.h"
#include "engine/record/HostText.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"

bool RefusesCommand() {
    if (!IsHostOfOneRun() || !TarnelData().BatchRunning) {
        return false;
    }
    HostPrint(QStringLiteral("\n%1: a script cannot change, begin or cancel the run that it is part of.\n")
                  .arg(TarnelData().ProductName));
    return true;
}

bool RefusesSetting() {
    ResBuf arguments;
    arguments.GetArgs();
    return !arguments.IsEmpty() && RefusesCommand();
}

bool RefusesCancel() {
    return ScriptIsActive() && RefusesCommand();
}
