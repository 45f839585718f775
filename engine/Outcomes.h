// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The calls through which the script of a drawing reports to the module: the start, which opens the drawing,
// and the ways in which it ends. Each fixes the drawing's status and drives the run on. They run as LISP
// functions inside the host's script reader and set the LISP result.

/// Opens the drawing in work, or starts a new one where the script does the opening. A refused open goes on
/// with the next drawing.
void DoScriptStart();
/// Sets the LISP variables of the drawing.
void DoScriptSetVars();
/// Done. Outside a run it only turns the host's log off.
/// False when something waits for an answer: the script that ends there is not done.
bool DoScriptComplete();
void DoScriptError();
void DoScriptTimeout();
void DoScriptOpenTimeout();
