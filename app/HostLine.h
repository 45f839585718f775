#pragma once
// What the host's output says of a run. The module's lines are told in docs/headless.md; every other line is
// the host's talk about the drawing in work. Most of that talk repeats what the script says: the input behind
// the prompts, LISP over several lines, the values of LISP. None of it tells how a drawing went, and what is
// left when it is taken out is worth being shown.
#include "app/QueueEntry.h"

#include <string>
#include <string_view>

struct HostLine {
    enum class Kind {
        /// The host's own text.
        Talk,
        /// A prompt that nobody has answered.
        Prompt,
        /// Input, values, and what follows from an error told before.
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
    /// Of File, Status and Alarm the drawing's path; of Talk, Prompt and Message the text.
    std::string Text;
    DrawingStatus Status = DrawingStatus::ToDo;
};

class HostListener {
  public:
    HostLine Read(std::string_view line);

  private:
    void FollowLisp(std::string_view text);

    // Within a LISP expression that has begun behind a prompt and goes on over the line's end.
    int depth = 0;
    bool inString = false;
};
