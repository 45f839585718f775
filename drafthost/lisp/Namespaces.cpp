// SPDX-License-Identifier: GPL-3.0-or-later
// What crosses the border of a document's world: the blackboard, and functions shown to modules.

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/WorldList.h"

namespace drafthost::lisp {
namespace {

Value setOnBoard(Evaluator&, Args args) {
    blackboard()[symbolArg(args[0])] = args[1];
    return args[1];
}

Value getFromBoard(Evaluator&, Args args) {
    const auto found = blackboard().find(symbolArg(args[0]));
    return found == blackboard().end() ? Value() : found->second;
}

Value propagate(Evaluator& e, Args args) {
    const Symbol* symbol = symbolArg(args[0]);
    Value value = e.get(symbol);
    propagated()[symbol] = value;
    for (Evaluator* other : worlds()) {
        other->set(symbol, value);
    }
    return value;
}

Value expose(Evaluator& e, Args args) {
    e.exposed.insert(symbolArg(args[0])->name());
    return args[0];
}

Value hide(Evaluator& e, Args args) {
    return Value::boolean(e.exposed.erase(symbolArg(args[0])->name()) != 0);
}

constexpr Subr Functions[] = {
    {"VL-BB-SET", 2, 2, setOnBoard}, {"VL-BB-REF", 1, 1, getFromBoard}, {"VL-PROPAGATE", 1, 1, propagate},
    {"VL-ACAD-DEFUN", 1, 1, expose}, {"VL-ACAD-UNDEFUN", 1, 1, hide},
};

}  // namespace

std::span<const Subr> namespaceFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
