// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A script as the record and the state file hold it: in the locale's encoding, since the host reads narrow
// text. A script goes into hundreds of drawings, so one that cannot be read as it was meant is refused
// before the first of them.
#include <QByteArray>
#include <QString>

struct ScriptText {
    /// In the locale's encoding, with the line ends of the file; empty when there is a fault.
    QByteArray Script;
    /// One line for the user about how it was read, to stand behind the file's name; mostly empty.
    QString Note;
    /// Why this is no script, likewise; empty when it is one.
    QString Fault;
};

/// The script that a file's bytes hold.
ScriptText DecodeScript(QByteArrayView bytes);

/// Takes the line ";DESCRIPTION:…" off a script's start and gives what it says; null when there is none.
QString TakeDescription(QByteArray& script);
