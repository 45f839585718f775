// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The four timers of a run: alarm, time limit, flashing and seconds. They belong to one drawing each and are
// set anew for the next one.
#include <QObject>
#include <QTimer>

class WatchTimers : public QObject {
    Q_OBJECT
  public:
    WatchTimers();
    /// Starts the time of a drawing; limits in seconds, 0 is none.
    void Start(unsigned alarmTime, unsigned maxTime);
    /// Ends all four.
    void KillAll();

  private:
    void onAlarm();
    void onTimeout();
    void onFlash();

    QTimer alarm;
    QTimer timeout;
    QTimer flash;
    QTimer seconds;
    bool flashPhase = false;
};
