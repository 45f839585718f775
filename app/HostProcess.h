// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A drawing host as a child process: lines in, and out of it events on a socket of their own, which nothing
// that a script can do reaches, and stray text (of the system, mostly) on its standard output. It runs in a
// process group of its own, so that Ctrl+C at the terminal reaches the front alone, and the kernel ends it
// when the front dies, whatever kills the front. All reading and writing is without waiting; the caller polls
// the descriptors.
#include "app/LineReader.h"

#include <poll.h>
#include <sys/types.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Where the programs of this installation lie.
struct HostFiles {
    std::string Host;
    std::string Module;

    /// Beside this program (a build) or in ../lib/tarnel (an installation); $TARNEL_HOST names another host.
    /// False with one line when one is missing.
    bool Find(std::string* error);
    /// The same with the host that has a window; $TARNEL_HOST does not count for it.
    bool FindDesk(std::string* error);

  private:
    bool findNamed(const char* name, const char* other, std::string* error);
};

/// What a host works in.
struct HostPlace {
    /// It gets this as XDG_DATA_HOME: the folder above that of the state.
    std::string DataHome;
    /// Its settings; empty is the user's own file.
    std::string Registry;
    /// It gets this as XDG_STATE_HOME, under which its own logs go.
    std::string StateHome;
    /// Locks that it keeps open to its end; -1 is none.
    std::vector<int> Locks = {};
    /// What its state must hold, for the module to work on it.
    std::string Run;
    /// Where it notes what a kill may leave; empty is nowhere.
    std::string Journal = {};
    /// Its saves part drawings from their other names.
    bool BreakLinks = false;
    /// Its scripts go on behind a line that was refused; else that ends the drawing as Error.
    bool Lenient = false;
    /// A drawing that is left changed and not saved ends as Error.
    bool MustSave = false;
    /// What it may take of memory; empty is its own limit.
    std::string MaxMemory = {};
};

/// How a host ended.
struct HostEnd {
    /// "ended, exit status 3" or "died, signal 11".
    std::string Text;
    /// 0 when it ended by itself.
    int Signal = 0;
    /// It ended in order but could not write all that its logs should hold.
    bool LostLog = false;
    /// True for the signals that nothing in a host sends to itself: somebody, or a system short of memory,
    /// has ended it.
    bool FromOutside() const;
};

class HostProcess {
  public:
    HostProcess() = default;
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    /// Starts the host. False with one line when that does not go.
    bool Launch(const HostFiles& files, const HostPlace& place, std::string* error);

    /// Adds what there is to poll for.
    void AddDescriptors(std::vector<pollfd>* watched) const;

    /// Queues text for the host's input.
    void Send(std::string_view text);
    /// Writes what the pipe takes now.
    void Flush();
    /// Appends the events and the lines of stray text that have come. False when the host has ended.
    bool Read(std::vector<std::string>* events, std::vector<std::string>* stray);

    /// Ends it at once (SIGKILL to its group).
    void Kill();
    /// Waits until it is dead.
    HostEnd Wait();

  private:
    void closeInput();

    pid_t child = -1;
    int input = -1;
    std::string pending;
    /// The longest event is the rest of a log, of which the host keeps 1 MB.
    LineReader report{1 << 21};
    LineReader output{1000};
};
