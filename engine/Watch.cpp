// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Watch.h"

#include "acdocman.h"
#include "acframe.h"
#include "engine/HostInput.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "engine/RunUi.h"
#include "engine/WatchTimers.h"
#include "log/RunLog.h"
#include "log/Trace.h"

#include <algorithm>
#include <memory>

namespace {
/// There from StartWatch to CloseWatch: the status is open.
std::unique_ptr<WatchTimers> timers;
}  // namespace

bool StartWatch() {
    const CTarnelData& data = TarnelData();
    acDocManagerPtr()->pushResourceHandle();
    OpenRunLog(data.DataDir);
    const auto waiting = std::count(data.FileStatus.begin(), data.FileStatus.end(), ToDo);
    Trace("Create status window\n");
    timers = std::make_unique<WatchTimers>();
    CurrentUi().OpenStatus(static_cast<int>(waiting));
    Trace("Set progress for status window\n");
    Trace("Center status window\n");
    Trace("Show status window\n");
    CurrentUi().ShowStatus();
    Trace("Start Watch done\n");
    acDocManagerPtr()->popResourceHandle();
    return true;
}

void WatchNewFile(const QString& path) {
    const CTarnelData& data = TarnelData();
    LogUnopenedFile({});
    // A script may drive the queue without a run; there is no status to show then.
    if (timers) {
        CurrentUi().ShowFile(path, static_cast<int>(std::max(data.MaxTime, data.AlarmTime)));
        timers->Start(data.AlarmTime, data.MaxTime);
    }
    acedPumpMessage();
    BeginFileInRunLog(path);
}

void CloseWatch() {
    CloseRunLog();
    if (!timers) {
        return;
    }
    timers.reset();
    CurrentUi().CloseStatus();
}

bool CheckWatch() {
    return false;
}

void CancelRun() {
    if (timers) {
        timers->KillAll();
    }
    SendToHost(CancelString());
}

void StopWatch() {
    timers.reset();
}
