#include "app/FolderUse.h"

#include "app/JobFolders.h"
#include "app/QueueFile.h"
#include "app/RunLogs.h"

#include <cstdio>
#include <filesystem>

namespace {

/// A state that cannot be read is moved away before the module would put a new one over it.
bool MakeRoomForState(const DataFolder& folder, std::string* error) {
    std::string cause;
    QueueFile state;
    if (!std::filesystem::exists(folder.StateFile()) || state.Load(folder.StateFile(), &cause)) {
        return true;
    }
    const std::string kept = folder.KeepStateAside(error);
    if (kept.empty()) {
        return false;
    }
    std::fprintf(stderr, "tarnel: %s; it is kept as %s\n", cause.c_str(), kept.c_str());
    return true;
}

}  // namespace

bool TakeForNewQueue(DataFolder* folder, std::string* error) {
    if (!folder->Lock(error)) {
        return false;
    }
    DropJobs(*folder);
    DropLogsAside(folder->Path());
    return MakeRoomForState(*folder, error);
}

bool TakeToGoOn(DataFolder* folder, bool sameLog, std::string* error) {
    if (!folder->Lock(error) || !GatherJobs(*folder, error)) {
        return false;
    }
    if (sameLog) {
        return SetLogsAside(folder->Path(), HostLogFolder(""), error);
    }
    DropLogsAside(folder->Path());
    return true;
}
