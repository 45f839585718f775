// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A run saves its state several times per drawing, and nearly always one digit of it is new. Writing the
// whole file beside and renaming it costs the file system a flush of the new file each time, more than all
// else that a run does for a drawing; a digit written over the old one costs next to nothing and is as safe,
// since the system writes within one page in one go.
#include <QByteArray>
#include <QString>

/// Replaces a file's contents as WriteWholeFile does. When the file is still as the last call of this
/// function left it, and what differs is of the same length and lies within one page, only that is written
/// over. 0, or the system's error number.
int WritePatchedFile(const QString& path, const QByteArray& bytes);
