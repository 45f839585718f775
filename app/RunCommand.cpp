// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Commands.h"

#include "app/FolderChange.h"
#include "app/FolderUse.h"
#include "app/HostJournal.h"
#include "app/JobFolders.h"
#include "app/NameText.h"
#include "app/RecordFile.h"
#include "app/RunLogs.h"
#include "app/RunMonitor.h"
#include "app/RunParts.h"
#include "app/RunPlan.h"
#include "app/RunRecord.h"
#include "app/RunReport.h"
#include "app/ScriptCheck.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

ExitStatus refuse(ExitStatus status, const std::string& text) {
    Complain(text);
    return status;
}

ExitStatus statusOf(const RunLedger& ledger, RunMonitor::Outcome outcome) {
    if (outcome == RunMonitor::Outcome::Interrupted) {
        return Interrupted;
    }
    if (outcome == RunMonitor::Outcome::Broken) {
        return BrokenOff;
    }
    return ledger.Count(DrawingStatus::Done) == ledger.Records().size() ? AllDone : SomeNotDone;
}

/// The drawings that were worked on in this run: their paths where the filter holds.
template <class Filter>
std::vector<std::string> workedOn(const RunLedger& ledger, Filter filter) {
    std::vector<std::string> drawings;
    for (const DrawingRecord& record : ledger.Records()) {
        if (record.Seconds && record.Status != DrawingStatus::ToDo &&
            record.Status != DrawingStatus::Locked && filter(record)) {
            drawings.push_back(record.Path);
        }
    }
    return drawings;
}

/// What several hosts, or one after the other, have left becomes one queue, one log and one archive. A
/// drawing whose host died before it came to the log gets its entry here.
bool bringTogether(const DataFolder& folder, RunDescription* description, const RunLedger& ledger,
                   std::string* error) {
    if ((description->Jobs == 0 && !SetUnfinishedAside(folder.Path(), error)) ||
        !GatherJobs(folder, description, error)) {
        return false;
    }
    const std::vector<std::string> missing =
        MissingIn(folder.Path(), workedOn(ledger, [](const DrawingRecord& record) {
                      return !record.Host.empty() || record.Status == DrawingStatus::FailOpen;
                  }));
    return missing.empty() ||
           (SetEntriesAside(folder.Path(), missing, error) && GatherJobs(folder, description, error));
}

/// What was in work when a fault broke the run off waits again. When that cannot be written, the journal does
/// not know its end, and whoever resumes the run sets it back.
bool setBackLeftWaiting(const std::string& file, const std::vector<std::unique_ptr<RunMonitor>>& monitors,
                        const std::vector<JobShare>& places, CTarnelData* saved, std::string* error) {
    RunQueue queue = QueueOf(*saved);
    bool changed = false;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        for (const std::size_t place : monitors[i]->LeftWaiting()) {
            DrawingStatus& status = queue.at(places[i][place]).Status;
            changed = changed || status != DrawingStatus::ToDo;
            status = DrawingStatus::ToDo;
        }
    }
    if (!changed) {
        return true;
    }
    SetQueue(saved, queue);
    return WriteRecord(file, *saved, error);
}

/// Works off what waits and brings what is on disk together with what was told. logged are the drawings that
/// stand in the log before.
RunMonitor::Outcome work(const DataFolder& folder, RunParts parts, RunDescription* description,
                         std::vector<std::string> logged, RunLedger* ledger, Progress* progress,
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
    ClearHostJournal(folder.Path(), files::Logs::Keep);
    const auto breakOff = [&](const std::string& text) {
        progress->Note(text);
        outcome = RunMonitor::Outcome::Broken;
    };
    if (outcome == RunMonitor::Outcome::Broken) {
        progress->Note(error);
    }
    std::string complaint;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        ledger->Adopt(*parts.Ledgers[i], parts.Places[i]);
        complaint = complaint.empty() ? monitors[i]->Complaint() : complaint;
    }
    CTarnelData saved;
    const bool ended = outcome == RunMonitor::Outcome::Ended;
    const auto writeLogRests = [&] {
        return std::all_of(monitors.begin(), monitors.end(),
                           [&](const auto& monitor) { return monitor->WriteLogRests(&error); });
    };
    bool together = writeLogRests() && bringTogether(folder, description, *ledger, &error);
    if (!together) {
        progress->Note(error + "; it is tried again");
        if (!writeLogRests()) {
            breakOff(error);
        }
        together = bringTogether(folder, description, *ledger, &error);
    }
    const std::vector<std::string> worked = workedOn(*ledger, [](const DrawingRecord&) { return true; });
    logged.insert(logged.end(), worked.begin(), worked.end());
    if (!ended) {
        logged.clear();
    }
    for (const auto& monitor : monitors) {
        if (!monitor->LogLoss().empty()) {
            breakOff(monitor->LogLoss());
        }
    }
    if (!together || !CheckLogs(folder.Path(), logged, &error)) {
        breakOff(error);
    } else {
        // All is packed that belongs to a drawing: what is left is of documents that a script had open
        // besides.
        ClearHostJournal(folder.Path(), files::Logs::Remove);
    }
    if (!ReadRecord(folder.StateFile(), &saved, &error) ||
        !setBackLeftWaiting(folder.StateFile(), monitors, parts.Places, &saved, &error)) {
        breakOff(error);
    } else if (!ledger->Reconcile(QueueOf(saved))) {
        breakOff(
            (complaint.empty() ? folder.StateFile() + ": the state was not saved to its end" : complaint) +
            "; what stands there is older than the list below");
    }
    // A host that died may have saved more than it had told.
    for (const DrawingRecord* record : waiting) {
        if (record->Status != DrawingStatus::ToDo && !record->Settled) {
            progress->Settled(*record);
        }
    }
    if (outcome == RunMonitor::Outcome::Ended && ledger->Count(DrawingStatus::ToDo) > 0) {
        breakOff((complaint.empty() ? "" : complaint + "; ") +
                 std::string("the run ended while drawings still wait"));
    }
    return outcome;
}

void printWaiting(const RunQueue& queue) {
    for (const QueueEntry& entry : queue) {
        if (entry.Status == DrawingStatus::ToDo) {
            PrintName(entry.Path);
        }
    }
}

/// A look at the queue disturbs no run that is at work on it, unless what an earlier one has left must be
/// brought together first.
bool takeForLook(DataFolder* folder, std::optional<RunDescription>* description, std::string* error) {
    return ReadDescription(folder->Path(), description, error) &&
           (!*description || ((*description)->Jobs == 0 && !HasChange(**description)) ||
            TakeWholeRun(folder, description, error));
}

/// Before anything is written: where the records go is no file that this run or the one before needs.
bool checkRecordFile(const RunOptions& options, const DataFolder& folder, const RunPlan& plan,
                     std::string* error) {
    std::vector<std::string> inputs = PathsOf(QueueOf(plan.Record));
    inputs.insert(inputs.end(), options.Lists.begin(), options.Lists.end());
    for (const std::string& script : {options.Script, plan.Record.LastScriptFile.toStdString()}) {
        if (!script.empty()) {
            inputs.push_back(script);
        }
    }
    return options.JsonFile.empty() || CheckRecordSpares(options.JsonFile, inputs, {folder.Path()}, error);
}

/// What can be seen wrong in the script, before a new run starts. The first lines are enough here.
void tellOfScript(const RunOptions& options, const RunPlan& plan, const std::string& host) {
    constexpr std::size_t MostTold = 20;
    // The record holds the script without the line that describes it.
    const QByteArray script = (plan.Description.HasHeading ? ";\n" : "") + plan.Record.Script;
    const std::vector<std::string> lines = CheckScriptLines(ScriptName(options), script, host);
    for (std::size_t i = 0; i < std::min(lines.size(), MostTold); ++i) {
        Complain(lines[i]);
    }
    if (lines.size() > MostTold) {
        Complain(std::to_string(lines.size() - MostTold) + " more like these: tarnel check " +
                 ScriptName(options));
    }
}

/// From the options to a run that stands on the disk and may begin, or the exit status.
ExitStatus prepare(const RunOptions& options, DataFolder* folder, HostFiles* files, RunPlan* plan,
                   std::string* error) {
    std::optional<RunDescription> description;
    const auto check = [&] {
        return !options.JsonFile.empty() && !CheckRecordTarget(options.JsonFile, error) ? WrongUsage
               : !options.DryRun && !files->Find(error)                                 ? BrokenOff
                                                                                        : AllDone;
    };
    if (options.KeepsQueue()) {
        ExitStatus status = check();
        // Nothing is made where nothing is.
        if (status == AllDone && !HoldsRun(*folder)) {
            *error = folder->Path() + ": no run was started here, so none can go on";
            return BrokenOff;
        }
        if (status == AllDone) {
            status = (options.DryRun ? takeForLook(folder, &description, error)
                                     : TakeWholeRun(folder, &description, error))
                         ? PlanToGoOn(options, *folder, description, plan, error)
                         : BrokenOff;
        }
        if (status == AllDone && !checkRecordFile(options, *folder, *plan, error)) {
            status = WrongUsage;
        }
        if (status != AllDone || options.DryRun) {
            return status;
        }
        if (!CommitToGoOn(options, *folder, plan, error) ||
            (options.Resume && !SetLogsAside(folder->Path(), error))) {
            return BrokenOff;
        }
        return AllDone;
    }
    ExitStatus status = PlanNewRun(options, plan, error);
    status = status == AllDone ? check() : status;
    if (status == AllDone && !checkRecordFile(options, *folder, *plan, error)) {
        status = WrongUsage;
    }
    if (status != AllDone || options.DryRun) {
        return status;
    }
    if (options.CheckScript && !options.Quiet) {
        tellOfScript(options, *plan, files->Host);
    }
    // What an earlier run has told is not what this one does, should it not come to its start.
    std::error_code none;
    const std::filesystem::path json(options.JsonFile);
    if (std::filesystem::is_regular_file(std::filesystem::symlink_status(json, none))) {
        std::filesystem::remove(json, none);
    }
    return TakeForNewRun(folder, &description, error) && CommitNewRun(*folder, description, plan, error)
               ? AllDone
               : BrokenOff;
}

}  // namespace

ExitStatus RunDrawings(const RunOptions& options) {
    std::string error;
    DataFolder folder(options.DataDir);
    MonitorSettings settings;
    RunPlan plan;
    if (const ExitStatus status = prepare(options, &folder, &settings.Files, &plan, &error);
        status != AllDone) {
        return refuse(status, error);
    }
    const RunQueue queue = QueueOf(plan.Record);
    if (options.DryRun) {
        printWaiting(queue);
        return AllDone;
    }
    // The logs of an earlier run's dead host that this one goes on with have been packed.
    ClearHostJournal(folder.Path(), files::Logs::Remove);
    settings.MaxTime = plan.Record.MaxTime;
    settings.Grace = options.Grace;
    settings.Restart = options.Monitor;

    const auto started = RunLedger::Clock::now();
    RunLedger ledger(queue);
    auto outcome = RunMonitor::Outcome::Ended;
    RunJournal journal;
    const std::size_t waiting = ledger.Count(DrawingStatus::ToDo);
    const bool goesOn = options.Resume || waiting == 0;
    std::vector<std::string> logged = goesOn ? LoggedEarlier(plan) : std::vector<std::string>();
    if (waiting > 0) {
        if (!journal.Open(folder, plan.Description.Id, &error)) {
            return refuse(BrokenOff, error);
        }
        const bool several = options.Jobs > 1 && waiting > 1;
        RunParts parts = several ? SeveralHosts(options, folder, &plan, &journal, settings, &error)
                                 : OneHost(options, folder, plan, &journal, settings, &error);
        if (parts.Ledgers.empty()) {
            return refuse(BrokenOff, error);
        }
        Signals signals;
        Progress progress(waiting, options.Quiet);
        outcome = work(folder, std::move(parts), &plan.Description, std::move(logged), &ledger, &progress,
                       &signals);
    } else if (!GatherJobs(folder, &plan.Description, &error)) {
        return refuse(BrokenOff, error);
    } else if (!CheckLogs(folder.Path(), logged, &error)) {
        Complain(error);
        outcome = RunMonitor::Outcome::Broken;
    }
    ledger.Recall(plan.Refused);
    if (goesOn) {
        ledger.Recall(plan.Journal.Records);
    } else {
        ledger.StartLog();
    }
    PrintReport(ledger.Records(), options,
                std::chrono::duration<double>(RunLedger::Clock::now() - started).count());
    const std::vector<bool> triedAgain = ReadJournal(folder, plan.Description.Id, queue.size()).TriedAgain;
    const NotedWrite noted(folder.Path());
    // Either is worth having when the other has no room.
    std::string journalError;
    const bool journalStands =
        WriteJournal(folder.Path(), plan.Description.Id, ledger.Records(), triedAgain, &journalError);
    if (!options.JsonFile.empty() && !WriteRecords(ledger.Records(), options.JsonFile, &error)) {
        return refuse(BrokenOff, error);
    }
    if (!journalStands) {
        return refuse(BrokenOff, journalError);
    }
    return statusOf(ledger, outcome);
}
