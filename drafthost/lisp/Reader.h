// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Reads expressions from text. Nesting is kept on a stack of the reader's own, so that no input can
// exhaust the thread's.

#include <optional>
#include <string_view>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

class Reader {
  public:
    /// The text must stay alive as long as the reader.
    explicit Reader(std::string_view text) : text_(text) {}

    /// The next expression; nothing at the end of the text. Throws Failure on malformed input.
    std::optional<Value> next();

  private:
    void skipBlanks();
    Value readString();
    Value readAtom(bool& isDot);
    char32_t readEscape();

    std::string_view text_;
    std::size_t pos_ = 0;
};

/// The number that the whole text spells, as the reader takes it: "12", "1.5", "-1e3", "3000000000"
/// (too large for an integer, so a real).
std::optional<Value> parseNumber(std::string_view text);

}  // namespace drafthost::lisp
