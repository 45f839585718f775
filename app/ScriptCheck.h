// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What can be told of a script before it runs over drawings, with the commands that the host at hand knows.
#include <QByteArray>
#include <string>
#include <vector>

/// A line "name:line: text" for each remark. The host is asked for its commands when the script gives rise to
/// it; if it does not answer, commands are not judged.
std::vector<std::string> CheckScriptLines(const std::string& name, const QByteArray& script,
                                          const std::string& host);
