// SPDX-License-Identifier: GPL-3.0-or-later
#include "zip/ZipStorage.h"

#include "system/OwnFile.h"
#include "zip/ZipException.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr std::size_t BufferSize = std::size_t{128} * 1024;

[[noreturn]] void raiseWrite(const std::string& path) {
    throw CZipException(CZipException::WriteError, path, "cannot write: " + files::Because(errno));
}

int openRetry(const std::string& path, int flags, mode_t mode = 0) {
    int handle = -1;
    do {
        handle = open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (handle < 0 && errno == EINTR);
    return handle;
}

}  // namespace

bool CZipStorage::OpenExisting(const std::string& name) {
    Discard();
    const int handle = openRetry(name, O_RDONLY | O_NONBLOCK);
    if (handle < 0) {
        return false;
    }
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
    if (fstat(readHandle, &status) != 0) {
        raiseWrite(path);
    }
    if ((status.st_mode & 0222U) == 0) {
        errno = EACCES;
        raiseWrite(path);
    }
    if (!openBeside()) {
        if (errno == EWOULDBLOCK) {
            throw CZipException(CZipException::WriteError, path,
                                "cannot write: someone else is adding to it");
        }
        raiseWrite(path);
    }
    try {
        std::string buffer(BufferSize, '\0');
        while (Position() < keep) {
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>(BufferSize, keep - Position()));
            ReadAt(Position(), buffer.data(), count);
            Append(buffer.data(), count);
            flush();
        }
    } catch (...) {
        fresh.Discard();
        pending.clear();
        throw;
    }
}

bool CZipStorage::openBeside() {
    if (!fresh.Open(path, files::NewFile::Busy::Refuse)) {
        return false;
    }
    flushed = 0;
    pending.clear();
    pending.reserve(BufferSize);
    return true;
}

void CZipStorage::ReadAt(std::uint64_t offset, void* buffer, std::size_t count) {
    if (fresh.IsOpen() && offset < Position() && offset + count > flushed) {
        flush();
    }
    const int handle = fresh.IsOpen() && offset < flushed ? fresh.Descriptor() : readHandle;
    auto* to = static_cast<char*>(buffer);
    while (count > 0) {
        const ssize_t done = pread(handle, to, count, static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR) {
            continue;
        }
        if (done < 0) {
            throw CZipException(CZipException::ReadError, path,
                                std::string("cannot read: ") + strerror(errno));
        }
        if (done == 0) {
            throw CZipException(CZipException::Damaged, path, "ends too early");
        }
        to += done;
        offset += static_cast<std::uint64_t>(done);
        count -= static_cast<std::size_t>(done);
    }
}

void CZipStorage::writeAll(std::uint64_t offset, const char* data, std::size_t count, std::size_t& done) {
    done = 0;
    while (done < count) {
        const ssize_t wrote =
            pwrite(fresh.Descriptor(), data + done, count - done, static_cast<off_t>(offset + done));
        if (wrote < 0 && errno == EINTR) {
            continue;
        }
        if (wrote < 0) {
            raiseWrite(path);
        }
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
    if (pending.size() >= BufferSize) {
        flush();
    }
}

void CZipStorage::PatchAt(std::uint64_t offset, const std::string& bytes) {
    if (offset >= flushed) {
        pending.replace(static_cast<std::size_t>(offset - flushed), bytes.size(), bytes);
        return;
    }
    if (offset + bytes.size() > flushed) {
        flush();
    }
    std::size_t done = 0;
    writeAll(offset, bytes.data(), bytes.size(), done);
}

void CZipStorage::Rewind(std::uint64_t offset) {
    if (offset >= flushed) {
        pending.resize(static_cast<std::size_t>(offset - flushed));
        return;
    }
    pending.clear();
    if (ftruncate(fresh.Descriptor(), static_cast<off_t>(offset)) != 0) {
        raiseWrite(path);
    }
    flushed = offset;
}

void CZipStorage::Commit() {
    flush();
    if (fsync(fresh.Descriptor()) != 0 || !fresh.Commit()) {
        raiseWrite(path);
    }
    Discard();
}

void CZipStorage::Discard() {
    fresh.Discard();
    if (readHandle >= 0) {
        close(readHandle);
    }
    readHandle = -1;
    size = 0;
    flushed = 0;
    pending.clear();
}
