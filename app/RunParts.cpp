// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunParts.h"

#include "app/HostJournal.h"
#include "app/JobFolders.h"
#include "app/NameText.h"
#include "app/RunLogs.h"

#include <numeric>

namespace {

/// What a host that died has left of its log is kept for the end of the run, what it has left beside drawings
/// is removed.
std::function<void()> keepLogs(const std::string& folder) {
    return [folder] {
        std::string error;
        const bool kept = SetLogsAside(folder, &error);
        if (!kept) {
            Complain(error);
        }
        ClearHostJournal(folder, kept ? files::Logs::Remove : files::Logs::Keep);
    };
}

/// What the host is told to start a run over what waits in the state: only commands and LISP functions of the
/// module, as a person could type them. Queue, script and limits stand in the state already. Nothing is sent
/// ahead beyond the start, since a script that waits for input would take it for its answer.
std::string runCommands(bool recover) {
    return std::string(recover ? "(Tarnel_SetRecoverMode T)\n" : "") + "TARNEL\nRun\n";
}

/// What does not depend on where the host works.
void setManners(const RunOptions& options, const RunDescription& description, HostPlace* place) {
    place->BreakLinks = options.BreakLinks;
    place->MaxMemory = options.MaxMemory;
    place->Lenient = description.Lenient;
    place->MustSave = description.MustSave;
}

void addPart(RunParts* parts, const RunQueue& queue, JobShare places, RunJournal* journal,
             const RunPlan& plan, MonitorSettings settings) {
    RunQueue share;
    for (const std::size_t place : places) {
        share.push_back(queue[place]);
        settings.TriedAgain.push_back(plan.Journal.TriedAgain[place]);
    }
    settings.Start = runCommands(plan.Description.Recover);
    settings.OnSettled = [journal, places](std::size_t place, const DrawingRecord& record) {
        journal->Settled(places[place], record);
    };
    settings.OnTriedAgain = [journal, places](std::size_t place) { journal->TriedAgain(places[place]); };
    parts->Ledgers.push_back(std::make_unique<RunLedger>(share, plan.Description.HasHeading ? 1 : 0));
    parts->Settings.push_back(std::move(settings));
    parts->Places.push_back(std::move(places));
}

}  // namespace

RunParts OneHost(const RunOptions& options, const DataFolder& folder, const RunPlan& plan,
                 RunJournal* journal, MonitorSettings common, std::string* error) {
    if (!MakeHostLogFolder(folder.Path(), error)) {
        return {};
    }
    common.Place = {folder.Home(), options.DataDir.empty() ? "" : folder.Path() + "/registry.ini",
                    HostStateHome(folder.Path()), folder.LockDescriptors(), ""};
    common.Place.Journal = HostJournal(folder.Path());
    setManners(options, plan.Description, &common.Place);
    common.State = folder.StateFile();
    common.Place.Run = plan.Digest;
    common.HostDied = keepLogs(folder.Path());
    const RunQueue queue = QueueOf(plan.Record);
    JobShare all(queue.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    RunParts parts;
    addPart(&parts, queue, std::move(all), journal, plan, std::move(common));
    return parts;
}

RunParts SeveralHosts(const RunOptions& options, const DataFolder& folder, RunPlan* plan, RunJournal* journal,
                      const MonitorSettings& common, std::string* error) {
    const RunQueue queue = QueueOf(plan->Record);
    const std::vector<JobShare> shares = SplitBySize(queue, options.Jobs);
    RunParts parts;
    if (!MakeJobs(folder, &plan->Record, shares, &plan->Description, error)) {
        return parts;
    }
    for (std::size_t number = 1; number <= shares.size(); ++number) {
        const std::string data = JobData(folder, number);
        MonitorSettings settings = common;
        settings.State = data + "/TarnelRunner.xml";
        settings.Place = {JobHome(folder, number), data + "/registry.ini", HostStateHome(data),
                          folder.LockDescriptors(), ""};
        settings.Place.Journal = HostJournal(data);
        setManners(options, plan->Description, &settings.Place);
        settings.HostDied = keepLogs(data);
        addPart(&parts, queue, shares[number - 1], journal, *plan, std::move(settings));
    }
    return parts;
}
