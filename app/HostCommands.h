// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the host is told to start a run: only commands and LISP functions of the module, as a person could
// type them. Queue, script and limits stand in the state already. Nothing is sent ahead beyond the start,
// since a script that waits for input would take it for its answer.
#include <string>

/// Starts a run over what waits in the state.
std::string RunCommands(bool recover);
