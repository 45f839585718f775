// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/WrittenFile.h"

#include "system/OwnFile.h"
#include "text/WholeFile.h"

namespace {

bool Tell(const std::string& path, const char* what, int failure, std::string* error) {
    if (failure != 0) {
        *error = path + what + files::Because(failure);
    }
    return failure == 0;
}

}  // namespace

bool ReadFile(const std::string& path, std::string* text, std::string* error) {
    QByteArray bytes;
    const int failure = ReadWholeFile(QString::fromStdString(path), bytes);
    *text = bytes.toStdString();
    return Tell(path, ": cannot be read: ", failure, error);
}

bool WriteFile(const std::string& path, const std::string& text, std::string* error) {
    const int failure = WriteWholeFile(QString::fromStdString(path), QByteArray::fromStdString(text), true);
    return Tell(path, ": cannot be written: ", failure, error) && SyncToDisk(path, error);
}

bool SyncToDisk(const std::string& path, std::string* error) {
    return Tell(path, ": cannot be brought to the disk: ", SyncFile(QString::fromStdString(path)), error);
}
