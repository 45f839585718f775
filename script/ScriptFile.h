// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Script files of the user: a first line that describes the script, and the script.
#include <QByteArray>
#include <QString>

struct ScriptFileText {
    QString Description;
    /// Bytes in the narrow encoding, with the line ends of the file.
    QByteArray Script;
};

/// Takes a file's bytes apart. Without a description, or with one that no line end closes, all is the script.
/// A byte order mark goes; UTF-16 that begins with one comes in the narrow encoding if that can write it.
ScriptFileText TakeScriptFile(const QByteArray& file);
/// What a file holds: always a description, in the narrow encoding, then the script as it stands.
QByteArray MakeScriptFile(const ScriptFileText& text);
/// What a list calls the script of a file: its description without blanks in front, else the file's name
/// without extension.
QString ScriptFileTitle(const QString& path);
