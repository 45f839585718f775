// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The three checks that the main dialog makes of a script before a run: no save in it, a command that shows a
// dialog, a command that has a form without one. Each is a question, asked only while its setting is on.
#include <functional>
#include <QString>

struct ScriptQuestion {
    QString Text;
    bool YesIsDefault;
};

/// Asks the questions that the record's script gives rise to; the function shows one and answers true for
/// Yes. False as soon as one is answered with No.
bool RunScriptChecks(const std::function<bool(const ScriptQuestion&)>& ask);
