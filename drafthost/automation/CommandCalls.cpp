// SPDX-License-Identifier: GPL-3.0-or-later
// Host commands from LISP.

#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/PickSet.h"
#include "drafthost/automation/Session.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::automation {
namespace {

bool canBeSent(const Value& v) {
    switch (v.type()) {
        case Type::String:
        case Type::Int:
        case Type::Real:
        case Type::Ename:
            return true;
        case Type::Cons:
            return toPoint(v).has_value() || (v.car().isEname() && toPoint(v.cdr().car()));
        default:
            return pickSetOf(v) != nullptr;
    }
}

void finish(Evaluator& e, CommandStatus status) {
    e.checkDocument();
    if (status == CommandStatus::Cancelled) {
        e.failCancelled();
    }
}

// nil is an Esc, as in the (command nil) of many error handlers.
Value command(Evaluator& e, const Value& forms) {
    if (!forms) {
        finish(e, sessionOf(e).host.command({}));
        return {};
    }
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr()) {
        Value answer;
        {
            const Session::CommandArguments scope(sessionOf(e), e);
            answer = e.eval(rest->car());
        }
        if (answer && !canBeSent(answer)) {
            fail("invalid AutoCAD command: " + lisp::prin1(answer));
        }
        finish(e, sessionOf(e).host.command(std::span<const Value>(&answer, answer ? 1 : 0)));
    }
    return {};
}

Value wholeCommand(Evaluator& e, Args args) {
    for (const Value& v : args) {
        if (!canBeSent(v)) {
            fail("invalid AutoCAD command: " + lisp::prin1(v));
        }
        if (v.isString() && v.toString() == "\\") {
            fail("AutoCAD rejected function");
        }
    }
    const CommandStatus status = sessionOf(e).host.commandS(args);
    finish(e, status);
    if (status == CommandStatus::Rejected) {
        fail("Command failed");
    }
    return {};
}

Value checkedCommand(Evaluator& e, Args args) {
    for (const Value& v : args) {
        if (!canBeSent(v)) {
            fail("invalid AutoCAD command: " + lisp::prin1(v));
        }
    }
    const CommandStatus status = sessionOf(e).host.command(args);
    finish(e, status);
    return Value::boolean(status == CommandStatus::Done);
}

// Dialogs are never shown by commands that LISP starts, so there is nothing to ask for.
Value nextWithDialog(Evaluator&, Args) {
    return {};
}

constexpr Subr Functions[] = {
    {"COMMAND", 0, Subr::Any, nullptr, command},
    {"COMMAND-S", 0, Subr::Any, wholeCommand},
    {"VL-CMDF", 0, Subr::Any, checkedCommand},
    {"INITDIA", 0, 1, nextWithDialog},
};

}  // namespace

std::span<const Subr> commandFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
