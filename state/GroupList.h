// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The two older forms of group files, read as plain values: a list of paths, and the script file of earlier
// versions. Nothing here knows the record, so that other programs can read what users keep for a run.
#include <cstdint>
#include <QString>
#include <QStringView>
#include <vector>

/// What went wrong with a file that cannot be taken.
enum class GroupListError { None, CannotOpen, NoScriptFile };

/// The entries of a list that has one path on each line, in order; an empty line is an empty entry, one that
/// begins with "@" is none. The text is what DecodeUserText makes of it, and note, if given, gets one line
/// when some of it came from elsewhere. Paths with drives come from systems on which case means nothing and
/// are given in small letters; others as LocalPath gives them.
GroupListError ReadPathList(const QString& path, const QString& folder, std::vector<QString>* entries,
                            QString* note = nullptr);
/// The same from the text of a list.
std::vector<QString> PathsOfList(QStringView text, const QString& folder);

/// A ".grp" file of earlier versions.
struct ScriptFileGroup {
    struct Entry {
        QString Path;
        /// As the file numbers them: 0 Error, 1 FailOpen, 2 Timeout, 3 Locked, 4 ToDo, 5 Done.
        int OldStatus = 0;
    };
    /// Path of the script, which nothing has looked for yet.
    QString Script;
    std::uint32_t MaxTime = 0;
    std::uint32_t AlarmTime = 0;
    std::vector<Entry> Entries;
};
GroupListError ReadScriptFileGroup(const QString& path, ScriptFileGroup* group, QString* note = nullptr);
/// The same from the text of such a file.
GroupListError ScriptFileGroupOfText(QStringView text, ScriptFileGroup* group);

/// A path as this system writes it: a relative one with backslashes gets slashes, unless folder (the current
/// one when empty) has a file of just that name. One with a drive stays as it is.
QString LocalPath(const QString& path, const QString& folder);
