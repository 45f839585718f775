// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How an evaluation is left early. Inside the evaluator these are thrown, because every built-in
// function may fail at any depth; they never leave World.

#include <string>
#include <string_view>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

struct Failure {
    enum class Kind {
        Error,         ///< can be caught by vl-catch-all-apply
        Interrupted,   ///< a cancel was pending; nothing but the end of the evaluation catches it
        DocumentGone,  ///< unwinds silently
    };
    Kind kind = Kind::Error;
    std::string text = {};
    bool cancelled = false;  ///< the user left a prompt
    bool seen = false;       ///< the *error* in force where it happened has been looked at
    bool handled = false;    ///< … and was a function, which has been called
};

[[noreturn]] void fail(std::string text);
/// "bad argument type: numberp: nil"; the expectation carries its colon where the host has one.
[[noreturn]] void failType(std::string_view expected, const Value& got);

inline constexpr std::string_view StackLimitText =
    "hard error occurred *** internal stack limit reached (simulated)";

}  // namespace drafthost::lisp
