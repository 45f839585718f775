// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FolderChange.h"

#include "app/Files.h"
#include "app/JobFolders.h"
#include "app/RunLogs.h"
#include "system/OwnFile.h"

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// The files that a change may bring.
constexpr std::array<const char*, 5> Files = {"TarnelRunner.xml", "run.journal", "tnl log.html", "TNLLog.zip",
                                              "TNLapp.log"};

std::string nextFolder(const DataFolder& folder) {
    return folder.Path() + "/next";
}

/// One of the files, or what is written beside it on the way.
bool isOwn(const std::string& name) {
    return std::any_of(Files.begin(), Files.end(),
                       [&name](const char* file) { return name.starts_with(file); });
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool fail(const std::string& path, const char* what, std::string* error) {
    *error = path + what + files::Because(errno);
    return false;
}

/// Removes the folder with the files of a change in it. Nothing is followed through a link, and what this
/// program did not make stays and is told.
bool removeNext(const std::string& next, std::string* error) {
    struct stat status {};
    if (lstat(next.c_str(), &status) != 0) {
        return errno == ENOENT || fail(next, ": cannot be looked at: ", error);
    }
    if (!S_ISDIR(status.st_mode)) {
        *error = next + ": is in the way; move it";
        return false;
    }
    std::error_code failure;
    for (fs::directory_iterator walk(next, failure), end; !failure && walk != end; walk.increment(failure)) {
        if (isOwn(walk->path().filename().string()) && unlink(walk->path().c_str()) != 0) {
            return fail(walk->path().string(), ": cannot be removed: ", error);
        }
    }
    return rmdir(next.c_str()) == 0 || fail(next, ": cannot be removed: ", error);
}

}  // namespace

bool FolderChange::Begin(std::string* error) const {
    const std::string next = nextFolder(folder);
    if (!removeNext(next, error)) {
        return false;
    }
    errno = files::MakeFolder(next);
    return errno == 0 || fail(next, ": cannot be made: ", error);
}

std::string FolderChange::Next() const {
    return nextFolder(folder);
}

bool FolderChange::Commit(RunDescription* description, std::string* error) const {
    description->Next.clear();
    for (const char* file : Files) {
        const std::string path = Next() + "/" + file;
        if (access(path.c_str(), F_OK) == 0) {
            if (!SyncToDisk(path, error)) {
                return false;
            }
            description->Next.emplace_back(file);
        }
    }
    if (!WriteDescription(folder.Path(), *description, error)) {
        return false;
    }
    std::optional<RunDescription> finished;
    if (!FinishChange(folder, &finished, error)) {
        return false;
    }
    *description = *finished;
    return true;
}

bool FinishChange(const DataFolder& folder, std::optional<RunDescription>* description, std::string* error) {
    if (!ReadDescription(folder.Path(), description, error)) {
        return false;
    }
    const std::string next = nextFolder(folder);
    if (!*description || !HasChange(**description)) {
        return removeNext(next, error);
    }
    for (const std::string& file : (*description)->Next) {
        const std::string from = next + "/" + file;
        const std::string to = folder.Path() + "/" + file;
        if (std::rename(from.c_str(), to.c_str()) != 0 && errno != ENOENT) {
            return fail(to, ": cannot be replaced: ", error);
        }
    }
    if ((*description)->OldLogs) {
        DropLogsAside(folder.Path());
        for (const std::string& file : {std::string("tnl log.html"), std::string("TNLLog.zip")}) {
            const std::string old = folder.Path() + "/" + file;
            if (!contains((*description)->Next, file) && unlink(old.c_str()) != 0 && errno != ENOENT) {
                return fail(old, ": cannot be removed: ", error);
            }
        }
    }
    if (!DropJobs(folder, (*description)->OldJobs, error) || !removeNext(next, error) ||
        !SyncToDisk(folder.StateFile(), error)) {
        return false;
    }
    (*description)->Next.clear();
    (*description)->OldJobs = 0;
    (*description)->OldLogs = false;
    return WriteDescription(folder.Path(), **description, error);
}

bool HasChange(const RunDescription& description) {
    return !description.Next.empty();
}
