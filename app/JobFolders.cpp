// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/JobFolders.h"

#include "app/FolderChange.h"
#include "app/HostJournal.h"
#include "app/NameText.h"
#include "app/RunLogs.h"
#include "app/RunRecord.h"
#include "engine/record/TarnelData.h"
#include "system/OwnFile.h"
#include "system/OwnFolder.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

namespace fs = std::filesystem;

namespace {

std::string jobState(const DataFolder& folder, std::size_t number) {
    return JobData(folder, number) + "/TarnelRunner.xml";
}

/// Folders of this name that the description does not know are not ours to use.
bool checkFree(const DataFolder& folder, std::size_t count, std::string* error) {
    for (std::size_t number = 1; number <= count; ++number) {
        std::error_code failure;
        const std::string home = JobHome(folder, number);
        if (fs::symlink_status(home, failure).type() != fs::file_type::not_found) {
            *error = home + ": is in the way of a host's folder; move it";
            return false;
        }
    }
    return true;
}

bool makeJob(const DataFolder& folder, std::size_t number, CTarnelData* record, const RunQueue& queue,
             const JobShare& places, std::string* error) {
    for (const std::string& made : {JobHome(folder, number), JobData(folder, number)}) {
        if (const int failure = files::MakeFolder(made)) {
            *error = made + ": the folder cannot be made: " + files::Because(failure);
            return false;
        }
    }
    if (!MakeHostLogFolder(JobData(folder, number), error)) {
        return false;
    }
    RunQueue share;
    std::vector<std::string> paths;
    for (const std::size_t place : places) {
        share.push_back(queue[place]);
        paths.push_back(queue[place].Path);
    }
    SetQueue(record, share);
    RunDescription own = NewDescription();
    own.Queue = MarkOf(paths);
    own.Places = places;
    return WriteRecord(jobState(folder, number), *record, error) &&
           WriteDescription(JobData(folder, number), own, error);
}

/// Lays what one host's share says over the queue.
bool gatherShare(const DataFolder& folder, std::size_t number, RunQueue* queue, std::string* error) {
    CTarnelData record;
    std::optional<RunDescription> own;
    if (!ReadRecord(jobState(folder, number), &record, error) ||
        !ReadDescription(JobData(folder, number), &own, error)) {
        return false;
    }
    const RunQueue share = QueueOf(record);
    bool fits = own && own->Places.size() == share.size();
    for (std::size_t i = 0; fits && i < share.size(); ++i) {
        const std::size_t place = own->Places[i];
        fits = place < queue->size() && (*queue)[place].Path == share[i].Path;
        if (fits && (*queue)[place].Status == DrawingStatus::ToDo) {
            (*queue)[place].Status = share[i].Status;
        }
    }
    if (!fits) {
        *error = jobState(folder, number) + ": is not the share that this host was given";
    }
    return fits;
}

/// The logs of all hosts, and what was set aside in the data folder, as one in the folder next.
bool gatherLogs(const DataFolder& folder, std::size_t jobs, const std::vector<std::string>& drawings,
                const std::string& next, std::string* error) {
    std::vector<std::string> folders;
    if (HasLogsAside(folder.Path())) {
        // What the data folder has under the usual names is then of the same run.
        folders.push_back(folder.Path());
    }
    for (std::size_t number = 1; number <= jobs; ++number) {
        // Of a host that ended well this finds nothing to pack.
        if (!SetLogsAside(JobData(folder, number), error)) {
            return false;
        }
        folders.push_back(JobData(folder, number));
    }
    if (!MergeLogs(folders, next, drawings, error)) {
        return false;
    }
    if (jobs > 0) {
        std::vector<std::string> traces = {folder.Path()};
        for (std::size_t number = 1; number <= jobs; ++number) {
            traces.push_back(JobData(folder, number));
        }
        JoinTraces(traces, next);
    }
    return true;
}

/// What front, module and host make in a host's folder, with what they write beside a file on the way.
bool isOwnName(const std::string& below) {
    constexpr std::array<std::string_view, 3> Folders = {"Ovrix", "Ovrix/logs", "Ovrix/logs/drafthost"};
    constexpr std::array<std::string_view, 11> Files = {
        "TarnelRunner.xml", "run.",         "tnl log", "TNLLog", "TNLapp.log", "script1.scr",
        "script2.scr",      "registry.ini", "host",    "tarnel", "unopened-"};
    if (std::find(Folders.begin(), Folders.end(), below) != Folders.end()) {
        return true;
    }
    const std::size_t slash = below.rfind('/');
    const std::string_view name = std::string_view(below).substr(slash == std::string::npos ? 0 : slash + 1);
    const std::string_view in = std::string_view(below).substr(0, slash == std::string::npos ? 0 : slash);
    return in == "Ovrix" ? std::any_of(Files.begin(), Files.end(),
                                       [name](std::string_view file) { return name.starts_with(file); })
                         : in == "Ovrix/logs/drafthost" &&
                               (name.ends_with(".log") || name.ends_with(std::string(".log") + CutLog));
}

}  // namespace

std::string JobHome(const DataFolder& folder, std::size_t number) {
    return folder.Path() + "/job-" + std::to_string(number);
}

std::string JobData(const DataFolder& folder, std::size_t number) {
    return JobHome(folder, number) + "/Ovrix";
}

bool MakeJobs(const DataFolder& folder, CTarnelData* record, const std::vector<JobShare>& shares,
              RunDescription* description, std::string* error) {
    if (!checkFree(folder, shares.size(), error)) {
        return false;
    }
    description->Jobs = shares.size();
    description->JobsReady = false;
    if (!WriteDescription(folder.Path(), *description, error)) {
        return false;
    }
    const RunQueue queue = QueueOf(*record);
    bool made = true;
    for (std::size_t i = 0; made && i < shares.size(); ++i) {
        made = makeJob(folder, i + 1, record, queue, shares[i], error);
    }
    SetQueue(record, queue);
    description->JobsReady = true;
    return made && WriteDescription(folder.Path(), *description, error);
}

bool GatherJobs(const DataFolder& folder, RunDescription* description, std::string* error) {
    // A call before this one may have made its change and have failed behind it.
    std::optional<RunDescription> found;
    if (!FinishChange(folder, &found, error)) {
        return false;
    }
    RunDescription after = *description = found.value_or(*description);
    const std::size_t jobs = after.Jobs;
    const bool ready = after.JobsReady;
    if (jobs == 0 && !HasLogsAside(folder.Path())) {
        return true;
    }
    const FolderChange change(folder);
    CTarnelData record;
    if (!ReadRecord(folder.StateFile(), &record, error) || !change.Begin(error)) {
        return false;
    }
    after.OldJobs = jobs;
    after.Jobs = 0;
    after.JobsReady = false;
    // Folders that were not all made have had no host.
    if (jobs > 0 && ready) {
        RunQueue queue = QueueOf(record);
        for (std::size_t number = 1; number <= jobs; ++number) {
            if (!gatherShare(folder, number, &queue, error)) {
                return false;
            }
        }
        SetQueue(&record, queue);
    }
    after.OldLogs = jobs == 0 || ready;
    if ((after.OldLogs && !gatherLogs(folder, jobs, PathsOf(QueueOf(record)), change.Next(), error)) ||
        !WriteRecord(change.Next() + "/TarnelRunner.xml", record, error) || !change.Commit(&after, error)) {
        return false;
    }
    *description = after;
    return true;
}

bool DropJobs(const DataFolder& folder, std::size_t count, std::string* error) {
    for (std::size_t number = 1; number <= count; ++number) {
        std::vector<std::string> left;
        ClearHostJournal(JobData(folder, number), files::Logs::Remove);
        if (!files::RemoveOwnFolder(JobHome(folder, number), isOwnName, &left, error)) {
            return false;
        }
        for (const std::string& path : left) {
            Complain(path + ": is not of this program and stays; move it");
        }
    }
    return true;
}
