// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the host without a window and the one with a frame begin with alike: arguments, signals, the first
// drawings.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "drafthost/base/MemoryLimit.h"

class QCoreApplication;

namespace drafthost {

class Host;

struct Arguments {
    std::vector<std::string> modules;
    std::vector<std::string> support;
    /// The user's own file when none was given; empty where there is no home.
    std::string registry;
    std::vector<std::string> drawings;
    std::string script;
    /// Where the names of what a kill may leave are noted; empty for nowhere.
    std::string journal;
    bool breakLinks = false;
    /// Name of the desktop entry that the window belongs to; only with a frame.
    std::string desktopEntry;
    std::size_t maxMemory = DefaultMemoryLimit;
    /// A socket for the program that started the host; -1 is none.
    int report = -1;
    /// LISP for when a line of a script is refused; empty suspends the script.
    std::string onRefusal;
    bool keepGoing = false;
    /// Commands that scripts may not use.
    std::vector<std::string> denied;
};

/// Reads the arguments; "--help" and "--version" end the process. Nothing, and the message is on standard
/// error, for arguments that make no sense. Without a frame there is one drawing at most.
std::optional<Arguments> readArguments(int argc, char** argv, const std::string& program, bool framed);

/// SIGINT is an Esc, as the same key is at a command line; SIGTERM and SIGHUP end the host in order, by the
/// caller's own way when one is given. The signal itself then also sets the limit below.
void watchSignals(Host& host, QCoreApplication& application, const std::function<void()>& end = {});

/// From now on the process has so long to end, whatever it is in the middle of: behind that the kernel ends
/// it.
void limitEnd();
/// All that must be kept is on the disk: the rest of the way may take its time.
void liftEndLimit();

/// Exit status of a host that has ended in order: 0, or 128 and the number of the signal that made it end, as
/// shells say it, so that whoever waits for it can tell that from a QUIT.
int exitStatus();

/// Commands, system variables, the support path and the journal.
void prepare(Host& host, const Arguments& arguments);

/// Loads the modules, opens the drawings (a new one when none opens) and starts the script.
void begin(Host& host, const Arguments& arguments);

}  // namespace drafthost
