#include "app/FolderUse.h"

#include "app/FolderChange.h"
#include "app/JobFolders.h"
#include "app/RunRecord.h"
#include "engine/TarnelData.h"

#include <cstdio>
#include <filesystem>

bool TakeFolder(DataFolder* folder, std::optional<RunDescription>* description, std::string* error) {
    return folder->Lock(error) && FinishChange(*folder, description, error);
}

bool TakeWholeRun(DataFolder* folder, std::optional<RunDescription>* description, std::string* error) {
    return TakeFolder(folder, description, error) &&
           (!*description || (*description)->Jobs == 0 || GatherJobs(*folder, &**description, error));
}

bool MakeRoomForState(const DataFolder& folder, std::string* error) {
    std::string cause;
    CTarnelData record;
    if (!std::filesystem::exists(folder.StateFile()) || ReadRecord(folder.StateFile(), &record, &cause)) {
        return true;
    }
    const std::string kept = folder.KeepStateAside(error);
    if (kept.empty()) {
        return false;
    }
    std::fprintf(stderr, "tarnel: %s; it is kept as %s\n", cause.c_str(), kept.c_str());
    return true;
}
