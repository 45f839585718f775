// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/NewFile.h"

#include "system/Descriptor.h"
#include "system/FileJournal.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <utility>

namespace files {

namespace {

bool isStillNamed(int file, const std::string& name) {
    struct stat held {};
    struct stat named {};
    return ::fstat(file, &held) == 0 && ::lstat(name.c_str(), &named) == 0 && held.st_ino == named.st_ino &&
           held.st_dev == named.st_dev;
}

std::string newNameOf(const std::string& path) {
    return path + ".new";
}

/// Where a file system knows no locks nobody can tell a live file from a left one, and each is taken for
/// left.
bool lock(int file) {
    return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// As the file that is replaced: a group that cannot be kept must not see more than everybody did.
bool keepMode(int file, const struct stat& old) {
    mode_t mode = old.st_mode & 07777;
    struct stat made {};
    if (::fstat(file, &made) != 0) {
        return false;
    }
    // What a run as root has left before is handed on with the folder's group too.
    const bool handedOn = ::geteuid() == 0 && old.st_uid == 0;
    if (made.st_gid != old.st_gid && !handedOn && ::fchown(file, uid_t(-1), old.st_gid) != 0) {
        mode = (mode & 0707) | (mode & 0070 & ((mode & 0007) << 3));
    }
    return ::fchmod(file, mode) == 0;
}

/// Without a word to errno.
void forget(const std::string& name) {
    const int error = errno;
    Journal().Gone(name);
    errno = error;
}

/// Takes a left file away. EWOULDBLOCK when it is being written, another error when it is not ours.
int removeLeft(const std::string& name) {
    const Descriptor left(::open(name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!left.IsOpen()) {
        return errno == ENOENT ? 0 : errno;
    }
    if (::fstat(left.Get(), &info) != 0 || !S_ISREG(info.st_mode) || !IsOwners(info, name)) {
        return EPERM;
    }
    if (!lock(left.Get())) {
        return EWOULDBLOCK;
    }
    return isStillNamed(left.Get(), name) && ::unlink(name.c_str()) != 0 ? errno : 0;
}

}  // namespace

bool NewFile::clearWay(Busy busy, bool* useOther) {
    const int error = removeLeft(name);
    if (error == EWOULDBLOCK && busy == Busy::Refuse) {
        errno = error;
        return false;
    }
    *useOther = error != 0;
    return true;
}

bool NewFile::Open(const std::string& path, Busy busy) {
    Discard();
    if (const int error = Follow(path, Trust::Own, &target)) {
        errno = error;
        return false;
    }
    struct stat old {};
    const bool exists = ::lstat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        errno = S_ISDIR(old.st_mode) ? EISDIR : ENXIO;
        return false;
    }
    // What is to stay closed is closed from the first moment.
    const mode_t mode = exists ? 0600 : 0666;
    const std::string usual = newNameOf(target);
    for (bool useOther = false; file < 0;) {
        name = useOther ? RandomName(usual) : usual;
        Journal().NoteTemporary(name);
        file = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (file < 0) {
            forget(name);
        }
        if (file < 0 && (useOther || errno != EEXIST || !clearWay(busy, &useOther))) {
            return false;
        }
        if (file >= 0 && (!lock(file) || !isStillNamed(file, name))) {
            // Another process took it for a left one before it had its lock.
            ::close(std::exchange(file, -1));
        }
    }
    GiveToFolderOwner(file, target);
    if (exists && !keepMode(file, old)) {
        const int error = errno;
        Discard();
        errno = error;
        return false;
    }
    return true;
}

bool NewFile::Write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool NewFile::Commit() {
    // Some file systems tell of a failed write only when a descriptor is closed; the lock stays with the
    // other.
    const int twin = ::fcntl(file, F_DUPFD_CLOEXEC, 0);
    if (twin < 0 || ::close(twin) != 0 || ::rename(name.c_str(), target.c_str()) != 0) {
        const int error = errno;
        Discard();
        errno = error;
        return false;
    }
    forget(name);
    ::close(std::exchange(file, -1));
    return true;
}

void NewFile::Discard() {
    if (file >= 0) {
        Journal().Remove(name);
        ::close(std::exchange(file, -1));
    }
}

void DropNewOf(const std::string& path) {
    std::string target;
    if (Follow(path, Trust::Own, &target) == 0) {
        removeLeft(newNameOf(target));
    }
}

}  // namespace files
