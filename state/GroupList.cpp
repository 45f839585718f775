// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/GroupList.h"

#include "engine/record/FileName.h"
#include "text/NumberText.h"
#include "text/UserText.h"
#include "text/WholeFile.h"

#include <algorithm>
#include <QDir>
#include <QFile>

namespace {

/// The lines of a file, without their ends.
class Lines {
  public:
    explicit Lines(QStringView text) : rest(text) {}
    bool Next(QString& line) {
        if (rest.isEmpty()) {
            return false;
        }
        const qsizetype end = rest.indexOf(u'\n');
        QStringView piece = rest.first(end < 0 ? rest.size() : end);
        rest = rest.sliced(end < 0 ? rest.size() : end + 1);
        if (piece.endsWith(u'\r')) {
            piece.chop(1);
        }
        line = piece.toString();
        return true;
    }

  private:
    QStringView rest;
};

/// Lines that are no text in any encoding keep what U+FFFD leaves of them: such a name is then not found, and
/// the others are.
GroupListError readText(const QString& path, QString& text, QString* note) {
    QByteArray bytes;
    if (ReadWholeFile(path, bytes) != 0) {
        return GroupListError::CannotOpen;
    }
    const UserText read = DecodeUserText(bytes);
    text = read.Text;
    if (note) {
        *note = read.BadLine != 0 ? read.Fault() : read.Note();
    }
    return GroupListError::None;
}

}  // namespace

GroupListError ReadPathList(const QString& path, const QString& folder, std::vector<QString>* entries,
                            QString* note) {
    QString text;
    const GroupListError error = readText(path, text, note);
    if (error == GroupListError::None) {
        *entries = PathsOfList(text, folder);
    }
    return error;
}

std::vector<QString> PathsOfList(QStringView text, const QString& folder) {
    std::vector<QString> entries;
    QString line;
    for (Lines lines(text); lines.Next(line);) {
        if (!line.startsWith(u'@')) {
            entries.push_back(IsWindowsPath(line) ? line.toLower() : LocalPath(line, folder));
        }
    }
    return entries;
}

GroupListError ReadScriptFileGroup(const QString& path, ScriptFileGroup* group, QString* note) {
    QString text;
    const GroupListError error = readText(path, text, note);
    return error == GroupListError::None ? ScriptFileGroupOfText(text, group) : error;
}

GroupListError ScriptFileGroupOfText(QStringView text, ScriptFileGroup* group) {
    constexpr qsizetype PathColumn = 6;
    Lines lines(text);
    QString line;
    if (!lines.Next(line) || (line != u"Tarnel V2 Script File" && line != u"Tarnel V2.6.5 Script File")) {
        return GroupListError::NoScriptFile;
    }
    lines.Next(group->Script);
    const auto number = [&lines] {
        QString text;
        return static_cast<std::uint32_t>(lines.Next(text) ? ParseNumber(text) : 0);
    };
    group->MaxTime = number();
    group->AlarmTime = number();
    group->Entries.clear();
    while (lines.Next(line)) {
        group->Entries.push_back({line.sliced(std::min(PathColumn, line.size())), ParseNumber(line)});
    }
    return GroupListError::None;
}

QString LocalPath(const QString& path, const QString& folder) {
    if (!path.contains(u'\\') || path.contains(u'/') || IsWindowsPath(path) ||
        QFile::exists(folder.isEmpty() ? path : QDir(folder).filePath(path))) {
        return path;
    }
    QString local = path;
    return local.replace(u'\\', u'/');
}
