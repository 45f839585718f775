// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BundleCommand.h"

#include "app/DataFolder.h"
#include "app/FolderUse.h"
#include "support/SupportBundle.h"
#include "support/SupportInfo.h"

#include <cstdio>
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
        const SupportResult result =
            PackSupportBundle(SupportFilesIn(info.DataDir), SupportInfoBytes(SupportInfoText(info)));
        if (result.Error.isEmpty()) {
            std::printf("%s\n", result.Archive.toStdString().c_str());
            return AllDone;
        }
        error = result.Error.toStdString();
    }
    std::fprintf(stderr, "tarnel: %s\n", error.c_str());
    return BrokenOff;
}
