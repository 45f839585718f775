#pragma once
// What the host is told to set a run up and to start it: only commands and LISP functions of the module, as a
// person could type them. Nothing is sent ahead beyond the start, since a script that waits for input would
// take it for its answer.
#include "app/RunOptions.h"

#include <string>
#include <vector>

/// Starts a run over a new queue.
std::string StartCommands(const RunOptions& options, const std::vector<std::string>& drawings);
/// Goes on with the queue on disk, after setting back what --retry asks for.
std::string ContinueCommands(const RunOptions& options);
/// Goes on in a new host after the one before died: the settings are on disk already.
std::string RestartCommands(const RunOptions& options);
