// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Commands.h"

#include "app/FolderChange.h"
#include "app/FolderUse.h"
#include "app/NameText.h"
#include "app/RecordFile.h"
#include "app/RunJournal.h"
#include "app/RunLogs.h"
#include "app/RunRecord.h"
#include "app/RunReport.h"
#include "engine/record/TarnelData.h"
#include "state/StateDigest.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <unordered_map>

namespace fs = std::filesystem;

namespace {

/// The results in one folder.
struct Part {
    std::unique_ptr<DataFolder> Folder;
    std::optional<Shard> Share;
    /// The list that the share is of.
    ListMark List;
    /// Nothing when no run of the front was here.
    std::optional<RunDescription> Description;
    /// In the order of the run.
    std::vector<DrawingRecord> Records;
    /// One line when its logs are not whole; the results are taken all the same.
    std::string LogLoss;
};

ListMark markOfRecords(const std::vector<DrawingRecord>& records) {
    std::vector<std::string> paths;
    paths.reserve(records.size());
    for (const DrawingRecord& record : records) {
        paths.push_back(record.Path);
    }
    return MarkOf(paths);
}

std::string goOnCommand(const std::string& folder) {
    RunOptions options;
    options.DataDir = folder;
    return FollowUpCommand(options, "--resume");
}

/// Statuses come from the state, which is the truth; the rest from the journal, where it tells of the same.
bool readPart(const MergeOptions& options, const std::string& given, Part* part, std::string* error) {
    part->Folder = std::make_unique<DataFolder>(given);
    const DataFolder& folder = *part->Folder;
    if (!HoldsRun(folder)) {
        *error = folder.Path() + ": no run was started here";
        return false;
    }
    std::optional<RunDescription> description;
    CTarnelData state;
    if (!TakeWholeRun(part->Folder.get(), &description, error) ||
        !ReadRecord(folder.StateFile(), &state, error)) {
        return false;
    }
    const RunQueue queue = QueueOf(state);
    const std::size_t waiting = CountOf(queue, DrawingStatus::ToDo);
    if (waiting > 0 && !options.Unfinished) {
        *error = folder.Path() + ": " + std::to_string(waiting) + " of " + std::to_string(queue.size()) +
                 " drawings still wait; go on with " + goOnCommand(given) + ", or merge with --unfinished";
        return false;
    }
    RunLedger ledger(queue);
    if (description) {
        ledger.Recall(ReadJournal(folder, description->Id, queue.size()).Records);
        part->Share = description->Share;
        part->List = description->List;
    }
    part->Description = description;
    part->Records = ledger.Records();
    // Of a run that is not at its end the logs are in pieces.
    if (waiting == 0) {
        CheckKeptLogs(folder.Path(), part->Records, &part->LogLoss);
    }
    if (part->Share && !(markOfRecords(part->Records) == description->Queue)) {
        *error = folder.StateFile() + ": is not the queue of shard " + ShardText(*part->Share) +
                 " that was given to this folder; start the shard again";
        return false;
    }
    return true;
}

/// Where one part has a number, all must, each another one of the same count; and none may miss.
bool checkShares(const MergeOptions& options, std::vector<Part>* parts, std::string* error) {
    const auto marked =
        std::find_if(parts->begin(), parts->end(), [](const Part& part) { return part.Share.has_value(); });
    if (marked == parts->end()) {
        return true;
    }
    const unsigned count = marked->Share->Count;
    std::vector<const Part*> found(count);
    for (const Part& part : *parts) {
        if (!part.Share || part.Share->Count != count) {
            *error = part.Folder->Path() + ": holds " +
                     (part.Share ? "shard " + ShardText(*part.Share) : "no shard") + ", while " +
                     marked->Folder->Path() + " holds shard " + ShardText(*marked->Share);
            return false;
        }
        if (!(part.List == marked->List)) {
            *error = part.Folder->Path() + ": holds a shard of another list (" +
                     std::to_string(part.List.Count) + " drawings) than " + marked->Folder->Path() + " (" +
                     std::to_string(marked->List.Count) + ")";
            return false;
        }
        const Part*& place = found[part.Share->Number - 1];
        if (place) {
            *error = part.Folder->Path() + ": holds shard " + ShardText(*part.Share) + ", as " +
                     place->Folder->Path() + " does";
            return false;
        }
        place = &part;
    }
    const auto missing = std::find(found.begin(), found.end(), nullptr);
    if (missing != found.end() && !options.Unfinished) {
        *error = "shard " + std::to_string(missing - found.begin() + 1) + " of " + std::to_string(count) +
                 " is not among the folders; give it too, or merge with --unfinished";
        return false;
    }
    std::sort(parts->begin(), parts->end(),
              [](const Part& left, const Part& right) { return left.Share->Number < right.Share->Number; });
    return true;
}

/// One behind the other; shares by turns, as they were dealt out.
std::vector<DrawingRecord> joinRecords(const std::vector<Part>& parts) {
    std::vector<DrawingRecord> all;
    if (!parts.front().Share) {
        for (const Part& part : parts) {
            all.insert(all.end(), part.Records.begin(), part.Records.end());
        }
        return all;
    }
    bool more = true;
    for (std::size_t i = 0; more; ++i) {
        more = false;
        for (const Part& part : parts) {
            if (i < part.Records.size()) {
                all.push_back(part.Records[i]);
                more = true;
            }
        }
    }
    return all;
}

bool checkDoubles(const std::vector<Part>& parts, std::string* error) {
    std::unordered_map<std::string, const Part*> owners;
    for (const Part& part : parts) {
        for (const DrawingRecord& record : part.Records) {
            const auto [owner, isNew] = owners.emplace(record.Path, &part);
            if (!isNew && owner->second != &part) {
                *error = record.Path + ": stands in " + owner->second->Folder->Path() + " and in " +
                         part.Folder->Path();
                return false;
            }
        }
    }
    return true;
}

/// All shares together must be the list that they were cut from, drawing by drawing.
bool checkWhole(const MergeOptions& options, const std::vector<Part>& parts,
                const std::vector<DrawingRecord>& records, std::string* error) {
    const Part& first = parts.front();
    if (!first.Share || (options.Unfinished && parts.size() < first.Share->Count) ||
        markOfRecords(records) == first.List) {
        return true;
    }
    *error = "the shards hold " + std::to_string(records.size()) + " drawings and are not the list of " +
             std::to_string(first.List.Count) + " that they were cut from";
    return false;
}

/// Whoever goes on with the result has the script that all parts had, or else no word about it.
void setScript(const std::vector<Part>& parts, const CTarnelData& state, RunDescription* description) {
    const std::optional<RunDescription>& first = parts.front().Description;
    const std::string script = ScriptDigest(state).toStdString();
    const bool isOne = std::all_of(parts.begin(), parts.end(), [&](const Part& part) {
        return part.Description && part.Description->Script == script;
    });
    if (isOne) {
        description->Script = script;
        description->MaxTime = state.MaxTime;
        description->AlarmTime = state.AlarmTime;
        description->ReadOnly = state.ProcessReadOnly;
        description->Recover = first->Recover;
        description->Lenient = first->Lenient;
        description->MustSave = first->MustSave;
        description->HasHeading = first->HasHeading;
    }
}

/// State, logs and records take their places in one change.
bool writeMerged(const DataFolder& target, const std::optional<RunDescription>& before,
                 const std::vector<Part>& parts, const std::vector<DrawingRecord>& records,
                 std::string* error) {
    const FolderChange change(target);
    std::vector<std::string> folders;
    folders.reserve(parts.size());
    for (const Part& part : parts) {
        folders.push_back(part.Folder->Path());
    }
    RunQueue queue;
    queue.reserve(records.size());
    for (const DrawingRecord& record : records) {
        queue.push_back({record.Path, record.Status});
    }
    if (!change.Begin(error) || !MergeLogs(folders, change.Next(), PathsOf(queue), error)) {
        return false;
    }
    folders.insert(folders.begin(), target.Path());
    JoinTraces(folders, change.Next());
    CTarnelData state;
    if (!ReadRecord(parts.front().Folder->StateFile(), &state, error)) {
        return false;
    }
    SetQueue(&state, queue);
    RunDescription description = NewDescription();
    description.Queue = markOfRecords(records);
    setScript(parts, state, &description);
    description.OldJobs = before ? before->Jobs : 0;
    description.OldLogs = true;
    return WriteRecord(change.Next() + "/TarnelRunner.xml", state, error) &&
           WriteJournal(change.Next(), description.Id, records, {}, error) &&
           change.Commit(&description, error);
}

bool checkRecordFile(const MergeOptions& options, const DataFolder& target, const std::vector<Part>& parts,
                     const std::vector<DrawingRecord>& records, std::string* error) {
    std::vector<std::string> drawings;
    for (const DrawingRecord& record : records) {
        drawings.push_back(record.Path);
    }
    std::vector<std::string> folders = {target.Path()};
    for (const Part& part : parts) {
        folders.push_back(part.Folder->Path());
    }
    return CheckRecordSpares(options.JsonFile, drawings, folders, error);
}

ExitStatus refuse(ExitStatus status, const std::string& text) {
    Complain(text);
    return status;
}

}  // namespace

ExitStatus MergeRuns(const MergeOptions& options) {
    std::string error;
    DataFolder target(options.DataDir);
    for (auto folder = options.Folders.begin(); folder != options.Folders.end(); ++folder) {
        const std::string path = DataFolder(*folder).Path();
        std::error_code failure;
        if (fs::equivalent(path, target.Path(), failure)) {
            return refuse(WrongUsage,
                          path + ": the result cannot go where a part of it is; give another --data-dir");
        }
        if (std::any_of(options.Folders.begin(), folder, [&](const std::string& other) {
                return fs::equivalent(path, DataFolder(other).Path(), failure);
            })) {
            return refuse(WrongUsage, path + ": is given twice");
        }
    }
    if (!options.JsonFile.empty() && !CheckRecordTarget(options.JsonFile, &error)) {
        return refuse(WrongUsage, error);
    }
    std::vector<Part> parts(options.Folders.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (!readPart(options, options.Folders[i], &parts[i], &error)) {
            return refuse(BrokenOff, error);
        }
    }
    std::optional<RunDescription> before;
    if (!checkShares(options, &parts, &error) || !checkDoubles(parts, &error)) {
        return refuse(BrokenOff, error);
    }
    const std::vector<DrawingRecord> records = joinRecords(parts);
    if (!options.JsonFile.empty() && !checkRecordFile(options, target, parts, records, &error)) {
        return refuse(WrongUsage, error);
    }
    if (!checkWhole(options, parts, records, &error) || !TakeForNewRun(&target, &before, &error) ||
        !writeMerged(target, before, parts, records, &error) ||
        (!options.JsonFile.empty() && !WriteRecords(records, options.JsonFile, &error))) {
        return refuse(BrokenOff, error);
    }
    RunOptions report;
    report.DataDir = options.DataDir;
    report.Quiet = options.Quiet;
    PrintReport(records, report, std::nullopt);
    const bool allDone = std::all_of(records.begin(), records.end(), [](const DrawingRecord& record) {
        return record.Status == DrawingStatus::Done;
    });
    bool logsAreWhole = true;
    for (const Part& part : parts) {
        if (!part.LogLoss.empty()) {
            Complain(part.LogLoss);
            logsAreWhole = false;
        }
    }
    return !logsAreWhole ? BrokenOff : allDone ? AllDone : SomeNotDone;
}
