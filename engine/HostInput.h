// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the module types into its host. The run is a chain of such calls: whatever changes its state happens
// where the host reads commands, so timers, windows and commands send text and touch nothing themselves.
#include <QString>

/// Sends a string to the current document as if the user had typed it.
void SendToHost(const QString& text);

/// The LISP call that begins a run over what waits in the state.
QString StartString();
/// What is sent when a drawing has used its time. Character 3 is the host's cancel key.
QString TimeoutString();
/// Cancels whatever runs, at any depth, and ends the script.
QString BreakString();
/// Breaks the run off.
QString CancelString();
