#include "log/ZipStorage.h"

#include "log/ZipException.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr std::size_t BufferSize = std::size_t{128} * 1024;

[[noreturn]] void raiseWrite(const std::string& path) {
    throw CZipException(CZipException::WriteError, path, std::string("cannot write: ") + strerror(errno));
}

int openRetry(const std::string& path, int flags, mode_t mode = 0) {
    int handle = -1;
    do {
        handle = open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (handle < 0 && errno == EINTR);
    return handle;
}

// The file that a symbolic link leads to, so that the link outlives the replacement.
std::string resolved(const std::string& path) {
    std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), free);
    return real ? std::string(real.get()) : path;
}

}  // namespace

bool CZipStorage::OpenExisting(const std::string& name) {
    Discard();
    const int handle = openRetry(name, O_RDONLY | O_NONBLOCK);
    if (handle < 0)
        return false;
    struct stat status {};
    if (fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(handle);
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    path = name;
    readHandle = handle;
    size = static_cast<std::uint64_t>(status.st_size);
    return true;
}

bool CZipStorage::Create(const std::string& name) {
    Discard();
    struct stat status {};
    if (stat(name.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) {
            errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
            return false;
        }
        if ((status.st_mode & 0222U) == 0) {
            errno = EACCES;
            return false;
        }
    }
    path = name;
    size = 0;
    return openBeside();
}

void CZipStorage::BeginUpdate(std::uint64_t keep) {
    struct stat status {};
    if (fstat(readHandle, &status) != 0)
        raiseWrite(path);
    if ((status.st_mode & 0222U) == 0) {
        errno = EACCES;
        raiseWrite(path);
    }
    if (!openBeside()) {
        if (errno == EWOULDBLOCK)
            throw CZipException(CZipException::WriteError, path,
                                "cannot write: someone else is adding to it");
        raiseWrite(path);
    }
    try {
        if (fchmod(writeHandle, status.st_mode & 07777U) != 0)
            raiseWrite(path);
        std::string buffer(BufferSize, '\0');
        while (Position() < keep) {
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>(BufferSize, keep - Position()));
            ReadAt(Position(), buffer.data(), count);
            Append(buffer.data(), count);
            flush();
        }
    } catch (...) {
        unlink(besidePath.c_str());
        close(writeHandle);
        writeHandle = -1;
        pending.clear();
        throw;
    }
}

// One fixed name, held by a lock: what a killed process left is taken over instead of piling up.
bool CZipStorage::openBeside() {
    besidePath = resolved(path) + ".new";
    for (;;) {
        const int handle = openRetry(besidePath, O_RDWR | O_CREAT | O_NOFOLLOW, 0666);
        if (handle < 0)
            return false;
        struct stat held {};
        struct stat named {};
        bool same = false;
        int cause = 0;
        if (flock(handle, LOCK_EX | LOCK_NB) != 0 || fstat(handle, &held) != 0)
            cause = errno;
        else if (!S_ISREG(held.st_mode))
            cause = EINVAL;
        else {
            // Between opening and locking the holder before us may have put the file in the archive's place.
            same = lstat(besidePath.c_str(), &named) == 0 && named.st_ino == held.st_ino &&
                   named.st_dev == held.st_dev;
            if (same && ftruncate(handle, 0) != 0)
                cause = errno;
        }
        if (cause == 0 && same) {
            writeHandle = handle;
            flushed = 0;
            pending.clear();
            pending.reserve(BufferSize);
            return true;
        }
        close(handle);
        if (cause != 0) {
            errno = cause;
            return false;
        }
    }
}

void CZipStorage::ReadAt(std::uint64_t offset, void* buffer, std::size_t count) {
    if (writeHandle >= 0 && offset < Position() && offset + count > flushed)
        flush();
    const int handle = writeHandle >= 0 && offset < flushed ? writeHandle : readHandle;
    auto* to = static_cast<char*>(buffer);
    while (count > 0) {
        const ssize_t done = pread(handle, to, count, static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR)
            continue;
        if (done < 0)
            throw CZipException(CZipException::ReadError, path,
                                std::string("cannot read: ") + strerror(errno));
        if (done == 0)
            throw CZipException(CZipException::Damaged, path, "ends too early");
        to += done;
        offset += static_cast<std::uint64_t>(done);
        count -= static_cast<std::size_t>(done);
    }
}

void CZipStorage::writeAll(std::uint64_t offset, const char* data, std::size_t count, std::size_t& done) {
    done = 0;
    while (done < count) {
        const ssize_t wrote =
            pwrite(writeHandle, data + done, count - done, static_cast<off_t>(offset + done));
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote < 0)
            raiseWrite(path);
        done += static_cast<std::size_t>(wrote);
    }
}

void CZipStorage::flush() {
    std::size_t done = 0;
    try {
        writeAll(flushed, pending.data(), pending.size(), done);
    } catch (...) {
        // What belongs to earlier entries must still be there when this one is taken back.
        pending.erase(0, done);
        flushed += done;
        throw;
    }
    flushed += done;
    pending.clear();
}

void CZipStorage::Append(const void* data, std::size_t count) {
    pending.append(static_cast<const char*>(data), count);
    if (pending.size() >= BufferSize)
        flush();
}

void CZipStorage::PatchAt(std::uint64_t offset, const std::string& bytes) {
    if (offset >= flushed) {
        pending.replace(static_cast<std::size_t>(offset - flushed), bytes.size(), bytes);
        return;
    }
    if (offset + bytes.size() > flushed)
        flush();
    std::size_t done = 0;
    writeAll(offset, bytes.data(), bytes.size(), done);
}

void CZipStorage::Rewind(std::uint64_t offset) {
    if (offset >= flushed) {
        pending.resize(static_cast<std::size_t>(offset - flushed));
        return;
    }
    pending.clear();
    if (ftruncate(writeHandle, static_cast<off_t>(offset)) != 0)
        raiseWrite(path);
    flushed = offset;
}

void CZipStorage::Commit() {
    flush();
    if (fsync(writeHandle) != 0)
        raiseWrite(path);
    const std::string target = besidePath.substr(0, besidePath.size() - 4);
    if (rename(besidePath.c_str(), target.c_str()) != 0)
        raiseWrite(path);
    // From here on the file is the archive; a late error of close changes nothing that was synced.
    close(writeHandle);
    writeHandle = -1;
    Discard();
}

void CZipStorage::Discard() {
    if (writeHandle >= 0) {
        unlink(besidePath.c_str());
        close(writeHandle);
    }
    if (readHandle >= 0)
        close(readHandle);
    writeHandle = -1;
    readHandle = -1;
    size = 0;
    flushed = 0;
    pending.clear();
}
