// SPDX-License-Identifier: GPL-3.0-or-later
// Text to the command line or to a file.

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Stream.h"

namespace drafthost::lisp {
namespace {

void put(Evaluator& e, const Value& file, const std::string& text) {
    if (!file) {
        e.host.print(text);
        return;
    }
    if (file.type() != Type::File || !file.toStream().canWrite()) {
        failType("streamp", file);
    }
    if (!file.toStream().write(text)) {
        fail("cannot write to file: " + prin1(Value::string(file.toStream().path)));
    }
}

Value printRaw(Evaluator& e, Args args) {
    if (args.empty()) {
        return Value::nullSymbol();
    }
    put(e, optional(args, 1), princ(args[0]));
    return args[0];
}

Value printReadable(Evaluator& e, Args args) {
    if (args.empty()) {
        return Value::nullSymbol();
    }
    put(e, optional(args, 1), prin1(args[0]));
    return args[0];
}

Value printLine(Evaluator& e, Args args) {
    if (args.empty()) {
        return Value::nullSymbol();
    }
    put(e, optional(args, 1), "\n" + prin1(args[0]) + " ");
    return args[0];
}

Value prompt(Evaluator& e, Args args) {
    e.host.print(stringArg(args[0]));
    return {};
}

Value newLine(Evaluator& e, Args) {
    e.host.print("\n");
    return {};
}

Value alert(Evaluator& e, Args args) {
    e.host.alert(stringArg(args[0]));
    e.checkDocument();
    return {};
}

// There is one window for text and picture, so switching between them has nothing to do.
Value switchScreen(Evaluator&, Args) {
    return {};
}

constexpr Subr Functions[] = {
    {"PRINC", 0, 2, printRaw},       {"PRIN1", 0, 2, printReadable},   {"PRINT", 0, 2, printLine},
    {"PROMPT", 1, 1, prompt},        {"TERPRI", 0, 0, newLine},        {"ALERT", 1, 1, alert},
    {"TEXTSCR", 0, 0, switchScreen}, {"GRAPHSCR", 0, 0, switchScreen}, {"TEXTPAGE", 0, 0, switchScreen},
};

}  // namespace

std::span<const Subr> outputFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
