// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/RunLog.h"

#include "engine/record/FileName.h"
#include "engine/report/Report.h"
#include "log/NarrowFile.h"
#include "log/RunLogText.h"
#include "log/Trace.h"
#include "text/WholeFile.h"
#include "zip/ZipException.h"

#include <QFile>
#include <QStringList>

#include <unistd.h>
#include <cerrno>

namespace {

/// From the start of a run to its end, whether its file could be opened or not.
bool isOpen = false;
QString logFolder;
NarrowFile runLogStream;
/// Text that the system has not taken yet; it is tried again with each line and at the end.
std::string unwritten;
/// A failure was told, and none is told again before something could be written.
bool isToldBroken = false;
QStringList hostLogList;
/// The drawing in work as the log names it.
QString fileInWork;
/// The drawing in work has its entry.
bool isFileLogged = false;
/// How many drawings have a log of ours, since the host had none.
int unopenedCount = 0;

QString runLogPath() {
    return JoinPath(logFolder, u"tnl log.html");
}

/// With the number of the process: the front may still have to pack what a host that died has left.
QString unopenedLogPath(int number) {
    return JoinPath(logFolder, QStringLiteral("unopened-%1-%2.log").arg(getpid()).arg(number));
}

/// Empty, or the cause for which text is left.
QString writeWhatIsLeft() {
    const bool ready =
        runLogStream.IsOpen() || runLogStream.OpenNew(QFile::encodeName(runLogPath()).toStdString());
    const QString cause = ready ? QString() : qt_error_string();
    if (ready) {
        unwritten.erase(0, runLogStream.Append(unwritten));
    }
    return unwritten.empty() ? QString() : cause.isEmpty() ? qt_error_string() : cause;
}

/// The whole text in a new file in the old one's place, for a file that takes no more while its folder takes
/// others. True when it stands.
bool writeAnew() {
    QByteArray text;
    // Without an own file what stands there is of another run.
    if (runLogStream.IsOpen() && ReadWholeFile(runLogPath(), text) != 0) {
        return false;
    }
    text += QByteArray::fromStdString(unwritten);
    if (WriteWholeFile(runLogPath(), text) != 0) {
        return false;
    }
    unwritten.clear();
    return true;
}

void write(const QString& text) {
    unwritten += EncodeRunLog(text).toStdString();
    const QString cause = writeWhatIsLeft();
    if (!cause.isEmpty() && !isToldBroken) {
        ConsoleLine(QStringLiteral("%1: cannot be written: %2; it is tried again").arg(runLogPath(), cause));
    }
    isToldBroken = !cause.isEmpty();
}

/// The host's logs go into the archive, and are deleted only once they are safe there.
void packLogs() {
    // A host without a log of the drawing gives no name.
    hostLogList.removeAll(QString());
    hostLogList.removeDuplicates();
    if (hostLogList.isEmpty()) {
        return;
    }
    const QString file = JoinPath(logFolder, u"TNLLog.zip");
    constexpr int Attempts = 2;
    for (int attempt = 1; attempt <= Attempts; ++attempt) {
        try {
            const PackedLogs result = PackHostLogs(file, hostLogList, true);
            for (const QString& failure : result.Failures) {
                ConsoleLine(failure + QStringLiteral("; the log stays where it is"));
            }
            for (const QString& path : result.Packed) {
                QFile::remove(path);
            }
            return;
        } catch (const CZipException& error) {
            ConsoleLine(QString::fromUtf8(error.what()) +
                        (attempt < Attempts ? QStringLiteral("; it is tried again")
                                            : QStringLiteral("; the host's logs stay where they are.")));
        }
    }
}

}  // namespace

void OpenRunLog(const QString& folder) {
    Trace("Open and write to tnl log.html\n");
    if (!isOpen) {
        isOpen = true;
        logFolder = folder;
        isToldBroken = false;
    }
    fileInWork.clear();
    write(RunLogHead);
    RunLogLine(BatchStartedHtml());
}

void RunLogLine(const QString& html) {
    if (isOpen) {
        write(RunLogLineText(RunLogTime(), html));
    }
}

void BeginFileInRunLog(const QString& path) {
    fileInWork = path;
    isFileLogged = false;
}

void WatchNewLogFile(const QString& hostLogPath) {
    if (!isOpen) {
        return;
    }
    hostLogList.append(hostLogPath);
    RunLogLine(ProcessingHtml(HostLogId(hostLogPath), fileInWork));
    isFileLogged = true;
}

void LogUnopenedFile(const QString& said) {
    if (!isOpen || isFileLogged || fileInWork.isEmpty()) {
        return;
    }
    QString text = fileInWork + QStringLiteral("\r\nThe drawing was not opened.\r\n");
    if (!said.isEmpty()) {
        text += said + QStringLiteral("\r\n");
    }
    const QString path = unopenedLogPath(++unopenedCount);
    NarrowFile log;
    const bool isWritten = log.OpenNew(QFile::encodeName(path).toStdString()) && log.Write(text);
    if (!isWritten) {
        ConsoleLine(QStringLiteral("%1: cannot be written: %2").arg(path, qt_error_string()));
        // Nobody else would know of what has come to stand there.
        log.Close();
        QFile::remove(path);
    }
    WatchNewLogFile(isWritten ? path : QString());
}

bool CloseRunLog() {
    if (!isOpen) {
        return false;
    }
    LogUnopenedFile({});
    packLogs();
    hostLogList.clear();
    RunLogLine(BatchCompletedHtml());
    write(RunLogTail);
    if (!unwritten.empty()) {
        const QString cause = writeWhatIsLeft();
        if (!cause.isEmpty() && !writeAnew()) {
            ConsoleLine(QStringLiteral("%1: cannot be written: %2; the run log is not whole")
                            .arg(runLogPath(), cause));
        }
    }
    ResetRunLog();
    return true;
}

void ResetRunLog() {
    runLogStream.Close();
    unwritten.clear();
    hostLogList.clear();
    fileInWork.clear();
    isFileLogged = false;
    isOpen = false;
}
