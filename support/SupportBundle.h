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

struct SupportResult {
    /// The archive, with everything in it; empty when it could not be made.
    QString Archive;
    /// The mail program took the draft.
    bool Sent = false;
    /// One line with the file and the cause; empty when all went well.
    QString Error;
};

/// The files in a data folder; an empty state file stands for the usual one there.
SupportFiles SupportFilesIn(const QString& dataDir, const QString& stateFile = {});

/// Adds "info.xml", the state, the run log and the trace log to the archive. Needs neither record nor host.
/// An error leaves the archive as it was: a bundle is whole or not made.
SupportResult PackSupportBundle(const SupportFiles& files, const QByteArray& info);

/// Collects what the pages show, saves the state, packs, and opens the mail with the archive. The record must
/// be the user's: it is saved over the state file.
SupportResult BuildSupportBundle(CMapiSession& session);

/// Where bundles go: the variable TARNEL_SUPPORT_ADDRESS of the environment, for offices with a desk of their
/// own, else the maker's address.
QString SupportAddress();
