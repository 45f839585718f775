// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The text of a run log: how its lines are written, and how they are read back. The module writes a log line
// by line, the front joins the logs of several hosts, and the log view makes links of what stands there; all
// of them go by what is here. Names stand in the log as they are, but for what no page can show or would take
// for markup: that is escaped, and taken back by whoever reads the log.
#include <QByteArray>
#include <QString>

#include <vector>

inline constexpr QLatin1String RunLogHead("<html><body>");
inline constexpr QLatin1String RunLogTail("</body></html>");

/// A name as it stands in a run log. Escaped are the characters that no name on Windows has (angle brackets,
/// quotation marks, control characters) and an ampersand that would read as the start of an entity.
QString EscapeLogName(const QString& name);

/// What stands behind the time of a line.
QString BatchStartedHtml();
QString BatchCompletedHtml();
QString ProcessingHtml(const QString& id, const QString& name);

/// The present local time as lines have it.
QString RunLogTime();
/// A line with its end; html is what stands behind the time.
QString RunLogLineText(const QString& time, const QString& html);
/// Text as a log has it: in the locale's encoding, each line ended by CR LF. What the encoding lacks is
/// written as a character reference, so that the name of a log still fits its entry in the archive.
QByteArray EncodeRunLog(const QString& text);

struct RunLogEntry {
    enum KindType { Started, File, Completed, Other };
    KindType Kind = Other;
    QString Time;
    QString Html;
    /// Of a File: the name of the host's log in the archive, empty when there is none, and the drawing.
    QString Id;
    QString Name;
};

struct RunLogContent {
    std::vector<RunLogEntry> Entries;
    /// The log was ended; without its end it is of a host that died, or lost text.
    bool IsWhole = false;
};

/// Reads a log's bytes. A line that is cut off, as by a killed host, is left out.
RunLogContent ReadRunLog(const QByteArray& bytes);
