// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A group file is a queue that the user keeps for later, perhaps with a script and options. One form is
// written, that of the state file; two older ones are still read: a plain list of paths, and the script file
// of earlier versions (".grp"). The form goes by the extension alone, in any case.
#include <QString>

/// Replaces the queue (and what else the file holds) by a group file's. False, with the text for the user in
/// message and nothing changed, when the file cannot be opened or is not what its extension says. When it was
/// loaded, message has a line about text that came from elsewhere, and is empty mostly.
bool LoadGroupFile(const QString& path, QString* message);

/// Saves the queue with the options as XML, whatever the extension. False with one line when it cannot be
/// written.
bool SaveGroupFile(const QString& path, QString* error);
