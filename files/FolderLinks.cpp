// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FolderLinks.h"

#include <cstdlib>
#include <QFile>
#include <QUrl>

#include <sys/stat.h>

namespace {

/// More links in a row than anyone makes on purpose.
constexpr int LongestChain = 16;
constexpr qint64 LargestLinkFile = 64 * 1024;

const QString DesktopEnding = QStringLiteral(".desktop");

/// Path of a target as link files write it: a URL, a path, or one that begins with the home folder's name.
QByteArray targetPath(QByteArray text) {
    const QByteArray home = qgetenv("HOME");
    if (text.startsWith("$HOME")) {
        text = home + text.mid(5);
    } else if (text.startsWith("file:$HOME")) {
        text = home + text.mid(10);
    }
    if (text.startsWith('/')) {
        return text;
    }
    const QUrl url(QString::fromUtf8(text));
    const bool here = url.host().isEmpty() || url.host() == u"localhost";
    return url.scheme() == u"file" && here ? QFile::encodeName(url.path()) : QByteArray();
}

/// What a link file names as its target; empty when it is of another type.
QByteArray targetOfLinkFile(const QByteArray& path) {
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArray type, url, folder;
    bool inEntry = false;
    for (const QByteArray& raw : file.read(LargestLinkFile).split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.startsWith('[')) {
            inEntry = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inEntry || equals < 0) {
            continue;
        }
        const QByteArray key = line.first(equals).trimmed();
        const QByteArray value = line.sliced(equals + 1).trimmed();
        if (key == "Type") {
            type = value;
        } else if (key == "URL" || key == "URL[$e]") {
            url = value;
        } else if (key == "Path") {
            folder = value;
        }
    }
    if (type != "Link" && type != "Directory") {
        return {};
    }
    return targetPath(url.isEmpty() ? folder : url);
}

}  // namespace

bool IsLinkFileName(const QString& name) {
    return name.endsWith(DesktopEnding, Qt::CaseInsensitive) ||
           name.endsWith(QLatin1String(".lnk"), Qt::CaseInsensitive);
}

QByteArray FolderOfLink(const QByteArray& path) {
    QByteArray at = path;
    for (int links = 0; links < LongestChain; ++links) {
        struct stat status {};
        if (at.isEmpty() || stat(at.constData(), &status) != 0) {
            return {};
        }
        if (S_ISDIR(status.st_mode)) {
            char* real = realpath(at.constData(), nullptr);
            const QByteArray folder(real);
            std::free(real);
            return folder;
        }
        if (!S_ISREG(status.st_mode) || !at.toLower().endsWith(".desktop")) {
            return {};
        }
        at = targetOfLinkFile(at);
    }
    return {};
}
