#include "drafthost/drawing/FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

namespace drafthost {

namespace {

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    /// Closes now, as some file systems tell of a failed write only then.
    bool close() { return ::close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

std::string because(const std::string& path, int code) {
    return path + ": " + std::strerror(code);
}

std::string resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real != nullptr ? std::string(real.get()) : path;
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
    const Descriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some network file systems cannot sync a folder and say so with EINVAL: their rename is as good as it
    // gets.
    return fd.get() >= 0 && (::fsync(fd.get()) == 0 || errno == EINVAL);
}

}  // namespace

bool readFile(const std::string& path, std::string& bytes, std::string& error) {
    const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (fd.get() < 0 || ::fstat(fd.get(), &info) != 0) {
        error = because(path, errno);
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
    bytes.resize(static_cast<std::size_t>(info.st_size));
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::read(fd.get(), bytes.data() + done, bytes.size() - done);
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
    }
    return true;
}

bool replaceFile(const std::string& path, const std::vector<std::string_view>& pieces, std::string& error) {
    const std::string target = resolved(path);
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : target.substr(0, slash);
    struct stat old {};
    const bool exists = ::stat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        error = S_ISDIR(old.st_mode) ? because(path, EISDIR) : path + ": not a regular file";
        return false;
    }
    std::string temporary = folder + "/.save-XXXXXX";
    Descriptor fd(::mkostemp(temporary.data(), O_CLOEXEC));
    if (fd.get() < 0) {
        error = because(path, errno);
        return false;
    }
    const auto fail = [&](int code) {
        ::unlink(temporary.c_str());
        error = because(path, code);
        return false;
    };
    mode_t mode = 0666;
    if (exists) {
        mode = old.st_mode & 07777;
        // Only root may give a file away; for others the new file is their own, as after any copy.
        if ((old.st_uid != ::geteuid() || old.st_gid != ::getegid()) &&
            ::fchown(fd.get(), old.st_uid, old.st_gid) != 0 && errno != EPERM) {
            return fail(errno);
        }
    } else {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode &= ~mask;
    }
    if (::fchmod(fd.get(), mode) != 0 || !writeAll(fd.get(), pieces) || ::fsync(fd.get()) != 0 ||
        !fd.close()) {
        return fail(errno);
    }
    if (::rename(temporary.c_str(), target.c_str()) != 0) {
        return fail(errno);
    }
    if (!exists && !syncFolder(folder)) {
        error = because(path, errno);
        return false;
    }
    return true;
}

}  // namespace drafthost
