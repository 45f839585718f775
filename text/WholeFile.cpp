// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/WholeFile.h"

#include "system/Descriptor.h"
#include "system/NewFile.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <QFile>

namespace {

int writeAll(int fd, const QByteArray& bytes) {
    const char* data = bytes.constData();
    std::size_t left = std::size_t(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(fd, data, left);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return errno;
        }
        data += written;
        left -= std::size_t(written);
    }
    return 0;
}

/// For a folder that lets nothing be made in it. The old text is touched only when the new one is sure to
/// fit.
int writeInPlace(const QByteArray& path, const QByteArray& bytes) {
    const files::Descriptor file(files::OpenOwn(path.toStdString(), O_WRONLY));
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0) {
        return errno;
    }
    if (bytes.size() > status.st_size) {
        const int error = ::posix_fallocate(file.Get(), 0, bytes.size());
        if (error == ENOSPC || error == EFBIG || error == EDQUOT) {
            if (::ftruncate(file.Get(), status.st_size) != 0) {
                return errno;
            }
            return error;
        }
    }
    if (const int error = writeAll(file.Get(), bytes)) {
        return error;
    }
    return ::ftruncate(file.Get(), bytes.size()) != 0 ? errno : 0;
}

}  // namespace

QString SystemMessage(int error) {
    return QString::fromLocal8Bit(files::Because(error));
}

int ReadWholeFile(const QString& path, QByteArray& bytes) {
    constexpr off_t Largest = 0x3fffffff;
    bytes.clear();
    // A pipe that somebody has put there must not make this wait for a writer.
    const files::Descriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? EISDIR : ENXIO;
    }
    if (status.st_size > Largest) {
        return EFBIG;
    }
    qsizetype used = 0;
    bytes.resize(status.st_size + 1);
    for (;;) {
        const ssize_t got = ::read(file.Get(), bytes.data() + used, std::size_t(bytes.size() - used));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0 || used + got > Largest) {
            bytes.clear();
            return got < 0 ? errno : EFBIG;
        }
        if (got == 0) {
            break;
        }
        used += got;
        if (used == bytes.size()) {
            bytes.resize(bytes.size() * 2);
        }
    }
    bytes.resize(used);
    return 0;
}

int WriteWholeFile(const QString& path, const QByteArray& bytes, bool synced) {
    const QByteArray name = QFile::encodeName(path);
    struct stat old {};
    if (::stat(name.constData(), &old) == 0 && S_ISREG(old.st_mode) &&
        ::access(name.constData(), W_OK) != 0) {
        return errno;
    }
    files::NewFile file;
    if (!file.Open(name.toStdString())) {
        const int error = errno;
        if (error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG) {
            return writeInPlace(name, bytes);
        }
        return error;
    }
    const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    const bool done = file.Write(text) && (!synced || ::fsync(file.Descriptor()) == 0) && file.Commit();
    return done ? 0 : errno;
}

int SyncFile(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    const QByteArray folder = QFile::encodeName(path.first(path.lastIndexOf(u'/') + 1));
    const files::Descriptor file(::open(name.constData(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen() || ::fsync(file.Get()) != 0) {
        return errno;
    }
    const files::Descriptor directory(
        ::open(folder.isEmpty() ? "." : folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems know no syncing of folders; the file itself is safe then.
    if (directory.IsOpen() && ::fsync(directory.Get()) != 0 && errno != EINVAL && errno != EROFS) {
        return errno;
    }
    return 0;
}

void RemoveLeftovers(const QString& path) {
    files::DropNewOf(QFile::encodeName(path).toStdString());
}
