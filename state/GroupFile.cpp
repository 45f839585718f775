// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/GroupFile.h"

#include "engine/record/FileName.h"
#include "state/GroupList.h"
#include "state/StateFile.h"
#include "text/ScriptText.h"
#include "text/WholeFile.h"

#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"

#include <array>
#include <QFile>

namespace {

void emptyQueue(CTarnelData& data) {
    data.FileNames.clear();
    data.FileDirs.clear();
    data.FileStatus.clear();
}

void appendPath(CTarnelData& data, const QString& path) {
    const CFileName name(path);
    data.FileDirs.push_back(name.GetDirectory());
    data.FileNames.push_back(name.GetNameExt());
}

bool loadPlainList(CTarnelData& data, const QString& path, QString* message) {
    std::vector<QString> entries;
    if (ReadPathList(path, {}, &entries, message) != GroupListError::None) {
        *message = QStringLiteral("Could not open file.");
        return false;
    }
    emptyQueue(data);
    for (const QString& entry : entries) {
        appendPath(data, entry);
        data.FileStatus.push_back(ToDo);
    }
    BuildFileOrder(data);
    return true;
}

bool loadScriptFile(CTarnelData& data, const QString& path, QString* message) {
    constexpr std::array Statuses = {Error, FailOpen, Timeout, Locked, ToDo, Done};
    ScriptFileGroup group;
    const GroupListError error = ReadScriptFileGroup(path, &group, message);
    if (error != GroupListError::None) {
        *message = error == GroupListError::CannotOpen ? QStringLiteral("Could not open file.")
                                                       : QStringLiteral("Invalid file contents.");
        return false;
    }
    QByteArray bytes;
    if (ReadWholeFile(group.Script, bytes) != 0) {
        *message = QStringLiteral("Invalid script file location.");
        return false;
    }
    const ScriptText script = DecodeScript(bytes);
    if (!script.Fault.isEmpty()) {
        *message = group.Script + u": " + script.Fault;
        return false;
    }
    if (!script.Note.isEmpty()) {
        *message = group.Script + u": " + script.Note;
    }
    data.LastScriptFile = group.Script;
    data.Script = script.Script;
    data.MaxTime = group.MaxTime;
    data.AlarmTime = group.AlarmTime;
    emptyQueue(data);
    for (const ScriptFileGroup::Entry& entry : group.Entries) {
        appendPath(data, entry.Path);
        if (entry.OldStatus >= 0 && entry.OldStatus < int(Statuses.size())) {
            data.FileStatus.push_back(Statuses[std::size_t(entry.OldStatus)]);
        }
    }
    BuildFileOrder(data);
    return true;
}

}  // namespace

bool LoadGroupFile(const QString& path, QString* message) {
    CTarnelData& data = TarnelData();
    const QString extension = CFileName(path).GetExt().toLower();
    if (extension == u".grp") {
        return loadScriptFile(data, path, message);
    }
    if (extension != u".xml") {
        return loadPlainList(data, path, message);
    }
    if (!QFile(path).open(QIODevice::ReadOnly)) {
        *message = QStringLiteral("Could not open file.");
        return false;
    }
    LoadState(&path, 0);
    return true;
}

bool SaveGroupFile(const QString& path, QString* error) {
    SaveState(&path, 0, error);
    return error->isEmpty();
}
