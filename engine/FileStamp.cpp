// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/FileStamp.h"

#include <sys/stat.h>
#include <QFile>

std::optional<FileStamp> StampOf(const QString& path) {
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0) {
        return std::nullopt;
    }
    return FileStamp{status.st_ino, status.st_size, status.st_mtim};
}
