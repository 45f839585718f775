#include "app/RunCommand.h"

#include "app/DataFolder.h"
#include "app/DrawingList.h"
#include "app/HostCommands.h"
#include "app/HostNames.h"
#include "app/QueueFile.h"
#include "app/RunMonitor.h"
#include "app/RunReport.h"

#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

ExitStatus Refuse(ExitStatus status, const std::string& text) {
    std::fprintf(stderr, "tarnel: %s\n", text.c_str());
    return status;
}

/// The module takes a script that it cannot read for an empty one, so it is looked at before.
bool CheckScript(const std::string& script, std::string* error) {
    std::error_code failure;
    if (fs::is_directory(script, failure)) {
        *error = script + ": this is a folder, not a script";
        return false;
    }
    if (!std::ifstream(script)) {
        *error = script + ": the script cannot be read: " + std::strerror(errno);
        return false;
    }
    return true;
}

/// What the queue on disk will be once --retry has set drawings back.
void ApplyRetry(RunOptions::RetryKind retry, std::vector<QueueEntry>* queue) {
    for (QueueEntry& entry : *queue) {
        if (retry == RunOptions::RetryKind::All ||
            (retry == RunOptions::RetryKind::Failed && entry.Status != DrawingStatus::Done)) {
            entry.Status = DrawingStatus::ToDo;
        }
    }
}

/// The queue of the run: what is on disk, or what the options name.
ExitStatus BuildQueue(const RunOptions& options, const DataFolder& folder, std::vector<QueueEntry>* queue,
                      unsigned* maxTime) {
    std::string error;
    if (!options.Script.empty() && !CheckScript(options.Script, &error)) {
        return Refuse(WrongUsage, error);
    }
    if (options.KeepsQueue()) {
        QueueFile state;
        if (!fs::exists(folder.StateFile())) {
            return Refuse(BrokenOff, folder.Path() + ": no run was started here, so none can go on");
        }
        if (!state.Load(folder.StateFile(), &error)) {
            return Refuse(BrokenOff, error);
        }
        *queue = state.Entries();
        *maxTime = options.MaxTime.value_or(state.MaxTime());
        ApplyRetry(options.Retry, queue);
        return AllDone;
    }
    const std::vector<std::string> drawings = CollectDrawings(options, &error);
    if (drawings.empty()) {
        return Refuse(WrongUsage, error);
    }
    for (const std::string& drawing : drawings) {
        queue->push_back({drawing, DrawingStatus::ToDo});
    }
    *maxTime = options.MaxTime.value_or(60);
    return AllDone;
}

/// A state that cannot be read is moved away before the module would put a new one over it.
bool MakeRoomForState(const DataFolder& folder, std::string* error) {
    std::string cause;
    QueueFile state;
    if (!fs::exists(folder.StateFile()) || state.Load(folder.StateFile(), &cause)) {
        return true;
    }
    const std::string kept = folder.KeepStateAside(error);
    if (kept.empty()) {
        return false;
    }
    std::fprintf(stderr, "tarnel: %s; it is kept as %s\n", cause.c_str(), kept.c_str());
    return true;
}

/// Gives a new queue the names under which the host opens the drawings.
bool NameForHost(HostNames* names, std::vector<QueueEntry>* queue, std::string* error) {
    names->Clear();
    for (QueueEntry& entry : *queue) {
        entry.Path = names->ForHost(entry.Path, error);
        if (entry.Path.empty()) {
            return false;
        }
    }
    return true;
}

ExitStatus StatusOf(const RunLedger& ledger, RunMonitor::Outcome outcome) {
    if (outcome == RunMonitor::Outcome::Interrupted) {
        return Interrupted;
    }
    if (outcome == RunMonitor::Outcome::Broken) {
        return BrokenOff;
    }
    return ledger.Count(DrawingStatus::Done) == ledger.Records().size() ? AllDone : SomeNotDone;
}

}  // namespace

ExitStatus RunDrawings(const RunOptions& options) {
    std::string error;
    DataFolder folder(options.DataDir);
    HostNames names(folder.Path());
    std::vector<QueueEntry> queue;
    unsigned maxTime = 0;
    if (const ExitStatus refused = BuildQueue(options, folder, &queue, &maxTime); refused != AllDone) {
        return refused;
    }
    if (options.DryRun) {
        for (const QueueEntry& entry : queue) {
            if (entry.Status == DrawingStatus::ToDo) {
                std::printf("%s\n", names.ForUser(entry.Path).c_str());
            }
        }
        return AllDone;
    }
    MonitorSettings settings;
    if (!options.JsonFile.empty() && !CheckJsonTarget(options.JsonFile, &error)) {
        return Refuse(WrongUsage, error);
    }
    if (!settings.Files.Find(&error) || !folder.Lock(&error) ||
        (!options.KeepsQueue() && !MakeRoomForState(folder, &error))) {
        return Refuse(BrokenOff, error);
    }
    if (!options.KeepsQueue() && !NameForHost(&names, &queue, &error)) {
        return Refuse(BrokenOff, error);
    }
    settings.Place = {folder.Home(), options.DataDir.empty() ? "" : folder.Path() + "/registry.ini",
                      folder.LockDescriptor()};
    settings.MaxTime = maxTime;
    settings.Grace = options.Grace;
    settings.Restart = options.Monitor;

    const auto started = RunLedger::Clock::now();
    RunLedger ledger(queue, names);
    auto outcome = RunMonitor::Outcome::Ended;
    if (const std::size_t waiting = ledger.Count(DrawingStatus::ToDo); waiting > 0) {
        std::vector<std::string> drawings;
        for (const QueueEntry& entry : queue) {
            drawings.push_back(entry.Path);
        }
        Signals signals;
        Progress progress(waiting, options.Quiet);
        RunMonitor monitor(std::move(settings), &ledger, &progress, &signals);
        outcome =
            monitor.Run(options.KeepsQueue() ? ContinueCommands(options) : StartCommands(options, drawings),
                        RestartCommands(options), &error);
        if (outcome == RunMonitor::Outcome::Broken) {
            progress.Note(error);
        }
        QueueFile saved;
        if (!saved.Load(folder.StateFile(), &error)) {
            progress.Note(error);
            outcome = RunMonitor::Outcome::Broken;
        } else if (!ledger.Reconcile(saved.Entries())) {
            progress.Note((monitor.Complaint().empty()
                               ? folder.StateFile() + ": the state was not saved to its end"
                               : monitor.Complaint()) +
                          "; what stands there is older than the list below");
            outcome = RunMonitor::Outcome::Broken;
        }
    }
    PrintReport(ledger.Records(), options,
                std::chrono::duration<double>(RunLedger::Clock::now() - started).count());
    if (!options.JsonFile.empty() && !WriteJson(ledger.Records(), options.JsonFile, &error)) {
        return Refuse(BrokenOff, error);
    }
    return StatusOf(ledger, outcome);
}
