// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One piece of input as a command gets it: text as typed, or a value that LISP or a module handed over.
// Keyboard, queue, script, LISP and modules all end in this form, so that a command never knows who speaks.

#include <string>

#include "drafthost/lisp/Value.h"

namespace drafthost {

struct Input {
    /// As typed, without its terminator; "" is Enter. For a value it is the value as text.
    std::string text;
    /// A number, point, entity name or selection set that needs no reading.
    lisp::Value value;
    bool isValue = false;

    bool isEnter() const { return !isValue && text.empty(); }

    static Input fromText(std::string text) { return {std::move(text), {}, false}; }
    static Input fromValue(const lisp::Value& value);
};

/// How the text of an answer is cut out of a stream of input.
enum class InputKind {
    Command,   ///< a command name, "(" or "!": a blank or line end ends it
    Word,      ///< one word
    Line,      ///< free text: only the line end ends it, blanks and quotes belong to it
    FileName,  ///< one word, or text in double quotes, which are taken off
};

/// Whose input it is; decides about echo and about what an error does.
enum class InputSource { Keyboard, Queue, Script, Lisp, Module };

}  // namespace drafthost
