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

const std::string& ownMarker() {
    static pid_t pid = 0;
    static std::string text;
    if (pid != ::getpid()) {
        pid = ::getpid();
        text = std::string(MarkerHead) + "\n" + machineName() + "\n" + std::to_string(pid) + "\n" +
               startOf(pid) + "\n";
    }
    return text;
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
    int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        error = path + " cannot be opened for writing: " + std::strerror(errno);
        return -1;
    }
    struct stat info {};
    if (::fstat(fd, &info) == 0 && (info.st_mode & 0222) == 0) {
        // Root may write it all the same, but it is meant to stay as it is.
        error = path + " is read-only.";
        ::close(fd);
        return -1;
    }
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        error = path + (errno == EWOULDBLOCK ? " is in use."
                                             : std::string(" cannot be locked: ") + std::strerror(errno));
        ::close(fd);
        return -1;
    }
    return fd;
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

std::string markerFor(const std::string& path) {
    std::size_t slash = path.rfind('/');
    std::size_t dot = path.rfind('.');
    bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return path.substr(0, hasExtension ? dot : path.size()) + ".dwk";
}

}  // namespace

std::optional<FileLock> FileLock::acquire(const std::string& path, std::string& error) {
    int fd = openLocked(path, error);
    if (fd < 0) {
        return std::nullopt;
    }
    const std::string marker = markerFor(path);
    if (linkMarker(marker)) {
        standingMarker() = marker;
        return FileLock(fd, path, marker);
    }
    int markerFd = -1;
    for (int attempt = 0; attempt < 2 && markerFd < 0; ++attempt) {
        markerFd = ::open(marker.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (markerFd < 0 && errno == EEXIST) {
            if (attempt > 0 || !isStale(marker)) {
                error = path;
                error.append(" is in use: ").append(marker).append(" exists.");
                ::close(fd);
                return std::nullopt;
            }
            ::unlink(marker.c_str());
        } else if (markerFd < 0) {
            break;
        }
    }
    if (markerFd < 0) {
        // A folder that takes no new files: the lock on the file itself has to do.
        return FileLock(fd, path, {});
    }
    const std::string& text = ownMarker();
    bool written = ::write(markerFd, text.data(), text.size()) == ssize_t(text.size());
    ::close(markerFd);
    if (!written) {
        error = marker + " cannot be written: " + std::strerror(errno);
        ::unlink(marker.c_str());
        ::close(fd);
        return std::nullopt;
    }
    standingMarker() = marker;
    return FileLock(fd, path, marker);
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
        ::unlink(markerPath_.c_str());
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
