// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Files.h"

#include "system/OwnFile.h"
#include "text/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

namespace {

bool tell(const std::string& path, const char* what, int failure, std::string* error) {
    if (failure != 0) {
        *error = path + what + files::Because(failure);
    }
    return failure == 0;
}

/// A million long paths are a quarter of that.
constexpr qsizetype Largest = qsizetype{256} << 20;
constexpr std::string_view TooLarge = "holds more than 256 MB, which is no script and no list";

/// Empty, or why it cannot be read.
std::string readAll(int descriptor, QByteArray* bytes) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return std::strerror(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return "Is a directory";
    }
    if (S_ISREG(status.st_mode) && status.st_size > Largest) {
        return std::string(TooLarge);
    }
    constexpr qsizetype Block = qsizetype{64} << 10;
    qsizetype used = 0;
    for (;;) {
        if (used == bytes->size()) {
            bytes->resize(std::max(Block, used * 2));
        }
        const ssize_t got =
            read(descriptor, bytes->data() + used, static_cast<std::size_t>(bytes->size() - used));
        if (got < 0 && errno != EINTR) {
            return std::strerror(errno);
        }
        if (got == 0) {
            break;
        }
        used += std::max<ssize_t>(got, 0);
        if (used > Largest) {
            return std::string(TooLarge);
        }
    }
    bytes->resize(used);
    return {};
}

}  // namespace

bool ReadFile(const std::string& path, std::string* text, std::string* error) {
    QByteArray bytes;
    const int failure = ReadWholeFile(QString::fromStdString(path), bytes);
    *text = bytes.toStdString();
    return tell(path, ": cannot be read: ", failure, error);
}

bool WriteFile(const std::string& path, const std::string& text, std::string* error) {
    const int failure = WriteWholeFile(QString::fromStdString(path), QByteArray::fromStdString(text), true);
    return tell(path, ": cannot be written: ", failure, error) && SyncToDisk(path, error);
}

bool SyncToDisk(const std::string& path, std::string* error) {
    return tell(path, ": cannot be brought to the disk: ", SyncFile(QString::fromStdString(path)), error);
}

bool IsStandardInput(const std::string& name) {
    return name == "-";
}

bool ReadInput(const std::string& name, QByteArray* bytes, std::string* error) {
    bytes->clear();
    const bool isStandard = IsStandardInput(name);
    const int descriptor = isStandard ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    const std::string cause = descriptor < 0 ? std::strerror(errno) : readAll(descriptor, bytes);
    if (descriptor >= 0 && !isStandard) {
        close(descriptor);
    }
    if (!cause.empty()) {
        *error = (isStandard ? std::string("standard input") : name) + ": cannot be read: " + cause;
        bytes->clear();
    }
    return cause.empty();
}
