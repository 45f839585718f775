// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the host and the module tell of a run: JSON objects on a socket of their own (docs/formats.md tells
// them). Nothing that a script prints can be taken for one of them, since such a line comes inside a "text".
#include "app/LogRests.h"
#include "app/QueueEntry.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

struct HostEvent {
    enum class Kind {
        /// A line of the host's command line, without the echo of input and the values of LISP.
        Talk,
        /// A question that waits for an answer.
        Prompt,
        RunStarted,
        /// A drawing is in work now.
        File,
        Status,
        Alarm,
        RunEnded,
        /// A message of the module for the user.
        Message,
        /// A line of a script was refused.
        Refused,
        /// The drawing in work had to be saved and was not.
        Unsaved,
        /// A drawing was written.
        Saved,
        /// The host could not write a log of its own to the end.
        Log,
    };

    Kind What = Kind::Talk;
    /// Of File, Status, Alarm and Saved a path; of Talk, Prompt, Message, Refused and Unsaved the text.
    std::string Text;
    /// Of File, Status and Alarm: which entry of the queue it is, in the order of the state file.
    std::size_t Entry = 0;
    DrawingStatus Status = DrawingStatus::ToDo;
    /// Of Refused: the line in the script that runs; of RunStarted: how many lines of the module's own stand
    /// in front of the user's.
    std::size_t Line = 0;
    /// Of Refused: the script that runs.
    std::string Script = {};
    /// Of RunStarted: how many lines the user's script has, and the scripts that the module makes of it.
    std::size_t Lines = 0;
    std::vector<std::string> Scripts = {};
    /// Of Status: the drawing had unsaved changes then.
    bool Changed = false;
    /// Of Status: why the drawing is Locked.
    std::string Reason = {};
    /// Of Log.
    LogRest Rest = {};
};

/// Reads one line; nothing when it is none of the events that are known here.
std::optional<HostEvent> ReadEvent(const std::string& line);
