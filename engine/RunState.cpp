#include "engine/RunState.h"

#include "engine/FileInWork.h"
#include "engine/FileStamp.h"
#include "engine/HostText.h"
#include "engine/RunUi.h"
#include "engine/ScriptChain.h"
#include "engine/TarnelData.h"
#include "engine/Watch.h"
#include "log/RunLog.h"
#include "log/Trace.h"
#include "state/FileName.h"
#include "state/StateFile.h"

#include <QFile>

#include <optional>

namespace {

std::optional<RunState> run;
/// The state file as this module left it.
std::optional<FileStamp> ownVersion;
QString lastSaveError;

/// A copy of a file that cannot be read, under the first free name beside it.
QString keepAside(const QString& path) {
    QString copy = path + QStringLiteral(".damaged");
    for (int number = 2; QFile::exists(copy); ++number)
        copy = path + QStringLiteral(".damaged%1").arg(number);
    return QFile::copy(path, copy) ? copy : QString();
}

void reportDamage(const QString& path) {
    const QString fault = CheckStateFile(path);
    if (fault.isEmpty())
        return;
    const QString copy = keepAside(path);
    HostPrint(QStringLiteral("\nTarnel: %1\n").arg(fault));
    if (copy.isEmpty())
        HostPrint(
            QStringLiteral("Tarnel: %1 could not be copied; move it before the next save.\n").arg(path));
    else
        HostPrint(QStringLiteral("Tarnel: it is kept as %1\n").arg(copy));
}

}  // namespace

RunState& Run() {
    if (!run)
        run.emplace();
    return *run;
}

void ResetRun() {
    StopWatch();
    ResetRunLog();
    ResetScripts();
    run.reset();
    ownVersion.reset();
    lastSaveError.clear();
    ResetTarnelData();
}

void LoadRunState() {
    CTarnelData& data = TarnelData();
    if (data.StateFile.isEmpty())
        ResolveStateFile();
    // What this module wrote itself need not be looked over a second time.
    const auto stamp = StampOf(data.StateFile);
    if (stamp && !(ownVersion && *ownVersion == *stamp))
        reportDamage(data.StateFile);
    const FileInWork inWork(data);
    LoadState(nullptr, 1);
    inWork.FindAgain(data);
    ownVersion = stamp;
}

void SaveRunState() {
    SaveState(nullptr, 1);
    const QString& error = LastStateError();
    if (!error.isEmpty() && error != lastSaveError)
        HostPrint(QStringLiteral("\nTarnel: the state could not be saved: %1\n").arg(error));
    lastSaveError = error;
    ownVersion = StampOf(TarnelData().StateFile);
}

QString DataFile(const QString& name) {
    return JoinPath(TarnelData().DataDir, name);
}

void SetCurrentFileStatus(FileStatusValue status) {
    CTarnelData& data = TarnelData();
    if (data.CurrentFile == -1)
        return;
    const std::uint32_t entry = data.FileOrder[static_cast<std::size_t>(data.CurrentFile)];
    data.FileStatus[entry] = status;
    Trace("SaveState\n");
    SaveRunState();
    CurrentUi().ShowFileStatus(EntryPath(data, entry), FileStatusWord(status));
}
