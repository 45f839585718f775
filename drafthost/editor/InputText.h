// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Text on its way to the command line, cut into inputs as the prompt in force asks for them: what is a
// blank at one prompt is part of the answer at the next, so nothing can be cut ahead of time.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "drafthost/editor/Input.h"
#include "drafthost/lisp/FormScanner.h"

namespace drafthost {

class InputText {
  public:
    struct Item {
        enum class Kind {
            Text,        ///< a word, line or file name; "" is Enter
            Expression,  ///< complete, with its parentheses
            Variable,    ///< the name behind "!"
            Cancel,      ///< ETX or Esc in the text
        } kind = Kind::Text;
        std::string text;
    };

    InputText() = default;
    /// Carriage returns before a line feed are dropped, single ones are line ends.
    explicit InputText(std::string_view text) { append(text); }

    void append(std::string_view text);
    void prepend(std::string_view text);
    /// Cuts off the next item. Nothing when none is complete yet. Expressions and "!" count as text at a
    /// line prompt unless evaluateLines is given.
    std::optional<Item> next(InputKind kind, bool evaluateLines = false);
    bool empty() const { return position_ >= text_.size(); }
    /// What has not been cut off yet.
    std::string_view rest() const { return std::string_view(text_).substr(position_); }
    void clear();
    /// Drops what stands behind the last line end, as a cancel does with text that is half typed.
    /// An expression that goes on over line ends is dropped from its parenthesis on.
    void dropUnfinishedLine();
    /// The prompt that tells of an expression that has begun and is not complete, with a parenthesis for each
    /// level
    /// ("((_> ") and a quote for a string ("(\"_> "); empty when none is open.
    std::string openForm() const;
    /// Number of the line, counted from 1, in which the last item that was cut off began, or the expression
    /// that is open. Only for a text that nothing is added to.
    std::size_t line() const { return line_; }

  private:
    std::optional<Item> quoted();
    std::optional<Item> expression();
    void skipComments();
    bool atUnfinishedComment() const;
    void skipTerminator();
    void compact();

    std::string text_;
    std::size_t position_ = 0;
    bool carriageReturn_ = false;
    /// An expression was cut off before what ends it had come.
    bool terminatorDue_ = false;
    /// An expression that is still open, and how far it has been looked through: a long one is scanned once.
    std::optional<lisp::FormScanner> scanner_;
    std::size_t scanned_ = 0;
    std::size_t line_ = 1;
    std::size_t counted_ = 0;
};

}  // namespace drafthost
