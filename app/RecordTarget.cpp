// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecordTarget.h"

#include "state/DrawingName.h"

#include <sys/stat.h>
#include <algorithm>
#include <filesystem>
#include <QString>

namespace fs = std::filesystem;

namespace {

/// The path behind all links of what exists of it.
fs::path Resolved(const fs::path& path) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(path).lexically_normal();
    const fs::path resolved = fs::weakly_canonical(absolute, failure);
    return failure ? absolute : resolved;
}

bool LiesIn(const fs::path& path, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

bool IsSameFile(const struct stat& file, const std::string& other) {
    struct stat status {};
    return stat(other.c_str(), &status) == 0 && status.st_dev == file.st_dev && status.st_ino == file.st_ino;
}

}  // namespace

bool CheckRecordSpares(const std::string& file, const std::vector<std::string>& files,
                       const std::vector<std::string>& folders, std::string* error) {
    struct stat status {};
    const bool exists = stat(file.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        return true;
    }
    const fs::path target = Resolved(file);
    const auto refuse = [&](const std::string& why) {
        *error = file + ": " + why + "; the records would take its place, give --json another file";
        return false;
    };
    if (IsDrawingName(QString::fromStdString(file)) ||
        IsDrawingName(QString::fromStdString(target.string()))) {
        return refuse("is a drawing by its name");
    }
    for (const std::string& other : files) {
        if (exists && IsSameFile(status, other)) {
            return refuse("is a drawing, script or list of this run");
        }
    }
    for (const std::string& folder : folders) {
        if (LiesIn(target, Resolved(folder))) {
            return refuse("lies in the folder of the state and the logs");
        }
    }
    return true;
}
