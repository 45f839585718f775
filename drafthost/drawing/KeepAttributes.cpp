// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/KeepAttributes.h"

#include <sys/xattr.h>
#include <unistd.h>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace drafthost {
namespace {

constexpr const char* AccessList = "system.posix_acl_access";

/// Entries of an access list as the kernel hands them out, behind a version of four bytes.
struct AclEntry {
    std::uint16_t tag;
    std::uint16_t permissions;
    std::uint32_t id;
};
constexpr std::size_t AclHead = 4;
constexpr std::uint16_t AclOwningGroup = 0x04;
constexpr std::uint16_t AclOthers = 0x20;

/// The owning group gets no more than everybody.
void closeToGroup(std::string& list) {
    std::uint16_t others = 0;
    AclEntry entry{};
    for (int round = 0; round < 2; ++round) {
        for (std::size_t at = AclHead; at + sizeof entry <= list.size(); at += sizeof entry) {
            std::memcpy(&entry, list.data() + at, sizeof entry);
            if (round == 0 && entry.tag == AclOthers) {
                others = entry.permissions;
            } else if (round == 1 && entry.tag == AclOwningGroup) {
                entry.permissions &= others;
                std::memcpy(list.data() + at, &entry, sizeof entry);
            }
        }
    }
}

bool isMissing(int error) {
    return error == ENODATA || error == ENOTSUP;
}

bool valueOf(int file, const char* name, std::string& value) {
    for (;;) {
        const ssize_t size = ::fgetxattr(file, name, nullptr, 0);
        if (size < 0) {
            return false;
        }
        value.resize(std::size_t(size));
        const ssize_t got = ::fgetxattr(file, name, value.data(), value.size());
        if (got >= 0) {
            value.resize(std::size_t(got));
            return true;
        }
        if (errno != ERANGE) {
            return false;
        }
    }
}

/// The system's own labels (security.…) are set by the system itself, and most are not for users to set.
int keepExtended(int oldFile, int newFile) {
    std::string names;
    for (;;) {
        const ssize_t size = ::flistxattr(oldFile, nullptr, 0);
        if (size <= 0) {
            return size < 0 && !isMissing(errno) ? errno : 0;
        }
        names.resize(std::size_t(size));
        const ssize_t got = ::flistxattr(oldFile, names.data(), names.size());
        if (got >= 0) {
            names.resize(std::size_t(got));
            break;
        }
        if (errno != ERANGE) {
            return errno;
        }
    }
    for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
        const char* name = names.c_str() + at;
        const std::string_view word = name;
        if (word.starts_with("system.posix_acl_") || word.starts_with("security.")) {
            continue;
        }
        std::string value;
        if (!valueOf(oldFile, name, value)) {
            if (isMissing(errno)) {
                continue;
            }
            return errno;
        }
        if (::fsetxattr(newFile, name, value.data(), value.size(), 0) != 0 && word.starts_with("user.")) {
            return errno;
        }
    }
    return 0;
}

int keepAccessList(int oldFile, int newFile, bool groupKept) {
    std::string list;
    if (valueOf(oldFile, AccessList, list)) {
        if (!groupKept) {
            closeToGroup(list);
        }
        return ::fsetxattr(newFile, AccessList, list.data(), list.size(), 0) == 0 ? 0 : errno;
    }
    if (!isMissing(errno)) {
        return errno;
    }
    // The folder may give each new file a list that the old one had not.
    return ::fremovexattr(newFile, AccessList) == 0 || isMissing(errno) ? 0 : errno;
}

}  // namespace

int keepAttributes(int oldFile, const struct stat& old, int newFile) {
    struct stat made {};
    if (::fstat(newFile, &made) != 0) {
        return errno;
    }
    // Only root may give a file away; for others the new file is their own, as after any copy. Its group may
    // be any that its owner belongs to.
    const bool ownerKept = made.st_uid == old.st_uid || ::fchown(newFile, old.st_uid, gid_t(-1)) == 0;
    if (!ownerKept && errno != EPERM && errno != EINVAL) {
        return errno;
    }
    const bool groupKept = made.st_gid == old.st_gid || ::fchown(newFile, uid_t(-1), old.st_gid) == 0;
    if (!groupKept && errno != EPERM && errno != EINVAL) {
        return errno;
    }
    // The writing of user attributes needs the right to write, which the old mode may lack.
    if (const int error = keepExtended(oldFile, newFile)) {
        return error;
    }
    if (const int error = keepAccessList(oldFile, newFile, groupKept)) {
        return error;
    }
    mode_t mode = old.st_mode & 07777;
    struct stat now {};
    if (::fstat(newFile, &now) != 0) {
        return errno;
    }
    std::string list;
    if (!groupKept && !valueOf(newFile, AccessList, list)) {
        mode = (mode & ~mode_t(0070)) | (mode & 0070 & ((mode & 0007) << 3));
    }
    if (!ownerKept || !groupKept) {
        mode &= ~mode_t(06000);
    }
    return ::fchmod(newFile, mode) == 0 ? 0 : errno;
}

unsigned otherNames(const char* path, const struct stat& file) {
    if (file.st_nlink <= 1) {
        return 0;
    }
    std::string backup = path;
    const std::size_t slash = backup.rfind('/');
    const std::size_t dot = backup.rfind('.');
    if (dot != std::string::npos && (slash == std::string::npos || dot > slash + 1)) {
        backup.resize(dot);
    }
    backup += ".bak";
    struct stat twin {};
    const bool isBackup = backup != path && ::lstat(backup.c_str(), &twin) == 0 &&
                          twin.st_ino == file.st_ino && twin.st_dev == file.st_dev;
    return unsigned(file.st_nlink) - 1 - (isBackup ? 1 : 0);
}

}  // namespace drafthost
