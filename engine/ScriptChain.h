// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A run goes from drawing to drawing through the host's script reader and never through a loop: for each
// drawing a small script is written in which the user's script stands between calls into the module, and the
// last line of one script starts the next. Two files alternate, so that the one being written is never the
// one in which the running line stands.
#include <QString>
#include <QStringList>

/// Text of a generated script: the two opening calls, the user's script as it stands, and, unless the chain
/// is switched off, the call that goes on.
QString ComposeScript();
/// Lines of its own that stand in front of the user's.
constexpr int LinesBeforeScript = 2;
/// One line about a line of the user's script that is text in no encoding, so that no drawing may get it;
/// empty without one.
QString ScriptFault();
/// Lines of the user's script, as the host counts them.
int LinesOfScript();
/// The two files of the chain, as the host is told them.
QStringList ScriptFiles();
/// Writes the next script and hands it to the host.
void StartNextScript();

/// Reads a user's script into the record, with the description from its first line, and tells of one that was
/// made elsewhere. When the file can't be read or is no text the record has an empty script, the answer is
/// false and cause, if given, says why.
bool ReadScriptFile(const QString& path, QString* cause = nullptr);
/// Deletes both generated scripts.
void DeleteScripts();
/// Forgets what was written, for a module that is loaded anew.
void ResetScripts();
