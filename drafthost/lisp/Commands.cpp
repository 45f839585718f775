// SPDX-License-Identifier: GPL-3.0-or-later
// Host commands from LISP.

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::lisp {
namespace {

bool canBeSent(const Value& v) {
    switch (v.type()) {
        case Type::String:
        case Type::Int:
        case Type::Real:
        case Type::Ename:
        case Type::PickSet:
            return true;
        case Type::Cons:
            return toPoint(v).has_value() || (v.car().isEname() && toPoint(v.cdr().car()));
        default:
            return false;
    }
}

void finish(Evaluator& e, CommandStatus status) {
    e.checkDocument();
    if (status == CommandStatus::Cancelled) {
        e.failCancelled();
    }
}

struct CommandScope {
    Evaluator& evaluator;
    explicit CommandScope(Evaluator& e) : evaluator(e) { ++evaluator.commandDepth; }
    ~CommandScope() { --evaluator.commandDepth; }
};

// nil is an Esc, as in the (command nil) of many error handlers.
Value command(Evaluator& e, const Value& forms) {
    if (!forms) {
        finish(e, e.host.command({}));
        return {};
    }
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr()) {
        Value answer;
        {
            const CommandScope scope(e);
            answer = e.eval(rest->car());
        }
        if (answer && !canBeSent(answer)) {
            fail("invalid AutoCAD command: " + prin1(answer));
        }
        finish(e, e.host.command(std::span<const Value>(&answer, answer ? 1 : 0)));
    }
    return {};
}

Value wholeCommand(Evaluator& e, Args args) {
    for (const Value& v : args) {
        if (!canBeSent(v)) {
            fail("invalid AutoCAD command: " + prin1(v));
        }
        if (v.isString() && v.toString() == "\\") {
            fail("AutoCAD rejected function");
        }
    }
    const CommandStatus status = e.host.commandS(args);
    finish(e, status);
    if (status == CommandStatus::Rejected) {
        fail("Command failed");
    }
    return {};
}

Value checkedCommand(Evaluator& e, Args args) {
    for (const Value& v : args) {
        if (!canBeSent(v)) {
            fail("invalid AutoCAD command: " + prin1(v));
        }
    }
    const CommandStatus status = e.host.command(args);
    finish(e, status);
    return Value::boolean(status == CommandStatus::Done);
}

// Dialogs are never shown by commands that LISP starts, so there is nothing to ask for.
Value nextWithDialog(Evaluator&, Args) {
    return {};
}

constexpr Subr kFunctions[] = {
    {"COMMAND", 0, Subr::kAny, nullptr, command},
    {"COMMAND-S", 0, Subr::kAny, wholeCommand},
    {"VL-CMDF", 0, Subr::kAny, checkedCommand},
    {"INITDIA", 0, 1, nextWithDialog},
};

}  // namespace

std::span<const Subr> commandFunctions() {
    return kFunctions;
}

}  // namespace drafthost::lisp
