// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FolderWatch.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::uint32_t NameChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr auto RootPatience = std::chrono::milliseconds(50);

/// The clock that file systems stamp folders with.
std::int64_t fileClock() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return std::int64_t(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

QByteArray below(const QByteArray& folder, const char* name) {
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}

bool isFolder(int parent, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat status {};
    return fstatat(parent, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

FolderWatch::FolderWatch(QByteArray path, bool wholeTree, bool withFolderNames, std::size_t most)
    : folder(std::move(path)),
      subtree(wholeTree),
      folderNames(withFolderNames),
      mostFolders(most),
      armedAt(fileClock()),
      notices(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      news(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

FolderWatch::~FolderWatch() {
    for (const int handle : {notices, news}) {
        if (handle >= 0) {
            close(handle);
        }
    }
}

void FolderWatch::Start(const std::shared_ptr<FolderWatch>& watch) {
    watch->addJob({watch->folder, false});
    std::thread([watch] { watch->work(); }).detach();
    std::unique_lock lock(watch->guard);
    watch->wake.wait_for(lock, RootPatience, [&] { return watch->rootReady; });
}

void FolderWatch::Stop() {
    stopped = true;
    const std::lock_guard lock(guard);
    wake.notify_all();
}

void FolderWatch::addJob(Job job) {
    const std::lock_guard lock(guard);
    jobs.push_back(std::move(job));
    wake.notify_all();
}

void FolderWatch::work() {
    std::unique_lock lock(guard);
    while (!stopped) {
        if (jobs.empty()) {
            wake.wait(lock);
            continue;
        }
        const Job job = std::move(jobs.front());
        jobs.pop_front();
        lock.unlock();
        addTree(job);
        lock.lock();
        rootReady = true;
        wake.notify_all();
    }
}

void FolderWatch::tell(bool changed, const QByteArray& firstUnwatched) {
    {
        const std::lock_guard lock(guard);
        told.Changed |= changed;
        if (!firstUnwatched.isEmpty() && !told.LimitReached) {
            told.LimitReached = true;
            told.FirstUnwatched = firstUnwatched;
        }
    }
    const std::uint64_t one = 1;
    // A counter that is full wakes the reader all the same.
    [[maybe_unused]] const auto written = write(news, &one, sizeof one);
}

bool FolderWatch::addFolder(const QByteArray& path, bool isRoot) {
    const std::uint32_t mask =
        NameChanges | IN_ONLYDIR | (isRoot ? IN_DELETE_SELF | IN_MOVE_SELF : IN_DONT_FOLLOW);
    // The table is locked around the call, so that no notice arrives for a folder that is not in it yet.
    const std::lock_guard lock(guard);
    if (folders.size() >= mostFolders) {
        return false;
    }
    const int id = inotify_add_watch(notices, path.constData(), mask);
    if (id < 0) {
        return errno != ENOSPC;
    }
    folders[id] = path;
    return true;
}

// A folder that changed between the moment when it was asked to be watched and the moment when it was: no
// notice tells of that, but the folder's own time does.
bool FolderWatch::isLate(int folderHandle) const {
    struct stat status {};
    return fstat(folderHandle, &status) == 0 &&
           std::int64_t(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec > armedAt;
}

void FolderWatch::addTree(const Job& job) {
    std::vector<QByteArray> open = {job.Folder};
    bool changed = false;
    while (!open.empty() && !stopped) {
        const QByteArray path = std::move(open.back());
        open.pop_back();
        const bool isRoot = path == folder;
        if (!addFolder(path, isRoot)) {
            tell(false, path);
            break;
        }
        if (isRoot) {
            const std::lock_guard lock(guard);
            rootReady = true;
            wake.notify_all();
        }
        if (!subtree) {
            break;
        }
        DIR* listing = opendir(path.constData());
        if (listing == nullptr) {
            continue;
        }
        changed |= !job.Appeared && isLate(dirfd(listing));
        while (const dirent* entry = readdir(listing)) {
            if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) {
                continue;
            }
            if (isFolder(dirfd(listing), *entry)) {
                open.push_back(below(path, entry->d_name));
            } else {
                changed |= job.Appeared;
            }
        }
        closedir(listing);
    }
    if (changed) {
        tell(true, {});
    }
}

void FolderWatch::forgetBelow(const QByteArray& path) {
    const QByteArray inside = path + '/';
    const std::lock_guard lock(guard);
    std::erase_if(folders, [&](const auto& item) {
        const bool gone = item.second == path || item.second.startsWith(inside);
        if (gone) {
            inotify_rm_watch(notices, item.first);
        }
        return gone;
    });
}

bool FolderWatch::ReadNotices() {
    alignas(inotify_event) char buffer[16384];
    bool changed = false;
    ssize_t length = 0;
    while ((length = read(notices, buffer, sizeof buffer)) > 0) {
        for (const char* at = buffer; at < buffer + length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            at += sizeof(inotify_event) + event->len;
            if ((event->mask & IN_Q_OVERFLOW) != 0) {
                changed = true;
                addJob({folder, true});
                continue;
            }
            QByteArray parent;
            {
                const std::lock_guard lock(guard);
                const auto found = folders.find(event->wd);
                if (found == folders.end()) {
                    continue;
                }
                parent = found->second;
                if ((event->mask & IN_IGNORED) != 0) {
                    folders.erase(found);
                    continue;
                }
            }
            if ((event->mask & (IN_DELETE_SELF | IN_MOVE_SELF)) != 0) {
                changed = true;
            } else if ((event->mask & IN_ISDIR) == 0) {
                changed |= (event->mask & NameChanges) != 0;
            } else {
                changed |= folderNames;
                const QByteArray path = below(parent, event->name);
                if (subtree && (event->mask & IN_MOVED_FROM) != 0) {
                    // What lay in it has gone as well.
                    changed = true;
                    forgetBelow(path);
                } else if (subtree && (event->mask & (IN_CREATE | IN_MOVED_TO)) != 0) {
                    addJob({path, true});
                }
            }
        }
    }
    return changed;
}

FolderWatch::News FolderWatch::ReadNews() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(news, &count, sizeof count);
    const std::lock_guard lock(guard);
    return std::exchange(told, {});
}
