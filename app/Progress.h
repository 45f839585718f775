// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the user sees while a run goes on: one line that is written over and over on a terminal, else a plain
// line for each drawing that is settled, so that a log of the run reads well.
#include "app/RunLedger.h"

#include <string>

class Progress {
  public:
    /// waiting is the number of drawings that the run will take. Quiet shows nothing.
    Progress(std::size_t waiting, bool quiet);
    ~Progress();

    /// A drawing is settled.
    void Settled(const DrawingRecord& record);
    /// Draws the live line again; on anything but a terminal nothing.
    /// current is the drawing in work; null is none.
    void Refresh(const DrawingRecord* current);
    /// A drawing takes long.
    void Alarm(const std::string& path);
    /// A message in between, to standard error; shown even when quiet.
    void Note(const std::string& text);

  private:
    void eraseLine();

    std::size_t waiting;
    std::size_t settled = 0;
    std::size_t done = 0;
    bool quiet;
    bool terminal;
    bool lineShown = false;
    RunLedger::Clock::time_point started = RunLedger::Clock::now();
};

/// "7 s", "3 min 20 s", "2 h 5 min".
std::string DurationText(double seconds);
