#include "app/RunCommand.h"

#include "app/DataFolder.h"
#include "app/DrawingList.h"
#include "app/FolderUse.h"
#include "app/JobFolders.h"
#include "app/QueueFile.h"
#include "app/RecordFile.h"
#include "app/RunLogs.h"
#include "app/RunMonitor.h"
#include "app/RunParts.h"
#include "app/RunReport.h"
#include "app/Shard.h"
#include "app/StateText.h"

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
    std::vector<std::string> notes;
    const std::vector<std::string> drawings = CollectDrawings(options, &notes, &error);
    for (const std::string& note : notes) {
        if (!options.Quiet) {
            std::fprintf(stderr, "tarnel: %s\n", note.c_str());
        }
    }
    if (drawings.empty()) {
        return Refuse(WrongUsage, error);
    }
    for (const std::string& drawing : options.Share ? TakeShare(drawings, *options.Share) : drawings) {
        queue->push_back({drawing, DrawingStatus::ToDo});
    }
    *maxTime = options.MaxTime.value_or(60);
    return AllDone;
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

/// What several hosts, or one after the other, have left becomes one queue, one log and one archive.
bool BringTogether(const DataFolder& folder, std::string* error) {
    return GatherJobs(folder, error) &&
           (!HasLogsAside(folder.Path()) || MergeLogs({folder.Path()}, folder.Path(), error));
}

/// Works off what waits and brings what is on disk together with what was told.
RunMonitor::Outcome Work(const DataFolder& folder, RunParts parts, RunLedger* ledger, Progress* progress,
                         Signals* signals) {
    std::string error;
    std::vector<const DrawingRecord*> waiting;
    for (const DrawingRecord& record : ledger->Records()) {
        if (record.Status == DrawingStatus::ToDo) {
            waiting.push_back(&record);
        }
    }
    std::vector<std::unique_ptr<RunMonitor>> monitors;
    for (std::size_t i = 0; i < parts.Ledgers.size(); ++i) {
        monitors.push_back(
            std::make_unique<RunMonitor>(std::move(parts.Settings[i]), parts.Ledgers[i].get(), progress));
    }
    auto outcome = WatchOver(monitors, progress, signals, &error);
    const auto breakOff = [&](const std::string& text) {
        progress->Note(text);
        outcome = RunMonitor::Outcome::Broken;
    };
    if (outcome == RunMonitor::Outcome::Broken) {
        progress->Note(error);
    }
    std::string complaint;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        ledger->Adopt(*parts.Ledgers[i]);
        complaint = complaint.empty() ? monitors[i]->Complaint() : complaint;
    }
    if (!BringTogether(folder, &error)) {
        breakOff(error);
    }
    QueueFile saved;
    if (!saved.Load(folder.StateFile(), &error)) {
        breakOff(error);
    } else if (!ledger->Reconcile(saved.Entries())) {
        breakOff(
            (complaint.empty() ? folder.StateFile() + ": the state was not saved to its end" : complaint) +
            "; what stands there is older than the list below");
    }
    // A host that died may have saved more than it had told.
    for (const DrawingRecord* record : waiting) {
        if (record->Status != DrawingStatus::ToDo) {
            progress->Settled(*record);
        }
    }
    return outcome;
}

}  // namespace

ExitStatus RunDrawings(const RunOptions& options) {
    std::string error;
    DataFolder folder(options.DataDir);
    MonitorSettings settings;
    std::vector<QueueEntry> queue;
    const auto take = [&] {
        return options.KeepsQueue()
                   ? TakeToGoOn(&folder, options.Resume, &error)
                   : TakeForNewQueue(&folder, &error) && MarkShard(folder, options.Share, &error);
    };
    // Results that wait in the folders of several hosts belong to the queue that is read below.
    const bool first = options.KeepsQueue() && HasJobs(folder);
    if (first && !take()) {
        return Refuse(BrokenOff, error);
    }
    if (const ExitStatus refused = BuildQueue(options, folder, &queue, &settings.MaxTime);
        refused != AllDone) {
        return refused;
    }
    if (options.DryRun) {
        for (const QueueEntry& entry : queue) {
            if (entry.Status == DrawingStatus::ToDo) {
                std::printf("%s\n", entry.Path.c_str());
            }
        }
        return AllDone;
    }
    if (!options.JsonFile.empty() && !CheckRecordTarget(options.JsonFile, &error)) {
        return Refuse(WrongUsage, error);
    }
    if (!settings.Files.Find(&error) || (!first && !take())) {
        return Refuse(BrokenOff, error);
    }
    // Without drawings no host writes the state, and a share without any must still be known as finished.
    if (queue.empty() && (!WriteQueue(folder.StateFile(), folder.StateFile(), queue, &error) ||
                          !WriteSettings(folder.StateFile(), options, &error))) {
        return Refuse(BrokenOff, error);
    }
    settings.Grace = options.Grace;
    settings.Restart = options.Monitor;

    const auto started = RunLedger::Clock::now();
    RunLedger ledger(queue);
    auto outcome = RunMonitor::Outcome::Ended;
    if (const std::size_t waiting = ledger.Count(DrawingStatus::ToDo); waiting > 0) {
        const bool several = options.Jobs > 1 && waiting > 1;
        RunParts parts = several ? SeveralHosts(options, folder, queue, settings, &error)
                                 : OneHost(options, folder, queue, settings);
        if (parts.Ledgers.empty()) {
            return Refuse(BrokenOff, error);
        }
        Signals signals;
        Progress progress(waiting, options.Quiet);
        outcome = Work(folder, std::move(parts), &ledger, &progress, &signals);
    } else if (!BringTogether(folder, &error)) {
        return Refuse(BrokenOff, error);
    }
    // The run that this one goes on with may have been killed before it had any.
    std::vector<DrawingRecord> earlier;
    if (options.Resume && ReadRecords(RecordFile(folder), &earlier, &error)) {
        ledger.Recall(earlier);
    }
    PrintReport(ledger.Records(), options,
                std::chrono::duration<double>(RunLedger::Clock::now() - started).count());
    if (!WriteRecords(ledger.Records(), RecordFile(folder), &error) ||
        (!options.JsonFile.empty() && !WriteRecords(ledger.Records(), options.JsonFile, &error))) {
        return Refuse(BrokenOff, error);
    }
    return StatusOf(ledger, outcome);
}
