// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The run log is what the user reads after a run: a small HTML file with the start, each drawing and the end,
// in which each drawing carries the name of the host's own log of it. At the end of a run those logs go into
// one archive under the same names and are deleted, so that a long run leaves two files behind. A line that
// cannot be written is told and kept, and tried again with the next and at the end.
#include "log/HostLogArchive.h"

#include <QString>

/// Opens "tnl log.html" in a folder, emptied, unless it is open already, and writes the opening lines. The
/// archive of the host's logs comes to stand beside it.
void OpenRunLog(const QString& folder);
/// One line with the time. Nothing while no log is open.
void RunLogLine(const QString& html);
/// The drawing in work is this one from here on.
void BeginFileInRunLog(const QString& path);
/// The drawing in work has begun, with the host's log of it.
void WatchNewLogFile(const QString& hostLogPath);
/// The drawing in work ends without having been opened: unless it has its line, it gets one, with a log of
/// our own that holds what the host said about it.
void LogUnopenedFile(const QString& said);
/// Packs the host's logs into "TNLLog.zip" and deletes them, then ends the log. False when no log was open.
bool CloseRunLog();
/// Lets go of a log without ending it, as at an unload in the middle of a run.
void ResetRunLog();
