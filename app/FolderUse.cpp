// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FolderUse.h"

#include "app/Files.h"
#include "app/FolderChange.h"
#include "app/JobFolders.h"
#include "app/NameText.h"
#include "state/StateFile.h"

#include <filesystem>
#include <QString>

namespace {

/// A file that cannot be read for the moment is no damaged one: only what was read and makes no sense goes
/// aside.
bool keepDamaged(const std::string& file, const std::string& cause, std::string* error) {
    const std::string kept = DataFolder::KeepAside(file, error);
    if (!kept.empty()) {
        Complain(cause + "; it is kept as " + kept);
    }
    return !kept.empty();
}

bool makeRoomForState(const DataFolder& folder, std::string* error) {
    std::string text;
    if (!std::filesystem::exists(folder.StateFile())) {
        return true;
    }
    if (!ReadFile(folder.StateFile(), &text, error)) {
        return false;
    }
    const QString fault = StateTextFault(QByteArray::fromStdString(text), 1);
    return fault.isEmpty() ||
           keepDamaged(folder.StateFile(),
                       folder.StateFile() + ": does not hold the state of a run: " + fault.toStdString(),
                       error);
}

bool makeRoomForDescription(const DataFolder& folder, std::string* error) {
    const std::string file = DescriptionFile(folder.Path());
    std::string text;
    if (!std::filesystem::exists(file)) {
        return true;
    }
    if (!ReadFile(file, &text, error)) {
        return false;
    }
    const std::optional<RunDescription> description = ParseDescription(text);
    return description || keepDamaged(file, DamagedDescription(file), error);
}

}  // namespace

bool HoldsRun(const DataFolder& folder) {
    return std::filesystem::exists(folder.StateFile()) ||
           std::filesystem::exists(DescriptionFile(folder.Path()));
}

bool TakeFolder(DataFolder* folder, std::optional<RunDescription>* description, std::string* error) {
    return folder->Lock(error) && FinishChange(*folder, description, error);
}

bool TakeForNewRun(DataFolder* folder, std::optional<RunDescription>* description, std::string* error) {
    return folder->Lock(error) && makeRoomForDescription(*folder, error) &&
           FinishChange(*folder, description, error) && makeRoomForState(*folder, error);
}

bool TakeWholeRun(DataFolder* folder, std::optional<RunDescription>* description, std::string* error) {
    return TakeFolder(folder, description, error) &&
           (!*description || (*description)->Jobs == 0 || GatherJobs(*folder, &**description, error));
}
