// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/FileName.h"

namespace {

bool isLetter(QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

}  // namespace

bool IsWindowsPath(QStringView path) {
    if (path.size() >= 3 && path[1] == u':' && path[2] == u'\\') {
        return isLetter(path[0]);
    }
    return path.size() >= 2 && path[0] == u'\\' && path[1] == u'\\';
}

qsizetype NameOffset(QStringView path) {
    const bool windows = IsWindowsPath(path);
    for (qsizetype i = path.size(); i > 0; --i) {
        if (path[i - 1] == u'/' || (windows && path[i - 1] == u'\\')) {
            return i;
        }
    }
    return 0;
}

CFileName::CFileName(const QString& path) {
    SetPath(path);
}

void CFileName::SetPath(const QString& newPath) {
    path = newPath;
    nameStart = NameOffset(path);
    extStart = path.lastIndexOf(u'.');
    if (extStart < nameStart) {
        extStart = path.size();
    }
}

void AppendPath(QString& out, QStringView directory, QStringView name) {
    out.append(directory);
    if (!directory.isEmpty()) {
        const bool windows = IsWindowsPath(directory);
        const QChar last = directory.back();
        if (last != u'/' && !(windows && last == u'\\')) {
            out.append(windows ? u'\\' : u'/');
        }
    }
    out.append(name);
}

QString JoinPath(QStringView directory, QStringView name) {
    QString path;
    path.reserve(directory.size() + 1 + name.size());
    AppendPath(path, directory, name);
    return path;
}

QString TrimSeparators(const QString& directory) {
    qsizetype length = directory.size();
    while (length > 0 && (directory[length - 1] == u'/' || directory[length - 1] == u'\\')) {
        --length;
    }
    return directory.first(length);
}
