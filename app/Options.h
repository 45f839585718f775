// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the command line asks for and gives back, as plain values, so that all else can be tested and called
// without a command line.
#include "app/Shares.h"

#include <optional>
#include <string>
#include <vector>

/// A contract with scripts and schedulers, which stands in the manual.
enum ExitStatus : int {
    AllDone = 0,
    SomeNotDone = 1,
    WrongUsage = 2,
    BrokenOff = 3,
    Interrupted = 130,
};

/// Limits in seconds of a new run that gives none.
constexpr unsigned DefaultMaxTime = 60;
constexpr unsigned DefaultAlarmTime = 40;

struct RunOptions {
    enum class RetryKind { None, Failed, All };

    /// Script file; empty with Lines, and with Resume or Retry, which then keep the script of the interrupted
    /// run.
    std::string Script;
    /// Lines that are the script, in place of a file.
    std::vector<std::string> Lines;
    /// Tell before a new run what can be seen wrong in its script.
    bool CheckScript = true;
    /// Drawings and folders, as typed.
    std::vector<std::string> Drawings;
    /// Files that name drawings.
    std::vector<std::string> Lists;
    /// Masks for folders, separated by commas.
    std::string Mask = "*.dxf,*.dwg";
    bool Recurse = false;
    /// Of folders also what begins with a dot.
    bool Hidden = false;
    /// Names in lists end in NUL instead of a line end.
    bool NullEnds = false;
    /// Seconds; 0 is no limit. Without a value a new run takes 60 and 40, a resumed one what it had.
    std::optional<unsigned> MaxTime;
    std::optional<unsigned> AlarmTime;
    bool ReadOnly = false;
    bool Recover = false;
    /// A refused line of the script is counted, and does not end its drawing.
    bool Lenient = false;
    /// A drawing that is left changed and not saved ends as Error.
    bool MustSave = false;
    /// What a host may take of memory, as the host reads it; empty is the host's own limit.
    std::string MaxMemory;
    /// Save drawings that have several names, parting them.
    bool BreakLinks = false;
    RetryKind Retry = RetryKind::None;
    bool Resume = false;
    bool DryRun = false;
    /// Folder that holds "Ovrix" with the state; empty is the user's.
    std::string DataDir;
    std::string JsonFile;
    bool Quiet = false;
    /// Take this share of the drawings only.
    std::optional<Shard> Share;
    /// Number of hosts that share the queue.
    unsigned Jobs = 1;
    /// Start the host again when it dies.
    bool Monitor = true;
    /// Seconds beyond MaxTime after which a host that does not move on is ended.
    unsigned Grace = 30;

    /// The run goes on with the queue on disk and gives no new one.
    bool KeepsQueue() const { return Resume || Retry != RetryKind::None; }
};

struct MergeOptions {
    /// Folders that hold "Ovrix", as given to the runs.
    std::vector<std::string> Folders;
    /// Where the result goes; empty is the user's folder.
    std::string DataDir;
    std::string JsonFile;
    /// Also take runs with drawings that still wait, or some of the shares: what waits stays ToDo.
    bool Unfinished = false;
    bool Quiet = false;
};
