// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/WatchTimers.h"

#include "engine/HostInput.h"
#include "engine/RunState.h"
#include "engine/RunUi.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int FlashPeriod = 500;
constexpr int SecondPeriod = 1000;

int milliseconds(unsigned seconds) {
    constexpr unsigned Most = std::numeric_limits<int>::max() / 1000;
    return static_cast<int>(std::min(seconds, Most)) * 1000;
}

}  // namespace

WatchTimers::WatchTimers() {
    alarm.setSingleShot(true);
    timeout.setSingleShot(true);
    alarm.setTimerType(Qt::PreciseTimer);
    timeout.setTimerType(Qt::PreciseTimer);
    connect(&alarm, &QTimer::timeout, this, &WatchTimers::onAlarm);
    connect(&timeout, &QTimer::timeout, this, &WatchTimers::onTimeout);
    connect(&flash, &QTimer::timeout, this, &WatchTimers::onFlash);
    connect(&seconds, &QTimer::timeout, this, [] { CurrentUi().StepFileTime(); });
}

void WatchTimers::Start(unsigned alarmTime, unsigned maxTime) {
    alarm.stop();
    timeout.stop();
    flash.stop();
    Run().TimeIsOver = false;
    if (alarmTime != 0) {
        alarm.start(milliseconds(alarmTime));
    }
    if (maxTime != 0) {
        timeout.start(milliseconds(maxTime));
    }
    if (alarmTime != 0 || maxTime != 0) {
        seconds.start(SecondPeriod);
    }
}

void WatchTimers::KillAll() {
    alarm.stop();
    timeout.stop();
    flash.stop();
    seconds.stop();
}

void WatchTimers::onAlarm() {
    CurrentUi().Alarm();
    flash.start(FlashPeriod);
    CurrentUi().Flash(true);
    flashPhase = false;
}

void WatchTimers::onTimeout() {
    KillAll();
    Run().TimeIsOver = true;
    SendToHost(TimeoutString());
}

void WatchTimers::onFlash() {
    CurrentUi().Flash(flashPhase);
    flashPhase = !flashPhase;
}
