// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RunState.h"

#include "engine/FileInWork.h"
#include "engine/FileStamp.h"
#include "engine/HostInput.h"
#include "engine/record/FileName.h"
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "engine/report/Report.h"
#include "engine/RunUi.h"
#include "engine/ScriptChain.h"
#include "engine/Watch.h"
#include "log/RunLog.h"
#include "log/Trace.h"
#include "state/StateDigest.h"
#include "state/StateFile.h"
#include "text/WholeFile.h"

#include <QFile>
#include <QThread>

#include <array>
#include <cerrno>
#include <optional>

namespace {

std::optional<RunState> run;
/// The state file as this module left it.
std::optional<FileStamp> ownVersion;
/// Why the state file could not be read when no copy of it was made: no save may take its place.
QString unread;
/// Milliseconds between attempts to save during a run.
constexpr std::array SaveWaits = {200, 400, 800, 1600, 3000};

/// A copy of a file that cannot be read, under the first free name beside it.
QString keepAside(const QString& path) {
    QString copy = path + QStringLiteral(".damaged");
    for (int number = 2; QFile::exists(copy); ++number) {
        copy = path + QStringLiteral(".damaged%1").arg(number);
    }
    QByteArray bytes;
    return ReadWholeFile(path, bytes) == 0 && WriteWholeFile(copy, bytes) == 0 ? copy : QString();
}

/// True when a save may take the file's place.
bool reportDamage(const QString& path, const QString& fault) {
    const QString copy = keepAside(path);
    ConsoleLine(path + QStringLiteral(": ") + fault);
    if (copy.isEmpty()) {
        ConsoleLine(
            QStringLiteral("%1 could not be copied; nothing is saved until it can be read.").arg(path));
    } else {
        ConsoleLine(QStringLiteral("it is kept as %1").arg(copy));
    }
    return !copy.isEmpty();
}

/// What is wrong with the file as it was read; empty when it may be taken.
QString faultOf(int error, const QByteArray& bytes, bool isOwn) {
    const bool missingMatters = TarnelData().BatchRunning || IsHostOfOneRun();
    if (error == ENOENT && !missingMatters) {
        return {};
    }
    if (error != 0) {
        return QStringLiteral("cannot be read: ") + SystemMessage(error);
    }
    return isOwn ? QString() : StateTextFault(bytes, 1);
}

QByteArray wantedRun() {
    return qgetenv("TARNEL_RUN");
}

}  // namespace

RunState& Run() {
    if (!run) {
        run.emplace();
        run->MustSave = qEnvironmentVariableIntValue("TARNEL_MUST_SAVE") != 0;
    }
    return *run;
}

void ResetRun() {
    StopWatch();
    ResetRunLog();
    ResetScripts();
    run.reset();
    ownVersion.reset();
    unread.clear();
    ResetTarnelData();
}

bool LoadRunState() {
    CTarnelData& data = TarnelData();
    if (data.StateFile.isEmpty()) {
        ResolveStateFile();
    }
    // What this module wrote itself need not be looked over a second time.
    const auto stamp = StampOf(data.StateFile);
    // What could not be saved is newer than what stands on the disk.
    if (!Run().Unsaved.isEmpty() && ownVersion == stamp) {
        return true;
    }
    QByteArray bytes;
    const int error = ReadWholeFile(data.StateFile, bytes);
    const QString fault = faultOf(error, bytes, stamp && ownVersion == stamp);
    if (!fault.isEmpty() && (data.BatchRunning || IsHostOfOneRun())) {
        ConsoleLine(data.StateFile + QStringLiteral(": ") + fault);
        unread = data.BatchRunning ? QString() : fault;
        return false;
    }
    unread = !fault.isEmpty() && !reportDamage(data.StateFile, fault) ? fault : QString();
    const FileInWork inWork(data);
    TakeState(data, bytes, 1);
    inWork.FindAgain(data);
    ownVersion = stamp;
    return fault.isEmpty();
}

bool SaveRunState() {
    CTarnelData& data = TarnelData();
    if (!unread.isEmpty()) {
        return false;
    }
    QString error;
    SaveState(nullptr, 1, &error);
    QString& unsaved = Run().Unsaved;
    if (unsaved.isEmpty() && !error.isEmpty()) {
        ConsoleLine(QStringLiteral("the state could not be saved: %1").arg(error));
        for (const int wait : SaveWaits) {
            if (!data.BatchRunning || error.isEmpty()) {
                break;
            }
            QThread::msleep(static_cast<unsigned long>(wait));
            SaveState(nullptr, 1, &error);
        }
    }
    unsaved = error;
    ownVersion = StampOf(data.StateFile);
    return unsaved.isEmpty();
}

QString RunFault() {
    const CTarnelData& data = TarnelData();
    if (!Run().Unsaved.isEmpty()) {
        return QStringLiteral("the state could not be saved: ") + Run().Unsaved;
    }
    if (!unread.isEmpty()) {
        return data.StateFile + QStringLiteral(": ") + unread;
    }
    if (IsHostOfOneRun() && !data.BatchRunning && RunDigest(data) != wantedRun()) {
        return data.StateFile +
               QStringLiteral(": is not the state of the run that this host was started for");
    }
    return {};
}

void RefuseRun(const QString& cause) {
    ConsoleLine(QStringLiteral("no run is started: ") + cause);
    if (IsHostOfOneRun()) {
        SendToHost(QStringLiteral("QUIT\n"));
    }
}

bool IsHostOfOneRun() {
    return !wantedRun().isEmpty();
}

void SetCurrentFileStatus(FileStatusValue status) {
    CTarnelData& data = TarnelData();
    if (data.CurrentFile == -1) {
        return;
    }
    const std::uint32_t entry = data.FileOrder[static_cast<std::size_t>(data.CurrentFile)];
    data.FileStatus[entry] = status;
    Trace("SaveState\n");
    // What is told is on disk.
    if (SaveRunState()) {
        CurrentUi().ShowFileStatus(entry, EntryPath(data, entry), FileStatusWord(status));
    }
}
