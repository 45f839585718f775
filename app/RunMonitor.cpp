// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunMonitor.h"

#include "app/LogParts.h"
#include "app/QueueEntry.h"
#include "app/RunRecord.h"
#include "engine/record/TarnelData.h"
#include "system/OwnFile.h"

#include <utility>

namespace {

using std::chrono::seconds;

/// A host that has said nothing of a run by then never will.
constexpr seconds StartPatience{120};
/// For packing nothing more than an empty drawing away.
constexpr seconds QuitPatience{30};
/// For cancelling the command in work.
constexpr seconds CancelPatience{15};
constexpr int RefreshMilliseconds = 200;
constexpr std::size_t DeathsInARow = 3;
/// Cancels whatever runs, at any depth, as Esc would.
constexpr const char* Cancel = "\3\3\3\3\3\3(TNL_Cancel_Batch)\n";
/// A script that has called the end of its run itself must not answer it, and nothing of it is kept.
constexpr const char* Quit = "\3\3\3\3\3\3QUIT\n_Y\n";

/// How the module says that it ends a run before its end, and then why.
constexpr std::string_view BrokenOff = "run broken off: ";

/// The module complains of a log or of the trace: what is missing there shows in no status.
bool aboutLogs(const std::string& complaint) {
    return complaint.find("/Ovrix/TNLapp.log: ") != std::string::npos ||
           complaint.find("/Ovrix/tnl log.html: ") != std::string::npos ||
           complaint.find("/Ovrix/TNLLog.zip: ") != std::string::npos ||
           complaint.find("/Ovrix/unopened-") != std::string::npos;
}

/// The module complains of one of the scripts that it makes for each drawing.
bool aboutScript(const std::string& complaint) {
    return complaint.find("/Ovrix/script1.scr: ") != std::string::npos ||
           complaint.find("/Ovrix/script2.scr: ") != std::string::npos;
}

}  // namespace

RunMonitor::RunMonitor(MonitorSettings settings, RunLedger* ledger, Progress* progress)
    : settings(std::move(settings)),
      ledger(ledger),
      progress(progress),
      logRests(HostLogFolder(files::FolderOf(this->settings.State))) {
    launch();
}

void RunMonitor::launch() {
    host = std::make_unique<HostProcess>();
    phase = Phase::Starting;
    lastStep = RunLedger::Clock::now();
    lastWords.clear();
    lastWordsAreTheModules = false;
    settledInLife = 0;
    hung = false;
    std::string cause;
    // Each host works on what stood there for the first one or on nothing.
    if (settings.Place.Run.empty()) {
        settings.Place.Run = RunDigestOf(settings.State, &cause);
    }
    if (settings.Place.Run.empty() || !host->Launch(settings.Files, settings.Place, &cause)) {
        error = "the run could not start: " + cause;
        outcome = Outcome::Broken;
        host.reset();
        return;
    }
    host->Send(settings.Start);
}

void RunMonitor::AddDescriptors(std::vector<pollfd>* watched) const {
    if (host) {
        host->AddDescriptors(watched);
    }
}

void RunMonitor::Step() {
    if (!host) {
        return;
    }
    host->Flush();
    std::vector<std::string> events;
    std::vector<std::string> stray;
    const bool lives = host->Read(&events, &stray);
    for (const std::string& line : events) {
        if (const auto event = ReadEvent(line)) {
            hear(*event);
        }
    }
    for (const std::string& line : stray) {
        hear({HostEvent::Kind::Talk, line});
    }
    if (lives) {
        checkPatience();
    } else {
        hostEnded();
    }
}

void RunMonitor::hostEnded() {
    const HostEnd end = host->Wait();
    host.reset();
    std::string ignored;
    // What does not go now is tried again at the end of the run.
    logRests.Write(&ignored);
    if (end.LostLog) {
        logLoss = logFault.empty() ? "a log of the host is not whole: it could not be written" : logFault;
    }
    if (interrupted) {
        if (const DrawingRecord* record = ledger->Settle(RunLedger::Clock::now())) {
            tell(*record);
        }
        outcome = brokenBy.empty() ? Outcome::Interrupted : Outcome::Broken;
        error = brokenBy.empty() ? "" : brokenBy + "; the run is broken off";
    } else if (phase == Phase::Quitting) {
        outcome = brokenBy.empty() ? Outcome::Ended : Outcome::Broken;
        error = brokenBy;
    } else if (phase == Phase::Running) {
        const std::string cause = hung ? "stopped answering, killed" : end.Text;
        std::string place;
        const bool outside = settings.Restart && !hung && end.FromOutside();
        const std::string again = outside ? takeBack(cause) : std::string();
        if (const DrawingRecord* record = ledger->Settle(RunLedger::Clock::now(), cause)) {
            place = " at " + record->Path;
            tell(*record);
        }
        if (!again.empty()) {
            place = " at " + again;
        }
        reactToDeath(cause + place, true, !again.empty());
    } else if (!hung && end.Signal != 0) {
        reactToDeath(end.Text, false, false);
    } else {
        error = "the run could not start: the host " + (hung ? std::string("did not answer") : end.Text) +
                (lastWords.empty() ? "" : "; its last words: " + lastWords);
        outcome = Outcome::Broken;
    }
}

/// Whoever kills a host from outside says nothing against the drawing that is in work: what the disk has as
/// begun and not ended is set back to wait, once for each drawing. The drawing's own name; empty when there
/// is none, or it was set back before.
std::string RunMonitor::takeBack(const std::string& cause) {
    CTarnelData record;
    std::string failure;
    if (!ReadRecord(settings.State, &record, &failure)) {
        progress->Note(failure);
        return {};
    }
    const RunQueue saved = QueueOf(record);
    ledger->CatchUp(saved);
    std::vector<std::size_t> left = ledger->LeftInWork(saved);
    std::erase_if(left, [this](std::size_t place) { return settings.TriedAgain[place]; });
    if (left.empty()) {
        return {};
    }
    for (const std::size_t place : left) {
        record.FileStatus[record.FileOrder[place]] = ToDo;
    }
    if (!WriteRecord(settings.State, record, &failure)) {
        progress->Note(failure);
        return {};
    }
    for (const std::size_t place : left) {
        settings.TriedAgain[place] = true;
        ledger->TakeBack(place, cause);
        settings.OnTriedAgain(place);
    }
    return ledger->Records()[left.front()].Path;
}

/// Its end came with the host's cancel or death and says nothing of the drawing.
bool RunMonitor::isOnlyBrokenOff(const DrawingRecord& record) const {
    return isBrokenOff &&
           (record.Status == DrawingStatus::Canceled ||
            (!host && (record.Status == DrawingStatus::Error || record.Status == DrawingStatus::FailOpen)));
}

/// A drawing is settled.
void RunMonitor::tell(const DrawingRecord& record) {
    if (isOnlyBrokenOff(record)) {
        leftWaiting.push_back(ledger->PlaceOf(record));
        ledger->LetWait(leftWaiting.back());
        return;
    }
    progress->Settled(record);
    settings.OnSettled(ledger->PlaceOf(record), record);
}

void RunMonitor::reactToDeath(const std::string& cause, bool began, bool again) {
    // A drawing that went well in between shows that the host as such works, and one that is tried again
    // has not cost anything yet.
    deaths = (settledInLife > 0 ? 0 : deaths) + (again ? 0 : 1);
    if (settings.HostDied) {
        settings.HostDied();
    }
    if (!settings.Restart) {
        error = "the host " + cause;
        outcome = Outcome::Broken;
    } else if (deaths == DeathsInARow) {
        error = "the host " + cause + "; that is the third time in a row, so the run is broken off";
        outcome = Outcome::Broken;
    } else if (began && ledger->Count(DrawingStatus::ToDo) == 0) {
        progress->Note("the host " + cause);
        outcome = Outcome::Ended;
    } else {
        progress->Note("the host " + cause + "; it is started again for " +
                       (again ? "this drawing, once, and the rest" : "the rest"));
        launch();
    }
}

void RunMonitor::hear(const HostEvent& event) {
    using Kind = HostEvent::Kind;
    const auto now = RunLedger::Clock::now();
    for (const DrawingRecord* settled : ledger->Take(event, now)) {
        ++settledInLife;
        tell(*settled);
    }
    switch (event.What) {
        case Kind::RunStarted:
            phase = Phase::Running;
            lastStep = now;
            break;
        case Kind::File:
            lastStep = now;
            break;
        case Kind::Alarm:
            progress->Alarm(event.Text);
            break;
        case Kind::Log:
            logRests.Take(event.Rest);
            break;
        case Kind::RunEnded:
            if (phase == Phase::Running) {
                phase = Phase::Quitting;
                lastStep = now;
                host->Send(Quit);
            }
            break;
        case Kind::Message:
        case Kind::Talk:
            // Only believed when the host's end says the same.
            if (event.Text.starts_with("The log ") &&
                event.Text.find(" is not whole: ") != std::string::npos) {
                logFault = event.Text;
            }
            if (event.What == Kind::Message && aboutLogs(event.Text)) {
                progress->Note(event.Text);
            }
            if (event.What == Kind::Message &&
                event.Text.find(settings.Place.DataHome + "/") != std::string::npos) {
                complaint = event.Text;
                // Without its script no drawing can be run, and each would cost the whole time limit.
                if (phase == Phase::Running && !interrupted && aboutScript(event.Text)) {
                    brokenBy = event.Text;
                    BreakOff();
                }
            }
            if (event.What == Kind::Message && event.Text.starts_with(BrokenOff)) {
                brokenBy = event.Text.substr(BrokenOff.size());
            }
            // The module knows best why no run begins; what the host says then is about the words of this
            // side.
            if (phase == Phase::Starting && (event.What == Kind::Message || !lastWordsAreTheModules)) {
                lastWords = event.Text;
                lastWordsAreTheModules = event.What == Kind::Message;
            }
            break;
        default:
            break;
    }
}

void RunMonitor::Interrupt() {
    if (!host) {
        return;
    }
    if (interrupted || phase == Phase::Starting) {
        host->Kill();
    } else if (phase == Phase::Running) {
        lastStep = RunLedger::Clock::now();
        host->Send(Cancel);
    }
    interrupted = true;
}

void RunMonitor::BreakOff() {
    isBrokenOff = isBrokenOff || !interrupted;
    Interrupt();
}

void RunMonitor::checkPatience() {
    const auto waited = RunLedger::Clock::now() - lastStep;
    bool over = false;
    if (phase == Phase::Starting) {
        over = waited > StartPatience;
    } else if (phase == Phase::Quitting) {
        over = waited > (interrupted ? CancelPatience : QuitPatience);
    } else if (interrupted) {
        over = waited > CancelPatience;
    } else {
        over = settings.MaxTime > 0 && waited > seconds(settings.MaxTime + settings.Grace);
    }
    if (over && !hung) {
        hung = true;
        host->Kill();
    }
}

RunMonitor::Outcome WatchOver(std::vector<std::unique_ptr<RunMonitor>>& monitors, Progress* progress,
                              Signals* signals, std::string* error) {
    using Outcome = RunMonitor::Outcome;
    bool interrupted = false;
    bool broken = false;
    for (;;) {
        std::vector<pollfd> watched = {{signals->Descriptor(), POLLIN, 0}};
        for (const auto& monitor : monitors) {
            monitor->AddDescriptors(&watched);
        }
        if (watched.size() == 1) {
            break;
        }
        poll(watched.data(), watched.size(), RefreshMilliseconds);
        if (const int count = signals->Take(); count > 0) {
            if (!interrupted && count == 1) {
                progress->Note("cancelling; once more to end at once");
            }
            interrupted = true;
            for (int i = 0; i < count; ++i) {
                for (const auto& monitor : monitors) {
                    monitor->Interrupt();
                }
            }
        }
        const DrawingRecord* current = nullptr;
        for (const auto& monitor : monitors) {
            monitor->Step();
            current = monitor->Ledger().Current() ? monitor->Ledger().Current() : current;
            if (monitor->Result() == Outcome::Broken && !broken) {
                broken = true;
                *error = monitor->Error();
                for (const auto& other : monitors) {
                    other->BreakOff();
                }
            }
        }
        progress->Refresh(current);
    }
    for (const auto& monitor : monitors) {
        if (monitor->Result() == Outcome::Broken && !broken) {
            broken = true;
            *error = monitor->Error();
        }
    }
    return interrupted ? Outcome::Interrupted : broken ? Outcome::Broken : Outcome::Ended;
}
