// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Everything that a support person needs, in the archive that already holds the host's logs of the run. Each
// press of the button adds to it: what was sent once stays, and the log view still finds the host's logs.
#include <QByteArray>
#include <QString>

class CMapiSession;

/// What goes into a bundle, as paths.
struct SupportFiles {
    /// "TNLLog.zip", made when it is not there.
    QString Archive;
    QString StateFile;
    QString RunLog;
    QString TraceLog;
};

/// The files in a data folder; an empty state file stands for the usual one there.
SupportFiles SupportFilesIn(const QString& dataDir, const QString& stateFile = {});

/// Adds "info.xml", the state, the run log and the trace log to the archive. Needs neither record nor host.
/// False with one line, and the archive as it was: a bundle is whole or not made.
bool PackSupportBundle(const SupportFiles& files, const QByteArray& info, QString* error);

/// Collects what the pages show, saves the state, packs, and opens the mail with the archive. The record must
/// be the user's: it is saved over the state file. False with one line; an archive that was packed stays when
/// only the mail did not go.
bool BuildSupportBundle(CMapiSession& session, QString* error);

/// Where bundles go: the variable TARNEL_SUPPORT_ADDRESS of the environment, for offices with a desk of their
/// own, else the maker's address.
QString SupportAddress();
