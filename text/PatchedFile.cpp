// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/PatchedFile.h"

#include "system/OwnFile.h"
#include "text/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <QFile>
#include <utility>

namespace {

/// A write within one page is never cut short by a signal, so a kill leaves the old bytes or the new ones.
constexpr qsizetype PageSize = 4096;

struct Written {
    QString Path;
    QByteArray Bytes;
    struct stat Status {};
};
/// What the last call left behind.
std::optional<Written> last;

bool sameVersion(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_dev == b.st_dev && a.st_size == b.st_size && a.st_nlink == 1 &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

void remember(const QString& path, const QByteArray& bytes) {
    Written written{path, bytes, {}};
    std::string target;
    if (files::Follow(QFile::encodeName(path).toStdString(), files::Trust::Own, &target) == 0 &&
        ::lstat(target.c_str(), &written.Status) == 0) {
        last = std::move(written);
    } else {
        last.reset();
    }
}

/// Begin and end of what differs in two texts of one length, equal when nothing does. Compared by pages, as
/// the text of a long queue is compared at each status.
std::pair<qsizetype, qsizetype> changedPart(const QByteArray& before, const QByteArray& after) {
    const qsizetype size = after.size();
    const auto differs = [&](qsizetype page) {
        const auto length = static_cast<std::size_t>(std::min(PageSize, size - page));
        return std::memcmp(before.constData() + page, after.constData() + page, length) != 0;
    };
    qsizetype start = 0;
    while (start < size && !differs(start)) {
        start += PageSize;
    }
    if (start >= size) {
        return {0, 0};
    }
    qsizetype lastPage = (size - 1) / PageSize * PageSize;
    while (!differs(lastPage)) {
        lastPage -= PageSize;
    }
    qsizetype end = std::min(lastPage + PageSize, size);
    while (before[start] == after[start]) {
        ++start;
    }
    while (before[end - 1] == after[end - 1]) {
        --end;
    }
    return {start, end};
}

/// True when the file now holds the bytes.
bool patch(const QString& path, const QByteArray& bytes) {
    if (!last || last->Path != path || last->Bytes.size() != bytes.size()) {
        return false;
    }
    const auto [start, end] = changedPart(last->Bytes, bytes);
    if (end > start && start / PageSize != (end - 1) / PageSize) {
        return false;
    }
    std::string target;
    if (files::Follow(QFile::encodeName(path).toStdString(), files::Trust::Own, &target) != 0) {
        return false;
    }
    const int file = ::open(target.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    struct stat status {};
    bool done = ::fstat(file, &status) == 0 && sameVersion(status, last->Status);
    if (done && end > start) {
        done = ::pwrite(file, bytes.constData() + start, static_cast<std::size_t>(end - start), start) ==
                   end - start &&
               ::fstat(file, &last->Status) == 0;
    }
    ::close(file);
    if (done) {
        last->Bytes = bytes;
    }
    return done;
}

}  // namespace

int WritePatchedFile(const QString& path, const QByteArray& bytes) {
    if (patch(path, bytes)) {
        return 0;
    }
    const int error = WriteWholeFile(path, bytes);
    if (error == 0) {
        remember(path, bytes);
    } else {
        last.reset();
    }
    return error;
}
