// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/OwnFile.h"

#include "system/Descriptor.h"
#include "system/NewFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

namespace files {

namespace {

constexpr int MostLinks = 40;
constexpr std::size_t RandomLetters = 12;

/// Links that the kernel makes up (/proc/self/fd/1) have no text to follow.
bool isMadeUp(const std::string& folder) {
    struct statfs info {};
    return ::statfs(folder.c_str(), &info) == 0 && info.f_type == PROC_SUPER_MAGIC;
}

bool isTrusted(const std::string& path, uid_t owner, Trust trust) {
    if (owner == ::geteuid() || owner == 0) {
        return true;
    }
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0 && info.st_uid == owner) {
        return true;
    }
    return trust == Trust::FolderOwner && ::geteuid() != 0 && ::stat(FolderOf(path).c_str(), &info) == 0 &&
           info.st_uid == owner && (info.st_mode & S_IWOTH) == 0;
}

/// The text of a link; empty with errno when it cannot be read.
std::string textOf(const std::string& link) {
    std::array<char, PATH_MAX> text{};
    const ssize_t length = ::readlink(link.c_str(), text.data(), text.size());
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

/// In a folder that not everybody can write to, whoever can has the say over what stands there.
bool isTrustedOnTheWay(const std::string& path, uid_t owner, Trust trust) {
    struct stat info {};
    return isTrusted(path, owner, trust) ||
           (trust == Trust::FolderOwner && ::geteuid() != 0 && ::stat(FolderOf(path).c_str(), &info) == 0 &&
            (info.st_mode & S_IWOTH) == 0);
}

/// Looks at each link among the folders of a path. 0, or ELOOP for one of somebody else; what is missing or
/// no folder shows when the path is used.
int checkWay(const std::string& folder, Trust trust) {
    std::string done = folder.starts_with('/') ? "/" : "";
    std::string rest = folder;
    for (int count = 0; count < MostLinks;) {
        const std::size_t from = rest.find_first_not_of('/');
        if (from == std::string::npos) {
            return 0;
        }
        const std::size_t end = std::min(rest.find('/', from), rest.size());
        const std::string here = done + rest.substr(from, end - from);
        rest.erase(0, end);
        struct stat info {};
        if (::lstat(here.c_str(), &info) != 0) {
            return 0;
        }
        if (!S_ISLNK(info.st_mode) || isMadeUp(FolderOf(here))) {
            done = here + "/";
            continue;
        }
        if (!isTrustedOnTheWay(here, info.st_uid, trust)) {
            return ELOOP;
        }
        const std::string text = textOf(here);
        done = text.starts_with('/') ? "/" : done;
        rest.insert(0, text);
        ++count;
    }
    return ELOOP;
}

/// The content of an open file goes to a new one of the same name, which has no other names.
int partFromOthers(int file, const std::string& path, int flags) {
    NewFile copy;
    if (!copy.Open(path)) {
        return -1;
    }
    std::array<char, 65536> buffer{};
    ssize_t count = 0;
    off_t at = 0;
    while ((count = ::pread(file, buffer.data(), buffer.size(), at)) > 0) {
        if (!copy.Write({buffer.data(), static_cast<std::size_t>(count)})) {
            return -1;
        }
        at += count;
    }
    if (count < 0 || !copy.Commit()) {
        return -1;
    }
    return ::open(path.c_str(), flags | O_NOFOLLOW | O_CLOEXEC);
}

int refuse(int error) {
    errno = error;
    return -1;
}

int make(const std::string& path, int flags) {
    const int file = ::open(path.c_str(), flags | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file >= 0) {
        GiveToFolderOwner(file, path);
    }
    return file;
}

/// -1 with ENOENT when the file was there and is to be made anew.
int openPresent(const std::string& path, int flags) {
    // A pipe that somebody has put there must not make this wait for a reader.
    Descriptor file(
        ::open(path.c_str(), (flags & ~O_TRUNC) | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!file.IsOpen() || ::fstat(file.Get(), &info) != 0) {
        return -1;
    }
    if (!S_ISREG(info.st_mode)) {
        return refuse(S_ISDIR(info.st_mode) ? EISDIR : ENXIO);
    }
    if (!IsOwners(info, path)) {
        return refuse(EPERM);
    }
    if (info.st_nlink > 1 && (flags & O_TRUNC) != 0) {
        return ::unlink(path.c_str()) == 0 ? refuse(ENOENT) : -1;
    }
    if (info.st_nlink > 1 && (flags & O_APPEND) != 0) {
        const Descriptor reader(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
        return reader.IsOpen() ? partFromOthers(reader.Get(), path, flags) : -1;
    }
    if ((flags & O_TRUNC) != 0 && ::ftruncate(file.Get(), 0) != 0) {
        return -1;
    }
    return file.Release();
}

}  // namespace

std::string Because(int error) {
    switch (error) {
        case ELOOP:
            return "it is a link that somebody else has put there";
        case ENXIO:
            return "it is not a regular file";
        default:
            return std::strerror(error);
    }
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

int Follow(const std::string& path, Trust trust, std::string* target) {
    *target = path;
    for (int count = 0; count < MostLinks; ++count) {
        struct stat info {};
        if (const int error = checkWay(FolderOf(*target), trust)) {
            return error;
        }
        if (::lstat(target->c_str(), &info) != 0) {
            return errno == ENOENT ? 0 : errno;
        }
        if (!S_ISLNK(info.st_mode)) {
            return 0;
        }
        if (!isTrusted(*target, info.st_uid, trust)) {
            return ELOOP;
        }
        const std::string folder = FolderOf(*target);
        if (isMadeUp(folder)) {
            return 0;
        }
        const std::string next = textOf(*target);
        if (next.empty()) {
            return errno;
        }
        target->assign(next.starts_with('/') ? "" : folder + "/").append(next);
    }
    return ELOOP;
}

int OpenToRead(const std::string& path, Trust trust) {
    std::string target;
    if (const int error = Follow(path, trust, &target)) {
        errno = error;
        return -1;
    }
    // A link that somebody puts there now has not been looked at.
    const int last = isMadeUp(FolderOf(target)) ? 0 : O_NOFOLLOW;
    return ::open(target.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | last);
}

int MakeFolder(const std::string& given) {
    std::string path = given;
    std::string target;
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    if (const int error = Follow(path, Trust::Own, &target)) {
        return error;
    }
    struct stat info {};
    if (::stat(target.c_str(), &info) == 0) {
        return S_ISDIR(info.st_mode) ? 0 : ENOTDIR;
    }
    if (errno != ENOENT) {
        return errno;
    }
    if (const std::string above = FolderOf(target); above != target && above != ".") {
        if (const int error = MakeFolder(above)) {
            return error;
        }
    }
    if (::mkdir(target.c_str(), 0777) != 0) {
        return errno == EEXIST && ::stat(target.c_str(), &info) == 0 && S_ISDIR(info.st_mode) ? 0 : errno;
    }
    const Descriptor folder(::open(target.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (folder.IsOpen() && ::fstat(folder.Get(), &info) == 0 && info.st_uid == 0) {
        GiveToFolderOwner(folder.Get(), target);
    }
    return 0;
}

bool IsOwners(const struct stat& file, const std::string& path) {
    if (file.st_uid == ::geteuid() || file.st_uid == 0) {
        return true;
    }
    struct stat folder {};
    return ::stat(FolderOf(path).c_str(), &folder) == 0 && folder.st_uid == file.st_uid;
}

void GiveToFolderOwner(int file, const std::string& path) {
    struct stat folder {};
    if (::geteuid() != 0 || ::stat(FolderOf(path).c_str(), &folder) != 0 || folder.st_uid == 0) {
        return;
    }
    // Where the system does not let root give files away (some network file systems), it stays root's.
    [[maybe_unused]] const int ignored = ::fchown(file, folder.st_uid, folder.st_gid);
}

int OpenOwn(const std::string& path, int flags) {
    std::string target;
    if (const int error = Follow(path, Trust::Own, &target)) {
        errno = error;
        return -1;
    }
    for (int attempt = 0;; ++attempt) {
        int file = openPresent(target, flags);
        if (file >= 0 || errno != ENOENT) {
            return file;
        }
        file = make(target, flags & ~O_TRUNC);
        // Somebody may make it between the two.
        if (file >= 0 || errno != EEXIST || attempt == 2) {
            return file;
        }
    }
}

std::string RandomName(const std::string& path) {
    constexpr char Letters[] = "abcdefghijklmnopqrstuvwxyz012345";
    std::array<unsigned char, RandomLetters> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        return {};
    }
    std::string name = path + "-";
    for (const unsigned char byte : bytes) {
        name += Letters[byte % 32];
    }
    return name;
}

int OpenRandom(const std::string& path, mode_t mode, std::string* name,
               const std::function<void(const std::string&)>& tell) {
    *name = RandomName(path);
    if (name->empty()) {
        return -1;
    }
    if (tell) {
        tell(*name);
    }
    return ::open(name->c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
}

}  // namespace files
