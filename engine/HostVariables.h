// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A run works only with the host set for it: one document at a time, no dialogs, no echo. The values before
// are kept in the record, and with it in the state file, so that they go back even after a crash.
#include <QString>

/// Bits of SaveSystemVars, in the order of the record's SysVarNames.
enum SystemVarBits { SdiVar = 1, CmddiaVar = 2, FilediaVar = 4, CmdechoVar = 8 };

/// Keeps the present value of each variable in the mask and sets the new one. A variable that cannot be set
/// is passed over.
void SaveSystemVars(int mask, int cmddia, int filedia, int cmdecho, int sdi);
/// Sets back every kept value; nothing when none are kept.
void ResetSystemVars();
/// Sets the host to the values that a run of a host that died has left in the state file. For the module's
/// start: until the user gives the command, nothing else would.
void RestoreLeftSystemVars();
/// Text of a system variable of the host, empty for one that is unknown or no text.
QString HostTextVariable(const char* name);
/// A script of the host is running, and has not been broken off.
bool ScriptIsActive();
/// Whether the current drawing has unsaved changes.
bool DrawingIsModified();
/// Whether it has unsaved changes beyond the view that it is looked at in.
bool DrawingHasChanges();
/// LISP variables of the drawing in work: currentfileandpath, currentpath, currentfile, currentext.
void SetScriptVariables();
/// The same of a path.
void SetScriptVariables(const QString& path);
