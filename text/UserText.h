// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Text that users made with whatever editor they had: scripts, and lists of drawings. It is in the locale's
// encoding, or begins with a mark; what is no text there was made on another system, in the Windows page of
// the user's language. That is found out for each line, so that one odd line leaves the others as they are.
#include <QByteArray>
#include <QString>

/// The Windows page of the language that LC_ALL, LC_CTYPE or LANG name; 1252 without one.
int WindowsPage();

struct UserText {
    QString Text;
    /// The first line (from 1) that was read as WindowsPage(), 0 when none was.
    qsizetype ForeignLine = 0;
    /// The first line that is no text in any of the encodings and holds U+FFFD now, 0 when none does.
    qsizetype BadLine = 0;

    /// One line about ForeignLine for the user, to stand behind a file's name; empty without such a line.
    QString Note() const;
    /// One line about BadLine, likewise.
    QString Fault() const;
};

/// The text of a file's bytes without the mark. UTF-16 is known by its mark, or by the zeros between its
/// letters.
UserText DecodeUserText(QByteArrayView bytes);
