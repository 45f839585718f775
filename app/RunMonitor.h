#pragma once
// Watches over the host that does a run. The host and the module keep their own time limits; this is for what
// they cannot do themselves: a host that dies on a drawing, or hangs where no limit reaches it, is started
// again on the rest of the queue, since the state on disk tells how far each drawing came.
#include "app/HostLine.h"
#include "app/HostProcess.h"
#include "app/Progress.h"
#include "app/RunLedger.h"
#include "app/Signals.h"

#include <string>

struct MonitorSettings {
    HostFiles Files;
    HostPlace Place;
    /// Seconds; 0 is no limit, and then no host is taken for hanging.
    unsigned MaxTime = 60;
    unsigned Grace = 30;
    /// Start the host again when it dies.
    bool Restart = true;
};

class RunMonitor {
  public:
    enum class Outcome { Ended, Interrupted, Broken };

    RunMonitor(MonitorSettings settings, RunLedger* ledger, Progress* progress, Signals* signals);

    /// Works the queue off. start is what the first host is told, resume each later one. Broken comes with
    /// one line in error.
    Outcome Run(const std::string& start, const std::string& resume, std::string* error);

    /// The module's last complaint about a file of the data folder that it could not write or read; empty
    /// when there was none.
    const std::string& Complaint() const { return complaint; }

  private:
    /// How the life of one host ended.
    enum class Life { Finished, Interrupted, NeverBegan, Died };
    /// What the host is at.
    enum class Phase { Starting, Running, Quitting };

    Life LiveOnce(const std::string& commands, std::string* cause);
    void Hear(const std::string& text);
    void ReactToSignals();
    void CheckPatience();

    MonitorSettings settings;
    RunLedger* ledger;
    Progress* progress;
    Signals* signals;

    // Of the host that lives now.
    HostProcess* host = nullptr;
    HostListener listener;
    Phase phase = Phase::Starting;
    RunLedger::Clock::time_point lastStep;
    std::string lastWords;
    std::size_t settledInLife = 0;
    bool hung = false;
    int interrupts = 0;
    std::string complaint;
};
