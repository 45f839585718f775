// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/LockMarker.h"

#include "engine/record/FileName.h"
#include "text/WholeFile.h"

#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <QFile>
#include <QSysInfo>

namespace {

/// State and start of a process as the system tells them; empty when there is none.
QList<QByteArray> processFields(qint64 process) {
    QByteArray text;
    if (ReadWholeFile(QStringLiteral("/proc/%1/stat").arg(process), text) != 0) {
        return {};
    }
    // The program's name stands in parentheses and may hold anything.
    return text.sliced(text.lastIndexOf(')') + 1).simplified().split(' ');
}

/// Written by this process, or by one of this machine that has died.
bool holdsNobodyOff(const QByteArray& marker) {
    constexpr qsizetype StartField = 19;
    const QList<QByteArray> lines = marker.split('\n');
    if (lines.size() < 4 || lines[1] != QSysInfo::machineHostName().toUtf8()) {
        return false;
    }
    bool isNumber = false;
    const qint64 process = lines[2].toLongLong(&isNumber);
    if (!isNumber || process <= 0) {
        return false;
    }
    if (process == ::getpid() || (::kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH)) {
        return true;
    }
    const QList<QByteArray> fields = processFields(process);
    // A killed process keeps its number until its parent has asked for it.
    return fields.size() > StartField &&
           (fields[0] == "Z" || fields[0] == "X" || fields[StartField] != lines[3]);
}

}  // namespace

bool HasLockMarker(const QString& drawing) {
    const CFileName name(drawing);
    const QString marker = JoinPath(name.GetDirectory(), name.GetName() + QStringLiteral(".dwk"));
    struct stat status {};
    if (::stat(QFile::encodeName(marker).constData(), &status) != 0) {
        return false;
    }
    constexpr off_t Largest = 4096;
    QByteArray text;
    return !S_ISREG(status.st_mode) || status.st_size > Largest || ReadWholeFile(marker, text) != 0 ||
           !holdsNobodyOff(text);
}
