// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one script reader of the host. It belongs to the application and not to a document, so that a script
// goes on in whatever drawing is current. A script that starts another one is replaced by it.

#include <cstdint>
#include <string>

#include "drafthost/editor/InputText.h"

namespace drafthost {

class ScriptReader {
  public:
    enum class State { Idle, Running, Suspended };

    /// Reads the whole file (".scr" is added when there is none of that name) and makes it the running
    /// script. Its text is what lisp::decodeProgram makes of it. False and one line of cause when it cannot
    /// be read; a running script then stays.
    bool start(const std::string& path, std::string& error);
    /// Starts the last script again from its first line.
    bool restart(std::string& error);
    /// Goes on with a suspended script; false when there is none.
    bool resume();
    /// Stops reading for now, at an Esc or an error.
    void suspend();
    /// Ends it; what was not read is dropped.
    void stop();

    State state() const { return state_; }
    bool isRunning() const { return state_ == State::Running; }
    const std::string& path() const { return path_; }
    /// Counts the scripts started: whoever wants to suspend the script that it was called from can tell
    /// whether that is still the one running.
    std::uint64_t number() const { return number_; }
    InputText& text() { return text_; }
    /// The script is read to its end. An unfinished last input stays in text().
    void finish() { state_ = State::Idle; }

  private:
    State state_ = State::Idle;
    std::string path_;
    std::uint64_t number_ = 0;
    InputText text_;
};

}  // namespace drafthost
