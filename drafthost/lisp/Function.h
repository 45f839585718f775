// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The two kinds of functions that the evaluator runs itself: built-in ones and those written in LISP.

#include <span>
#include <vector>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

class Evaluator;
using Args = std::span<Value>;

/// A built-in function. It gets its arguments evaluated and counted, or (special forms) as written.
struct Subr {
    static constexpr int Any = 1 << 30;

    const char* name;
    int minArgs;
    int maxArgs;
    Value (*call)(Evaluator&, Args) = nullptr;
    Value (*special)(Evaluator&, const Value& forms) = nullptr;
    /// One function for many names, which it is told by.
    Value (*named)(Evaluator&, const Subr&, Args) = nullptr;
};

/// A function made by defun or lambda.
struct Usubr : Counted {
    Usubr() : Counted(Type::Usubr) {}
    std::string name;  ///< empty for lambda
    std::vector<const Symbol*> parameters;
    std::vector<const Symbol*> locals;
    Value body;
};

}  // namespace drafthost::lisp
