// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FolderPlaces.h"

#include <algorithm>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QUrl>
#include <QXmlStreamReader>

namespace {

constexpr qint64 LargestList = 1024 * 1024;

QByteArray homeFolder() {
    return TidyPath(QFile::encodeName(QDir::homePath()));
}

QString configFile(const QString& name) {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/' + name;
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(LargestList) : QByteArray();
}

QString titleOf(const QByteArray& path) {
    return path == "/" ? QString::fromLatin1("/") : QFile::decodeName(path.mid(path.lastIndexOf('/') + 1));
}

void add(std::vector<FolderPlace>& places, const QByteArray& path, const QString& title = {}) {
    const QByteArray tidy = TidyPath(path);
    const bool known =
        std::any_of(places.begin(), places.end(), [&](const auto& place) { return place.Path == tidy; });
    if (tidy.startsWith('/') && !known) {
        places.push_back({tidy, title.isEmpty() ? titleOf(tidy) : title});
    }
}

void addUrl(std::vector<FolderPlace>& places, const QByteArray& text, const QString& title) {
    const QUrl url = QUrl::fromEncoded(text);
    if (url.isLocalFile()) {
        add(places, QFile::encodeName(url.toLocalFile()), title);
    }
}

/// `XDG_MUSIC_DIR="$HOME/Music"`; one that is the home folder itself stands for none.
void addUserFolders(std::vector<FolderPlace>& places) {
    for (const QByteArray& raw : contentOf(configFile(QStringLiteral("user-dirs.dirs"))).split('\n')) {
        const QByteArray line = raw.trimmed();
        const qsizetype equals = line.indexOf('=');
        if (!line.startsWith("XDG_") || equals < 0) {
            continue;
        }
        QByteArray value = line.sliced(equals + 1);
        if (value.size() >= 2 && value.startsWith('"') && value.endsWith('"')) {
            value = value.sliced(1, value.size() - 2);
        }
        if (value == "$HOME" || value.startsWith("$HOME/")) {
            value = homeFolder() + value.sliced(5);
        }
        if (TidyPath(value) != homeFolder() && TidyPath(value) != DesktopFolder()) {
            add(places, value);
        }
    }
}

/// A URL a line, with a title behind it or none.
void addGtkBookmarks(std::vector<FolderPlace>& places, const QString& file) {
    for (const QByteArray& raw : contentOf(file).split('\n')) {
        const QByteArray line = raw.trimmed();
        const qsizetype blank = line.indexOf(' ');
        addUrl(places, blank < 0 ? line : line.first(blank),
               blank < 0 ? QString() : QString::fromUtf8(line.sliced(blank + 1).trimmed()));
    }
}

void addXbelBookmarks(std::vector<FolderPlace>& places, const QString& file) {
    QXmlStreamReader xml(contentOf(file));
    QByteArray url;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"bookmark") {
            url = xml.attributes().value(QLatin1String("href")).toUtf8();
        } else if (xml.isStartElement() && xml.name() == u"title" && !url.isEmpty()) {
            addUrl(places, url, xml.readElementText());
            url.clear();
        } else if (xml.isEndElement() && xml.name() == u"bookmark" && !url.isEmpty()) {
            addUrl(places, url, {});
            url.clear();
        }
    }
}

/// Spaces and the like stand in the system's table of mounts as a backslash and three octal digits.
QByteArray plainMountPath(const QByteArray& text) {
    QByteArray plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        bool isCode = false;
        const int code = text[i] == '\\' ? text.mid(i + 1, 3).toInt(&isCode, 8) : 0;
        plain += isCode ? static_cast<char>(code) : text[i];
        i += isCode ? 3 : 0;
    }
    return plain;
}

}  // namespace

QByteArray TidyPath(QByteArray path) {
    while (path.size() > 1 && path.endsWith('/')) {
        path.chop(1);
    }
    return path;
}

QByteArray DesktopFolder() {
    return TidyPath(QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::DesktopLocation)));
}

std::vector<FolderPlace> ComputerPlaces() {
    std::vector<FolderPlace> places;
    add(places, homeFolder(), QCoreApplication::translate("FolderPlaces", "Home"));
    // Where the system and users mount what is meant to be seen.
    for (const QByteArray& line : contentOf(QStringLiteral("/proc/self/mounts")).split('\n')) {
        const QByteArray path = plainMountPath(line.split(' ').value(1));
        if (path.startsWith("/media/") || path.startsWith("/run/media/") || path.startsWith("/mnt/") ||
            path == "/mnt") {
            add(places, path);
        }
    }
    add(places, "/", QCoreApplication::translate("FolderPlaces", "File System"));
    return places;
}

std::vector<FolderPlace> FavoritePlaces() {
    std::vector<FolderPlace> places;
    addUserFolders(places);
    for (const char* file : {"gtk-4.0/bookmarks", "gtk-3.0/bookmarks"}) {
        addGtkBookmarks(places, configFile(QString::fromLatin1(file)));
    }
    addGtkBookmarks(places, QDir::home().filePath(QStringLiteral(".gtk-bookmarks")));
    addXbelBookmarks(places, QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                 QStringLiteral("/user-places.xbel"));
    return places;
}
