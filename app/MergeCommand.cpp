#include "app/MergeCommand.h"

#include "app/FolderUse.h"
#include "app/JobFolders.h"
#include "app/QueueFile.h"
#include "app/RecordFile.h"
#include "app/RunLogs.h"
#include "app/RunReport.h"
#include "app/Shard.h"
#include "app/StateText.h"

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
    /// In the order of the run.
    std::vector<DrawingRecord> Records;
};

std::string GoOnCommand(const std::string& folder) {
    RunOptions options;
    options.DataDir = folder;
    return FollowUpCommand(options, "--resume");
}

/// Statuses come from the state, which is the truth; the rest from the records, where they tell of the same.
bool ReadPart(const MergeOptions& options, const std::string& given, Part* part, std::string* error) {
    part->Folder = std::make_unique<DataFolder>(given);
    const DataFolder& folder = *part->Folder;
    if (!fs::exists(folder.StateFile())) {
        *error = folder.Path() + ": no run was started here";
        return false;
    }
    QueueFile state;
    if (!part->Folder->Lock(error) || !GatherJobs(folder, error) || !state.Load(folder.StateFile(), error)) {
        return false;
    }
    const std::size_t waiting = state.Count(DrawingStatus::ToDo);
    if (waiting > 0 && !options.Unfinished) {
        *error = folder.Path() + ": " + std::to_string(waiting) + " of " +
                 std::to_string(state.Entries().size()) + " drawings still wait; go on with " +
                 GoOnCommand(given) + ", or merge with --unfinished";
        return false;
    }
    RunLedger ledger(state.Entries());
    std::vector<DrawingRecord> records;
    if (fs::exists(RecordFile(folder))) {
        if (!ReadRecords(RecordFile(folder), &records, error)) {
            return false;
        }
        ledger.Recall(records);
    }
    part->Records = ledger.Records();
    part->Share = ShardOf(folder);
    return true;
}

/// Where one part has a number, all must, each another one of the same count; and none may miss.
bool CheckShares(const MergeOptions& options, std::vector<Part>* parts, std::string* error) {
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
std::vector<DrawingRecord> JoinRecords(const std::vector<Part>& parts) {
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

bool CheckDoubles(const std::vector<Part>& parts, std::string* error) {
    std::unordered_map<std::string, const Part*> owners;
    for (const Part& part : parts) {
        for (const DrawingRecord& record : part.Records) {
            const auto [owner, isNew] = owners.emplace(record.Path, &part);
            if (!isNew) {
                *error = record.Path + ": stands in " + owner->second->Folder->Path() + " and in " +
                         part.Folder->Path();
                return false;
            }
        }
    }
    return true;
}

/// The state comes last: without it the folder holds no run that could be taken for whole.
bool WriteMerged(const DataFolder& target, const std::vector<Part>& parts,
                 const std::vector<DrawingRecord>& records, std::string* error) {
    std::vector<std::string> folders;
    folders.reserve(parts.size());
    for (const Part& part : parts) {
        folders.push_back(part.Folder->Path());
    }
    if (!MergeLogs(folders, target.Path(), error)) {
        return false;
    }
    for (const std::string& folder : folders) {
        if (!AppendTrace(folder, target.Path(), error)) {
            return false;
        }
    }
    std::vector<QueueEntry> queue;
    queue.reserve(records.size());
    for (const DrawingRecord& record : records) {
        queue.push_back({record.Path, record.Status});
    }
    return MarkShard(target, std::nullopt, error) && WriteRecords(records, RecordFile(target), error) &&
           WriteQueue(target.StateFile(), parts.front().Folder->StateFile(), queue, error);
}

ExitStatus Refuse(ExitStatus status, const std::string& text) {
    std::fprintf(stderr, "tarnel: %s\n", text.c_str());
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
            return Refuse(WrongUsage,
                          path + ": the result cannot go where a part of it is; give another --data-dir");
        }
        if (std::any_of(options.Folders.begin(), folder, [&](const std::string& other) {
                return fs::equivalent(path, DataFolder(other).Path(), failure);
            })) {
            return Refuse(WrongUsage, path + ": is given twice");
        }
    }
    if (!options.JsonFile.empty() && !CheckRecordTarget(options.JsonFile, &error)) {
        return Refuse(WrongUsage, error);
    }
    std::vector<Part> parts(options.Folders.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (!ReadPart(options, options.Folders[i], &parts[i], &error)) {
            return Refuse(BrokenOff, error);
        }
    }
    if (!CheckShares(options, &parts, &error) || !CheckDoubles(parts, &error) ||
        !TakeForNewQueue(&target, &error)) {
        return Refuse(BrokenOff, error);
    }
    const std::vector<DrawingRecord> records = JoinRecords(parts);
    if (!WriteMerged(target, parts, records, &error) ||
        (!options.JsonFile.empty() && !WriteRecords(records, options.JsonFile, &error))) {
        return Refuse(BrokenOff, error);
    }
    RunOptions report;
    report.DataDir = options.DataDir;
    report.Quiet = options.Quiet;
    PrintReport(records, report, std::nullopt);
    const bool allDone = std::all_of(records.begin(), records.end(), [](const DrawingRecord& record) {
        return record.Status == DrawingStatus::Done;
    });
    return allDone ? AllDone : SomeNotDone;
}
