// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Commands.h"

#include "app/DataFolder.h"
#include "app/FolderUse.h"
#include "app/NameText.h"
#include "support/SupportBundle.h"
#include "support/SupportInfo.h"

#include <filesystem>

ExitStatus MakeBundle(const std::string& dataDir, const char* version) {
    DataFolder folder(dataDir);
    std::string error;
    std::optional<RunDescription> description;
    if (!std::filesystem::exists(folder.StateFile())) {
        error = folder.Path() + ": no run was started here, so there is nothing to pack";
    } else if (TakeWholeRun(&folder, &description, &error)) {
        SupportInfo info;
        info.Version = QString::fromLatin1(version);
        info.DataDir = QString::fromStdString(folder.Path());
        const SupportFiles files = SupportFilesIn(info.DataDir);
        QString failure;
        if (PackSupportBundle(files, SupportInfoBytes(SupportInfoText(info)), &failure)) {
            PrintName(files.Archive.toStdString());
            return AllDone;
        }
        error = failure.toStdString();
    }
    Complain(error);
    return BrokenOff;
}
