#include "app/JobFolders.h"

#include "app/QueueFile.h"
#include "app/RunLogs.h"
#include "app/StateText.h"

#include <filesystem>
#include <unordered_map>

namespace fs = std::filesystem;

namespace {

std::vector<std::size_t> Jobs(const DataFolder& folder) {
    std::vector<std::size_t> numbers;
    for (std::size_t number = 1; fs::exists(JobHome(folder, number)); ++number) {
        numbers.push_back(number);
    }
    return numbers;
}

/// Lays what the shares say over the queue.
bool GatherQueue(const DataFolder& folder, const std::vector<std::size_t>& numbers, std::string* error) {
    QueueFile whole;
    if (!whole.Load(folder.StateFile(), error)) {
        return false;
    }
    std::unordered_map<std::string, DrawingStatus> told;
    for (const std::size_t number : numbers) {
        const std::string state = JobData(folder, number) + "/TarnelRunner.xml";
        if (!fs::exists(state)) {
            continue;
        }
        QueueFile share;
        if (!share.Load(state, error)) {
            return false;
        }
        for (const QueueEntry& entry : share.Entries()) {
            told[entry.Path] = entry.Status;
        }
    }
    std::vector<QueueEntry> queue = whole.Entries();
    for (QueueEntry& entry : queue) {
        const auto found = told.find(entry.Path);
        if (entry.Status == DrawingStatus::ToDo && found != told.end()) {
            entry.Status = found->second;
        }
    }
    // The options come from the module's own hand where it got so far.
    const std::string first = JobData(folder, 1) + "/TarnelRunner.xml";
    return WriteQueue(folder.StateFile(), fs::exists(first) ? first : folder.StateFile(), queue, error);
}

}  // namespace

std::string JobHome(const DataFolder& folder, std::size_t number) {
    return folder.Path() + "/job-" + std::to_string(number);
}

std::string JobData(const DataFolder& folder, std::size_t number) {
    return JobHome(folder, number) + "/Ovrix";
}

std::string JobLogs(const DataFolder& folder, std::size_t number) {
    return JobHome(folder, number) + "/logs";
}

bool HasJobs(const DataFolder& folder) {
    return fs::exists(JobHome(folder, 1));
}

bool GatherJobs(const DataFolder& folder, std::string* error) {
    const std::vector<std::size_t> numbers = Jobs(folder);
    if (numbers.empty()) {
        return true;
    }
    if (!GatherQueue(folder, numbers, error)) {
        return false;
    }
    std::vector<std::string> folders;
    if (HasLogsAside(folder.Path())) {
        // What the data folder has under the usual names is then of the same run.
        folders.push_back(folder.Path());
    }
    for (const std::size_t number : numbers) {
        // Of a host that ended well this finds nothing to pack.
        if (!SetLogsAside(JobData(folder, number), HostLogFolder(JobLogs(folder, number)), error)) {
            return false;
        }
        folders.push_back(JobData(folder, number));
    }
    if (!MergeLogs(folders, folder.Path(), error)) {
        return false;
    }
    for (const std::size_t number : numbers) {
        if (!AppendTrace(JobData(folder, number), folder.Path(), error)) {
            return false;
        }
    }
    DropJobs(folder);
    return true;
}

void DropJobs(const DataFolder& folder) {
    const std::vector<std::size_t> numbers = Jobs(folder);
    // The last first, so that those that are left still count from one.
    for (auto number = numbers.rbegin(); number != numbers.rend(); ++number) {
        std::error_code failure;
        fs::remove_all(JobHome(folder, *number), failure);
    }
}
