// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What can be seen wrong in a script without running it. What is an answer and what a command depends on the
// drawing, so only what is certain is told: commands where nothing else can stand (the script's first word, a
// word with "." before it at a line's start, the first text of a LISP (command …) with "." before it).
#include <functional>
#include <QByteArray>
#include <QString>
#include <vector>

struct ScriptRemark {
    /// From 1.
    int Line;
    QString Text;
};

/// Remarks in the order of lines: parentheses and strings that do not close, commands that nobody knows,
/// those that show a dialog, and a script that saves nothing. isCommand is asked with a name in capitals,
/// perhaps with
/// "-" before it; commands are not judged in a script that loads programs, nor those that it defines itself.
std::vector<ScriptRemark> CheckScript(const QByteArray& script,
                                      const std::function<bool(const QString&)>& isCommand);
