// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Finds where an expression ends without reading it, so that a script or the command line can gather
// lines until a "(" is closed. It takes the text in pieces and never looks at a byte twice.

#include <cstddef>
#include <optional>
#include <string_view>

namespace drafthost::lisp {

class FormScanner {
  public:
    /// Takes the next piece of text. Gives the offset in it just past the end of the expression once
    /// that is complete; nothing while more is needed. A list ends with its last parenthesis, a
    /// string with its quote, any other atom before the next blank, line end or parenthesis.
    std::optional<std::size_t> feed(std::string_view text);
    /// How many parentheses are still open.
    int depth() const { return depth_; }
    bool inString() const { return state_ == State::String || state_ == State::StringEscape; }

  private:
    enum class State { Plain, Atom, String, StringEscape, Semicolon, LineComment, BlockComment, BlockBar };
    State state_ = State::Plain;
    int depth_ = 0;
};

/// Whether the text, which begins with "(", holds a complete expression.
inline bool readComplete(std::string_view text) {
    return FormScanner().feed(text).has_value();
}

}  // namespace drafthost::lisp
