// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/FileBytes.h"
#include "drafthost/base/MemoryLimit.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <limits>

#include "drafthost/drawing/KeepAttributes.h"
#include "system/Descriptor.h"
#include "system/FileJournal.h"
#include "system/OwnFile.h"

namespace drafthost {

namespace {

std::string because(const std::string& path, int code) {
    return path + ": " + std::strerror(code);
}

bool writeAll(int fd, const std::vector<std::string_view>& pieces) {
    std::vector<iovec> list;
    list.reserve(pieces.size());
    for (const std::string_view piece : pieces) {
        if (!piece.empty()) {
            list.push_back({const_cast<char*>(piece.data()), piece.size()});
        }
    }
    std::size_t at = 0;
    while (at < list.size()) {
        const int count = static_cast<int>(std::min<std::size_t>(list.size() - at, IOV_MAX));
        ssize_t written = ::writev(fd, list.data() + at, count);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        while (at < list.size() && static_cast<std::size_t>(written) >= list[at].iov_len) {
            written -= static_cast<ssize_t>(list[at++].iov_len);
        }
        if (written > 0) {
            list[at].iov_base = static_cast<char*>(list[at].iov_base) + written;
            list[at].iov_len -= static_cast<std::size_t>(written);
        }
    }
    return true;
}

bool syncFolder(const std::string& folder) {
    const files::Descriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some network file systems cannot sync a folder and say so with EINVAL: their rename is as good as it
    // gets.
    return fd.IsOpen() && (::fsync(fd.Get()) == 0 || errno == EINVAL);
}

/// Some file systems tell of a failed write only when a descriptor is closed.
bool closesWell(int fd) {
    const int twin = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
    return twin >= 0 && ::close(twin) == 0;
}

/// Noted before it is made, so that a kill leaves nothing that is not known.
int openTemporary(const std::string& folder, mode_t mode, std::string& name) {
    const std::string stem = (folder == "/" ? "" : folder) + "/.save";
    const int fd = files::OpenRandom(
        stem, mode, &name, [](const std::string& chosen) { files::Journal().NoteTemporary(chosen); });
    if (fd < 0) {
        const int code = errno;
        files::Journal().Gone(name);
        errno = code;
    }
    return fd;
}

bool breakLinks = false;

}  // namespace

bool readFile(const std::string& path, std::string& bytes, std::string& error, const PieceCheck& check) {
    // What root may read of another user's must not come to light through a link that he has planted.
    const files::Descriptor fd(files::OpenToRead(path, files::Trust::FolderOwner));
    struct stat info {};
    if (!fd.IsOpen() || ::fstat(fd.Get(), &info) != 0) {
        error = errno == ELOOP ? path + ": " + files::Because(errno) : because(path, errno);
        return false;
    }
    if (!S_ISREG(info.st_mode)) {
        error = S_ISDIR(info.st_mode) ? because(path, EISDIR) : path + ": not a regular file";
        return false;
    }
    if (info.st_size >= static_cast<off_t>(std::numeric_limits<std::uint32_t>::max())) {
        error = path + ": the file is larger than 4 GiB";
        return false;
    }
    // Smaller files are read at once: that is faster than any look at their pieces.
    constexpr std::size_t Large = std::size_t{32} << 20;
    constexpr std::size_t Piece = std::size_t{1} << 20;
    const auto size = static_cast<std::size_t>(info.st_size);
    if (size > Large && !hasMemoryFor(size)) {
        error = path + ": the file does not fit into the memory that this host may use (" +
                std::to_string(memoryLimit() >> 20) + " MB)";
        return false;
    }
    bytes.reserve(size);
    std::size_t done = 0;
    while (done < size) {
        const std::size_t end = size > Large ? std::min(size, done + Piece) : size;
        bytes.resize(end);
        const std::size_t from = done;
        const ssize_t got = ::read(fd.Get(), bytes.data() + done, end - done);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            error = because(path, errno);
            return false;
        }
        if (got == 0) {
            error = path + ": the file became shorter while it was read";
            return false;
        }
        done += static_cast<std::size_t>(got);
        if (size > Large && check) {
            bytes.resize(done);
            if (!check(bytes, from)) {
                return true;
            }
        }
    }
    return true;
}

void setBreakLinks(bool on) {
    breakLinks = on;
}

bool replaceFile(const std::string& path, const std::vector<std::string_view>& pieces, std::string& error) {
    std::string target;
    if (const int refused = files::Follow(path, files::Trust::FolderOwner, &target)) {
        error = path + ": " + files::Because(refused);
        return false;
    }
    const std::string folder = files::FolderOf(target);
    const files::Descriptor old(::open(target.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    const bool exists = ::lstat(target.c_str(), &info) == 0;
    if (exists && !S_ISREG(info.st_mode)) {
        error = S_ISDIR(info.st_mode) ? because(path, EISDIR) : path + ": not a regular file";
        return false;
    }
    if (exists && (!old.IsOpen() || ::fstat(old.Get(), &info) != 0)) {
        error = because(path, errno);
        return false;
    }
    if (const unsigned others = exists ? otherNames(target.c_str(), info) : 0; others > 0 && !breakLinks) {
        error = path + ": the file has " + std::to_string(others + 1) +
                " names (hard links), of which a save would leave the others with the old drawing; "
                "--break-links saves it all the same";
        return false;
    }
    std::string temporary;
    const files::Descriptor fd(openTemporary(folder, exists ? 0600 : 0666, temporary));
    if (!fd.IsOpen()) {
        error = because(path, errno);
        return false;
    }
    const auto fail = [&](int code) {
        files::Journal().Remove(temporary);
        error = because(path, code);
        return false;
    };
    if (const int code = exists ? keepAttributes(old.Get(), info, fd.Get()) : 0) {
        return fail(code);
    }
    if (!exists) {
        files::GiveToFolderOwner(fd.Get(), target);
    }
    if (!writeAll(fd.Get(), pieces) || ::fsync(fd.Get()) != 0 || !closesWell(fd.Get())) {
        return fail(errno);
    }
    if (::rename(temporary.c_str(), target.c_str()) != 0) {
        return fail(errno);
    }
    files::Journal().Gone(temporary);
    if (!exists && !syncFolder(folder)) {
        error = because(path, errno);
        return false;
    }
    return true;
}

}  // namespace drafthost
