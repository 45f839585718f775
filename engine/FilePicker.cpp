// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/FilePicker.h"

#include "engine/HostVariables.h"
#include "engine/LockMarker.h"
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "engine/RunUi.h"
#include "log/Trace.h"
#include "state/DrawingName.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace {

/// The lock of a drawing that stands twice in the queue is this host's own, which hands it on.
bool isCurrentDrawing(const QString& path) {
    return HostTextVariable("DWGPREFIX") + HostTextVariable("DWGNAME") == path;
}

/// A drawing counts as writable when it can be opened and locked, and has a write bit at all: the system's
/// administrator could write to one that has none, and still should not.
/// Empty, or why it does not.
QString whyNotWritable(const QString& path) {
    const int handle = open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC);
    if (handle < 0) {
        return QStringLiteral("cannot be opened for writing: ") + qt_error_string();
    }
    struct stat status {};
    QString why;
    if (fstat(handle, &status) != 0) {
        why = qt_error_string();
    } else if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        why = QStringLiteral("is write-protected");
    } else if (flock(handle, LOCK_EX | LOCK_NB) != 0 && !isCurrentDrawing(path)) {
        why = errno == EWOULDBLOCK ? QStringLiteral("is open elsewhere")
                                   : QStringLiteral("cannot be locked: ") + qt_error_string();
    }
    close(handle);
    return why;
}

/// What is missing or no file is for the host to refuse, which says so.
bool isFile(const QString& path) {
    struct stat status {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

/// False when the drawing is to be left alone, and WhyLocked then. Sets OpenReadOnly for one that may be
/// looked at only.
bool mayBeProcessed(CTarnelData& data, const QString& path) {
    Trace(QStringLiteral("Check if we can open file readwrite: %1\n").arg(path));
    if (!isFile(path)) {
        Trace("Could not open\n");
        return true;
    }
    if (const QString why = whyNotWritable(path); why.isEmpty()) {
        Trace("Good\n");
    } else {
        Trace("Could not open\n");
        if (!data.ProcessReadOnly) {
            Run().WhyLocked = path + QLatin1Char(' ') + why;
            return false;
        }
        data.OpenReadOnly = true;
    }
    Trace("Check for dwk lock file\n");
    if (HasLockMarker(path)) {
        Trace("Lock file found\n");
        if (!data.ProcessReadOnly) {
            Run().WhyLocked = path + QStringLiteral(" is open elsewhere: there is a \".dwk\" file beside it");
            return false;
        }
        data.OpenReadOnly = true;
    }
    return true;
}

}  // namespace

bool GetNextFile(QString& path) {
    CTarnelData& data = TarnelData();
    for (std::size_t k = 0; k < data.FileNames.size(); ++k) {
        const std::uint32_t entry = data.FileOrder[k];
        if (EntryStatus(data, entry) != ToDo) {
            continue;
        }
        path = EntryPath(data, entry);
        data.OpenReadOnly = false;
        const bool tested = !data.RecoverMode && IsEditableDrawingName(path);
        if (tested && !mayBeProcessed(data, path)) {
            data.FileStatus[entry] = Locked;
            CurrentUi().ShowFileStatus(entry, path, FileStatusWord(Locked));
            continue;
        }
        data.CurrentFile = static_cast<int>(k);
        return true;
    }
    data.CurrentFile = -1;
    return false;
}
