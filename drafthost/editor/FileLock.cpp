// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>

#include "drafthost/drawing/FileBytes.h"
#include "system/Descriptor.h"
#include "system/FileJournal.h"
#include "system/OwnFile.h"

namespace drafthost {
namespace {

constexpr std::string_view MarkerHead = "drafthost";

std::string machineName() {
    char name[256] = {};
    ::gethostname(name, sizeof name - 1);
    return name;
}

/// When the process was started, in clock ticks since boot; empty when no such process lives. Together
/// with its number it tells a process from a later one that was given the same number.
std::string startOf(long pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(file, line);
    // The program's name stands in parentheses and may hold anything; the start is the 20th field behind it.
    std::size_t at = line.rfind(')');
    // A dead process keeps its number until its parent asks for it, which may take long after a kill.
    if (at != std::string::npos && (line.compare(at, 3, ") Z") == 0 || line.compare(at, 3, ") X") == 0)) {
        return {};
    }
    for (int field = 0; at != std::string::npos && field < 20; ++field) {
        at = line.find(' ', at + 1);
    }
    if (at == std::string::npos) {
        return {};
    }
    return line.substr(at + 1, line.find(' ', at + 1) - at - 1);
}

/// True when the marker was made on this machine by a host that is no longer there.
bool isStale(const std::string& marker) {
    std::string text, error;
    if (!readFile(marker, text, error)) {
        return false;
    }
    std::string fields[4];
    std::size_t at = 0;
    for (std::string& field : fields) {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) {
            return false;
        }
        field = text.substr(at, end - at);
        at = end + 1;
    }
    if (fields[0] != MarkerHead || fields[1] != machineName()) {
        return false;
    }
    char* end = nullptr;
    long pid = std::strtol(fields[2].c_str(), &end, 10);
    if (pid <= 0 || *end != 0) {
        return false;
    }
    if (::kill(pid_t(pid), 0) != 0 && errno == ESRCH) {
        return true;
    }
    return startOf(pid) != fields[3];
}

int openLocked(const std::string& path, std::string& error) {
    files::Descriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!file.IsOpen()) {
        error = path + " cannot be opened for writing: " + std::strerror(errno);
        return -1;
    }
    struct stat info {};
    if (::fstat(file.Get(), &info) == 0 && (info.st_mode & 0222) == 0) {
        // Root may write it all the same, but it is meant to stay as it is.
        error = path + " is read-only.";
        return -1;
    }
    if (::flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
        error = path + (errno == EWOULDBLOCK ? " is in use."
                                             : std::string(" cannot be locked: ") + std::strerror(errno));
        return -1;
    }
    return file.Release();
}

/// The marker made last that still stands.
std::string& standingMarker() {
    static std::string path;
    return path;
}

/// A second name for the marker of the drawing before, which goes on standing while the next one is opened.
/// A run over thousands of drawings so makes one marker and no more: making and deleting one for each drawing
/// costs a file system that avoids the numbers of files just deleted more than all the rest of a lock.
bool linkMarker(const std::string& marker) {
    return !standingMarker().empty() && ::link(standingMarker().c_str(), marker.c_str()) == 0;
}

bool writeMarker(int file) {
    const std::string& text = FileLock::markerText();
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count >= 0 && count < ssize_t(text.size())) {
        errno = ENOSPC;
    }
    return count == ssize_t(text.size());
}

/// On a file system without second names the marker is written where it stands.
bool writeMarkerInPlace(const std::string& marker) {
    const int file = ::open(marker.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file < 0) {
        return false;
    }
    const bool done = writeMarker(file);
    const int code = errno;
    ::close(file);
    if (!done) {
        ::unlink(marker.c_str());
    }
    errno = code;
    return done;
}

/// The marker stands with its text or not at all: an empty one would tell nobody whose it is. False with
/// errno, EEXIST when there is one.
bool makeMarker(const std::string& marker) {
    std::string beside;
    const int file = files::OpenRandom(files::FolderOf(marker) + "/.dwk", 0666, &beside,
                                       [](const std::string& name) { files::Journal().NoteTemporary(name); });
    if (file < 0) {
        const int code = errno;
        files::Journal().Gone(beside);
        errno = code;
        return false;
    }
    bool done = writeMarker(file) && ::link(beside.c_str(), marker.c_str()) == 0;
    int code = errno;
    ::close(file);
    files::Journal().Remove(beside);
    if (!done && (code == EPERM || code == ENOTSUP || code == ENOSYS || code == EMLINK)) {
        done = writeMarkerInPlace(marker);
        code = errno;
    }
    errno = code;
    return done;
}

std::string markerFor(const std::string& path) {
    std::size_t slash = path.rfind('/');
    std::size_t dot = path.rfind('.');
    bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return path.substr(0, hasExtension ? dot : path.size()) + ".dwk";
}

}  // namespace

const std::string& FileLock::markerText() {
    static pid_t pid = 0;
    static std::string text;
    if (pid != ::getpid()) {
        pid = ::getpid();
        text = std::string(MarkerHead) + "\n" + machineName() + "\n" + std::to_string(pid) + "\n" +
               startOf(pid) + "\n";
    }
    return text;
}

std::optional<FileLock> FileLock::acquire(const std::string& path, std::string& error) {
    int fd = openLocked(path, error);
    if (fd < 0) {
        return std::nullopt;
    }
    const std::string marker = markerFor(path);
    const bool isOwn = files::Journal().Stands(marker);
    files::Journal().NoteMarker(marker);
    bool made = linkMarker(marker) || makeMarker(marker);
    if (!made && errno == EEXIST && isStale(marker)) {
        ::unlink(marker.c_str());
        made = makeMarker(marker);
    }
    if (made) {
        standingMarker() = marker;
        return FileLock(fd, path, marker);
    }
    const int code = errno;
    if (!isOwn) {
        files::Journal().Gone(marker);
    }
    if (code != EEXIST && code != ENOSPC && code != EDQUOT && code != EFBIG && code != EIO) {
        // A folder that takes no new files: the lock on the file itself has to do.
        return FileLock(fd, path, {});
    }
    error = code == EEXIST ? path + " is in use: " + marker + " exists."
                           : marker + " cannot be written: " + std::strerror(code);
    ::close(fd);
    return std::nullopt;
}

FileLock::FileLock(int fd, std::string path, std::string markerPath)
    : fd_(fd), path_(std::move(path)), markerPath_(std::move(markerPath)) {}

FileLock::FileLock(FileLock&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)),
      path_(std::move(other.path_)),
      markerPath_(std::exchange(other.markerPath_, {})) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    if (this != &other) {
        release();
        fd_ = std::exchange(other.fd_, -1);
        path_ = std::move(other.path_);
        markerPath_ = std::exchange(other.markerPath_, {});
    }
    return *this;
}

FileLock::~FileLock() {
    release();
}

void FileLock::release() {
    if (!markerPath_.empty()) {
        if (standingMarker() == markerPath_) {
            standingMarker().clear();
        }
        files::Journal().Remove(markerPath_);
        markerPath_.clear();
    }
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

bool FileLock::renew() {
    std::string error;
    int fd = openLocked(path_, error);
    if (fd < 0) {
        return false;
    }
    ::close(fd_);
    fd_ = fd;
    return true;
}

}  // namespace drafthost
