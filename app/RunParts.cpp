#include "app/RunParts.h"

#include "app/HostCommands.h"
#include "app/JobFolders.h"
#include "app/JobSplit.h"
#include "app/RunLogs.h"
#include "app/StateText.h"

#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// What a host that died has left of its log is kept for the end of the run.
std::function<void()> KeepLogs(const std::string& folder, const std::string& stateHome) {
    return [folder, hostLogs = HostLogFolder(stateHome)] {
        std::string error;
        if (!SetLogsAside(folder, hostLogs, &error)) {
            std::fprintf(stderr, "tarnel: %s\n", error.c_str());
        }
    };
}

}  // namespace

RunParts OneHost(const RunOptions& options, const DataFolder& folder, const std::vector<QueueEntry>& queue,
                 MonitorSettings common) {
    std::vector<std::string> drawings;
    drawings.reserve(queue.size());
    for (const QueueEntry& entry : queue) {
        drawings.push_back(entry.Path);
    }
    common.Place = {folder.Home(), options.DataDir.empty() ? "" : folder.Path() + "/registry.ini", "",
                    folder.LockDescriptor()};
    common.State = folder.StateFile();
    common.Start = options.KeepsQueue() ? ContinueCommands(options) : StartCommands(options, drawings);
    common.Resume = RestartCommands(options);
    common.HostDied = KeepLogs(folder.Path(), "");
    RunParts parts;
    parts.Ledgers.push_back(std::make_unique<RunLedger>(queue));
    parts.Settings.push_back(std::move(common));
    return parts;
}

RunParts SeveralHosts(const RunOptions& options, const DataFolder& folder,
                      const std::vector<QueueEntry>& queue, const MonitorSettings& common,
                      std::string* error) {
    // The whole queue first: it says what waits, should this end between two shares.
    if (!WriteQueue(folder.StateFile(), folder.StateFile(), queue, error) ||
        !WriteSettings(folder.StateFile(), options, error)) {
        return {};
    }
    RunOptions start = options;
    start.Retry = RunOptions::RetryKind::None;
    RunParts parts;
    const auto shares = SplitBySize(queue, options.Jobs);
    for (std::size_t number = 1; number <= shares.size(); ++number) {
        const std::string data = JobData(folder, number);
        std::error_code failure;
        fs::create_directories(data, failure);
        if (failure) {
            *error = data + ": the folder cannot be made: " + failure.message();
            return {};
        }
        const std::vector<QueueEntry>& share = shares[number - 1];
        MonitorSettings settings = common;
        settings.State = data + "/TarnelRunner.xml";
        if (!WriteQueue(settings.State, folder.StateFile(), share, error)) {
            return {};
        }
        settings.Place = {JobHome(folder, number), data + "/registry.ini", JobLogs(folder, number),
                          folder.LockDescriptor()};
        // The script is read once more by the module, which knows its encoding.
        settings.Start = ContinueCommands(start);
        settings.Resume = RestartCommands(options);
        settings.HostDied = KeepLogs(data, JobLogs(folder, number));
        parts.Ledgers.push_back(std::make_unique<RunLedger>(share));
        parts.Settings.push_back(std::move(settings));
    }
    return parts;
}
