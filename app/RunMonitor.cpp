#include "app/RunMonitor.h"

#include <poll.h>
#include <cerrno>
#include <utility>
#include <vector>

namespace {

using std::chrono::seconds;

/// A host that has said nothing of a run by then never will.
constexpr seconds kStartPatience{120};
/// For packing nothing more than an empty drawing away.
constexpr seconds kQuitPatience{60};
/// For cancelling the command in work.
constexpr seconds kCancelPatience{15};
constexpr int kRefreshMilliseconds = 200;
constexpr std::size_t kDeathsInARow = 3;
/// Cancels whatever runs, at any depth, as Esc would.
constexpr const char* kCancel = "\3\3\3\3\3\3(TNL_Cancel_Batch)\n";

}  // namespace

RunMonitor::RunMonitor(MonitorSettings settings, RunLedger* ledger, Progress* progress, Signals* signals)
    : settings(std::move(settings)), ledger(ledger), progress(progress), signals(signals) {}

RunMonitor::Outcome RunMonitor::Run(const std::string& start, const std::string& resume, std::string* error) {
    std::size_t deaths = 0;
    for (const std::string* commands = &start;; commands = &resume) {
        std::string cause;
        switch (LiveOnce(*commands, &cause)) {
            case Life::Finished:
                return Outcome::Ended;
            case Life::Interrupted:
                return Outcome::Interrupted;
            case Life::NeverBegan:
                *error = "the run could not start: " + cause;
                return Outcome::Broken;
            case Life::Died:
                break;
        }
        // A drawing that went well in between shows that the host as such works.
        deaths = settledInLife > 0 ? 1 : deaths + 1;
        if (!settings.Restart) {
            *error = "the host " + cause;
            return Outcome::Broken;
        }
        if (deaths == kDeathsInARow) {
            *error = "the host " + cause + "; that is the third time in a row, so the run is broken off";
            return Outcome::Broken;
        }
        if (ledger->Count(DrawingStatus::ToDo) == 0) {
            progress->Note("the host " + cause);
            return Outcome::Ended;
        }
        progress->Note("the host " + cause + "; it is started again for the rest");
    }
}

RunMonitor::Life RunMonitor::LiveOnce(const std::string& commands, std::string* cause) {
    HostProcess process;
    host = &process;
    listener = {};
    phase = Phase::Starting;
    lastStep = RunLedger::Clock::now();
    lastWords.clear();
    settledInLife = 0;
    hung = false;
    if (!process.Launch(settings.Files, settings.Place, cause)) {
        return Life::NeverBegan;
    }
    process.Send(commands);

    std::vector<std::string> lines;
    for (bool open = true; open;) {
        pollfd watched[] = {{process.OutputDescriptor(), POLLIN, 0},
                            {signals->Descriptor(), POLLIN, 0},
                            {process.InputDescriptor(), POLLOUT, 0}};
        poll(watched, 3, kRefreshMilliseconds);
        ReactToSignals();
        process.Flush();
        lines.clear();
        open = process.ReadLines(&lines);
        for (const std::string& line : lines) {
            Hear(line);
        }
        CheckPatience();
        progress->Refresh(*ledger);
    }

    const std::string end = process.Wait();
    host = nullptr;
    if (interrupts > 0) {
        ledger->Settle(RunLedger::Clock::now());
        return Life::Interrupted;
    }
    if (phase == Phase::Quitting) {
        return Life::Finished;
    }
    if (phase == Phase::Starting) {
        *cause = "the host " + (hung ? std::string("did not answer") : end) +
                 (lastWords.empty() ? "" : "; its last words: " + lastWords);
        return Life::NeverBegan;
    }
    *cause = hung ? "did not answer past the time limit and was ended" : end;
    if (const DrawingRecord* record = ledger->Settle(RunLedger::Clock::now(), *cause)) {
        *cause += " at " + record->Path;
        progress->Settled(*record);
    }
    return Life::Died;
}

void RunMonitor::Hear(const std::string& text) {
    const HostLine line = listener.Read(text);
    const auto now = RunLedger::Clock::now();
    if (const DrawingRecord* settled = ledger->Take(line, now)) {
        ++settledInLife;
        progress->Settled(*settled);
    }
    switch (line.What) {
        case HostLine::Kind::RunStarted:
            phase = Phase::Running;
            lastStep = now;
            break;
        case HostLine::Kind::File:
            lastStep = now;
            break;
        case HostLine::Kind::Alarm:
            progress->Alarm(line.Text);
            break;
        case HostLine::Kind::RunEnded:
            if (phase == Phase::Running) {
                phase = Phase::Quitting;
                lastStep = now;
                host->Send("QUIT\n");
            }
            break;
        case HostLine::Kind::Message:
        case HostLine::Kind::Talk:
            if (line.What == HostLine::Kind::Message &&
                line.Text.find(settings.Place.DataHome + "/") != std::string::npos) {
                complaint = line.Text;
            }
            if (phase == Phase::Starting) {
                lastWords = line.Text;
            }
            break;
        default:
            break;
    }
}

void RunMonitor::ReactToSignals() {
    const int count = signals->Take();
    if (count == 0) {
        return;
    }
    const bool first = interrupts == 0;
    interrupts += count;
    if (!first || count > 1 || phase == Phase::Starting) {
        host->Kill();
    } else if (phase == Phase::Running) {
        progress->Note("cancelling; once more to end at once");
        lastStep = RunLedger::Clock::now();
        host->Send(kCancel);
    }
}

void RunMonitor::CheckPatience() {
    const auto waited = RunLedger::Clock::now() - lastStep;
    bool over = false;
    if (phase == Phase::Starting) {
        over = waited > kStartPatience;
    } else if (phase == Phase::Quitting) {
        over = waited > kQuitPatience;
    } else if (interrupts > 0) {
        over = waited > kCancelPatience;
    } else {
        over = settings.MaxTime > 0 && waited > seconds(settings.MaxTime + settings.Grace);
    }
    if (over && !hung) {
        hung = true;
        host->Kill();
    }
}
