// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunRecord.h"

#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "state/StateDigest.h"
#include "state/StateFile.h"
#include "text/WholeFile.h"

bool ReadRecord(const std::string& file, CTarnelData* record, std::string* error, RecordForm form) {
    const QString path = QString::fromStdString(file);
    QByteArray bytes;
    if (const int cause = ReadWholeFile(path, bytes)) {
        *error = file + ": cannot be read: " + SystemMessage(cause).toStdString();
        return false;
    }
    const QString fault = StateTextFault(bytes, form == RecordForm::State ? 1 : 0);
    if (!fault.isEmpty()) {
        *error = file + ": does not hold the state of a run: " + fault.toStdString();
        return false;
    }
    QString failure;
    LoadState(*record, &path, 1, &failure);
    *error = failure.toStdString();
    BuildFileOrder(*record);
    return error->empty();
}

bool WriteRecord(const std::string& file, CTarnelData& record, std::string* error) {
    const QString path = QString::fromStdString(file);
    QString unsaved;
    SaveState(record, &path, 1, &unsaved);
    if (!unsaved.isEmpty()) {
        *error = unsaved.toStdString();
        return false;
    }
    if (const int failure = SyncFile(path)) {
        *error = file + ": cannot be brought to the disk: " + SystemMessage(failure).toStdString();
        return false;
    }
    return true;
}

std::string RunDigestOf(const std::string& file, std::string* error) {
    CTarnelData record;
    return ReadRecord(file, &record, error) ? RunDigest(record).toStdString() : std::string();
}
