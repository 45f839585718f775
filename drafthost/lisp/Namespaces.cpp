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

// One world is the document's own namespace, so what goes into or comes out of it stays where it is.
Value documentValue(Evaluator& e, Args args) {
    return e.get(symbolArg(args[0]));
}

Value setDocumentValue(Evaluator& e, Args args) {
    e.set(symbolArg(args[0]), args[1]);
    return args[1];
}

Value sameName(Evaluator&, Args args) {
    return args[0].isString() ? Value::symbol(upperCase(stringArg(args[0]))) : Value(args[0]);
}

Value none(Evaluator&, Args) {
    return {};
}

Value exitWithError(Evaluator&, Args args) {
    fail(stringArg(args[0]));
}

// A program that is no separate application ends as by (exit).
Value exitWithValue(Evaluator&, Args) {
    fail("quit / exit abort");
}

// What is traced is noted and given back; calls are not shown.
Value trace(Evaluator&, const Value& forms) {
    Value last;
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr()) {
        symbolArg(rest->car());
        last = rest->car();
    }
    return last;
}

constexpr Subr Functions[] = {
    {"VL-BB-SET", 2, 2, setOnBoard},
    {"VL-BB-REF", 1, 1, getFromBoard},
    {"VL-PROPAGATE", 1, 1, propagate},
    {"VL-ACAD-DEFUN", 1, 1, expose},
    {"VL-ACAD-UNDEFUN", 1, 1, hide},
    {"VL-DOC-REF", 1, 1, documentValue},
    {"VL-DOC-SET", 2, 2, setDocumentValue},
    {"VL-DOC-EXPORT", 1, 1, sameName},
    {"VL-DOC-IMPORT", 1, 2, sameName},
    {"VL-LIST-EXPORTED-FUNCTIONS", 0, 1, none},
    {"VL-LIST-LOADED-VLX", 0, 0, none},
    {"VL-UNLOAD-VLX", 1, 1, none},
    {"VL-VLX-LOADED-P", 1, 1, none},
    {"VL-EXIT-WITH-ERROR", 1, 1, exitWithError},
    {"VL-EXIT-WITH-VALUE", 1, 1, exitWithValue},
    {"TRACE", 0, Subr::Any, nullptr, trace},
    {"UNTRACE", 0, Subr::Any, nullptr, trace},
};

}  // namespace

std::span<const Subr> namespaceFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
