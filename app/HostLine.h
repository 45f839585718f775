#pragma once
// What a line of the host's output says of the run. The module's lines are told in docs/headless.md; every
// other line is the host's own talk about the drawing in work.
#include "app/QueueFile.h"

#include <string>
#include <string_view>

struct HostLine {
    enum class Kind {
        /// The host's own text.
        Talk,
        /// An empty prompt, an echo: nothing that explains how a drawing went.
        Noise,
        RunStarted,
        File,
        Status,
        Alarm,
        RunEnded,
        /// Another line of the module: a message for the user.
        Message,
    };

    Kind What = Kind::Noise;
    /// Of File, Status and Alarm the drawing's path; of Talk and Message the text.
    std::string Text;
    DrawingStatus Status = DrawingStatus::ToDo;
};

HostLine ParseHostLine(std::string_view line);
