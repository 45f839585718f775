// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Files read and written in one go. A file is never written over: the new text is written beside it and takes
// its place by a rename, so that a kill or a full disk leaves the old text or the new one, never a part.
#include <QByteArray>
#include <QString>

/// Reads all of a regular file into bytes. 0, or the system's error number.
int ReadWholeFile(const QString& path, QByteArray& bytes);

/// Replaces a file's contents, through symbolic links and with the file's mode kept. Where the folder lets
/// nothing be written beside the file it is written in place, after its room on the disk is sure. 0, or the
/// system's error number, with the old file whole. Synced, the new text is on the disk before it takes the
/// place of the old.
int WriteWholeFile(const QString& path, const QByteArray& bytes, bool synced = false);

/// Brings a file and its folder's entry to the disk. 0, or the system's error number.
int SyncFile(const QString& path);

/// Deletes what a killed process left beside a file while it wrote.
void RemoveLeftovers(const QString& path);

/// The system's text for an error number.
QString SystemMessage(int error);
