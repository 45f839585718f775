// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The memory of the system between runs and across the death of the host: one XML file per user that holds
// the record's options, script, geometry, history and queue. It is written before every step that could go
// wrong, several times per drawing, so a save is lean and never waits for the disk; it is written beside the
// old file and renamed over it, so that a kill at any moment leaves the old or the new text whole.
#include <QByteArray>
#include <QString>

struct CTarnelData;

/// Fills TarnelData().StateFile: "TarnelRunner.xml" in TarnelData().DataDir, or in UserDataDir() when that is
/// empty. Makes the folder (one that
/// cannot be made is told by the first save), and takes a file "Tarnel.xml" of earlier versions over when
/// there is no new one.
void ResolveStateFile();
/// The user's folder for the system's files, without trailing separator; it need not exist.
QString UserDataDir();

/// Reads the record from a file; null means StateFile. With full 0 (group files) the geometry, the history,
/// the saved variables and TemporarilyLoadFromRegistry stay as they are. What cannot be read keeps its value,
/// and the queue is then empty; the result is always 1. error, when given, becomes the one line that tells of
/// a file that is there and could not be read, else empty.
int LoadState(const QString* path, int full, QString* error = nullptr);
/// The same with a record of the caller's own; null means its StateFile.
int LoadState(CTarnelData& data, const QString* path, int full, QString* error = nullptr);
/// The same with the text of a file.
void TakeState(CTarnelData& data, const QByteArray& bytes, int full);
/// Writes the record to a file; null means StateFile. The result is always 1; a failed write leaves the old
/// file as it was, and error, when given, becomes the line that tells it, else empty.
int SaveState(const QString* path, int full, QString* error = nullptr);
int SaveState(CTarnelData& data, const QString* path, int full, QString* error = nullptr);

/// Brings the state file and its folder's entry to the disk. For the start and the end of a run, where the
/// wait does no harm. False with one line when the system refuses.
bool SyncState(QString* error);

/// Looks whether a file holds a state before anything overwrites it: empty when it does or when there is no
/// such file, else one line with the file's name and what is wrong with it.
QString CheckStateFile(const QString& path);
/// What is wrong with the text of a state file; empty when nothing is. With full 0 (group files, lists) its
/// elements Options and Files may be missing.
QString StateTextFault(const QByteArray& bytes, int full);
