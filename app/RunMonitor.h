// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Watches over a host that does a run. The host and the module keep their own time limits; this is for what
// they cannot do themselves: a host that dies on a drawing, or hangs where no limit reaches it, is started
// again on the rest of the queue, since the state on disk tells how far each drawing came. A monitor does its
// work in short steps and never waits, so that one loop can watch over several hosts.
#include "app/HostEvent.h"
#include "app/HostProcess.h"
#include "app/LogRests.h"
#include "app/Progress.h"
#include "app/RunLedger.h"
#include "app/Signals.h"

#include <poll.h>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct MonitorSettings {
    HostFiles Files;
    HostPlace Place;
    /// The file with the queue of this host.
    std::string State;
    /// What each host is told.
    std::string Start;
    /// Seconds; 0 is no limit, and then no host is taken for hanging.
    unsigned MaxTime = 60;
    unsigned Grace = 30;
    /// Start the host again when it dies.
    bool Restart = true;
    /// Called when a host has died, before the next one starts.
    std::function<void()> HostDied;
    /// Called when a drawing is settled, and when one is set back to wait, with its place in the ledger.
    std::function<void(std::size_t, const DrawingRecord&)> OnSettled;
    std::function<void(std::size_t)> OnTriedAgain;
    /// Drawings, by place, that have had their second attempt.
    std::vector<bool> TriedAgain;
};

class RunMonitor {
  public:
    enum class Outcome { Working, Ended, Interrupted, Broken };

    /// Starts the first host.
    RunMonitor(MonitorSettings settings, RunLedger* ledger, Progress* progress);

    Outcome Result() const { return outcome; }
    /// One line when the outcome is Broken.
    const std::string& Error() const { return error; }
    const RunLedger& Ledger() const { return *ledger; }
    /// The module's last complaint about a file of the data folder that it could not write or read; empty
    /// when there was none.
    const std::string& Complaint() const { return complaint; }
    /// One line when a host that ended in order has lost text of its logs; empty otherwise.
    const std::string& LogLoss() const { return logLoss; }
    /// Tries to write what the host could not write of its logs. False with one line.
    bool WriteLogRests(std::string* error) { return logRests.Write(error); }

    /// Adds what there is to poll for.
    void AddDescriptors(std::vector<pollfd>* watched) const;
    /// Takes what has come from the host and reacts to it, and to its silence or its end.
    void Step();
    /// Cancels the drawing in work and ends the run; the host is killed when it was asked before.
    void Interrupt();
    /// The same, since the run cannot go on: the drawing in work is not at fault and waits again.
    void BreakOff();
    /// The drawings that wait again, by place in the ledger, whatever the host has saved of them.
    const std::vector<std::size_t>& LeftWaiting() const { return leftWaiting; }

  private:
    /// What the host is at.
    enum class Phase { Starting, Running, Quitting };

    void launch();
    void hear(const HostEvent& event);
    void checkPatience();
    void hostEnded();
    void tell(const DrawingRecord& record);
    bool isOnlyBrokenOff(const DrawingRecord& record) const;
    std::string takeBack(const std::string& cause);
    void reactToDeath(const std::string& cause, bool began, bool again);

    MonitorSettings settings;
    RunLedger* ledger;
    Progress* progress;
    Outcome outcome = Outcome::Working;
    std::string error;
    /// In a row, each at another drawing.
    std::size_t deaths = 0;
    bool interrupted = false;
    /// By a fault, not by the user.
    bool isBrokenOff = false;
    std::vector<std::size_t> leftWaiting;
    /// Why the monitor itself interrupted the run; empty otherwise.
    std::string brokenBy;

    // Of the host that lives now.
    std::unique_ptr<HostProcess> host;
    Phase phase = Phase::Starting;
    RunLedger::Clock::time_point lastStep;
    std::string lastWords;
    bool lastWordsAreTheModules = false;
    std::size_t settledInLife = 0;
    bool hung = false;
    std::string complaint;
    /// The last thing that the host said of a log that it could not write.
    std::string logFault;
    std::string logLoss;
    LogRests logRests;
};

/// Works the queues of all monitors off. When one breaks off, so do the others. The worst outcome of all;
/// Broken comes with one line in error.
RunMonitor::Outcome WatchOver(std::vector<std::unique_ptr<RunMonitor>>& monitors, Progress* progress,
                              Signals* signals, std::string* error);
