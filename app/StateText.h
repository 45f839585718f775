#pragma once
// Writes queues for the module. While one host does a run the state file is the module's alone; the front
// only writes it while no host is alive: when a queue is dealt out to several hosts, and when their results
// come back together. Everything in the file that is no part of the queue is passed on as it stands.
#include "app/QueueFile.h"
#include "app/RunOptions.h"

#include <string>
#include <vector>

/// Writes the queue to a file, with the options that stand in the file base, if there is such a file. A queue
/// is in the order of the run, which the file then says. False with one line when it cannot be written.
bool WriteQueue(const std::string& file, const std::string& base, const std::vector<QueueEntry>& queue,
                std::string* error);

/// Sets drawings of a state file back to wait. False with one line when that fails; the file is then as it
/// was.
bool SetBack(const std::string& file, const std::vector<std::string>& paths, std::string* error);

/// Puts script, time limits and the switch for read-only drawings into a state file: all of them for a new
/// run, else those that are given. False with one line when that fails.
bool WriteSettings(const std::string& file, const RunOptions& options, std::string* error);
