// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The trace log is the recorder that support reads after a host has died in the middle of something. Each
// line is on its way to the disk before the step that it names begins, so the file is opened and closed for
// each line, and nothing turns it off.
#include <QString>

/// Appends text as it stands to the log. A line that can't be written is dropped; the first of them is told
/// on the command line. Nothing before the log was begun.
void Trace(const QString& text);
void Trace(const char* text);

/// The start of the log "TNLapp.log" in a folder: looks whether the last run of the module ended cleanly, and
/// writes the line that opens a start, with the module's version and the time of its build. The log's path.
QString BeginTrace(const QString& folder, const QString& version);
