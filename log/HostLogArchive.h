// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The archive of the host's logs that belongs to a run log. An entry bears the name under which the run log
// links to it.
#include <QString>
#include <QStringList>

/// Name of a host log in the archive and in the run log: its path with ":" as "-" and separators as "_".
QString HostLogId(const QString& hostLogPath);

struct PackedLogs {
    /// The logs that need not be kept any more: they are in the archive, whole.
    QStringList Packed;
    /// One line for each of the others that there are.
    QStringList Failures;
};

/// Packs host logs into an archive, which is made when it is missing or, with anew, in any case. A log whose
/// name the archive has already is not packed again. Raises CZipException when the archive cannot be written,
/// which leaves archive and logs as they were.
PackedLogs PackHostLogs(const QString& archive, const QStringList& logs, bool anew);
