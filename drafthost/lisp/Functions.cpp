// SPDX-License-Identifier: GPL-3.0-or-later
// Functions over functions, symbols and types, and the ways out of a program.

#include <algorithm>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::lisp {
namespace {

Value evaluate(Evaluator& e, Args args) {
    return e.eval(args[0]);
}

Value set(Evaluator& e, Args args) {
    if (args[0].same(Value::truth())) {
        failType("symbolp", args[0]);
    }
    e.set(symbolArg(args[0]), args[1]);
    return args[1];
}

Value apply(Evaluator& e, Args args) {
    std::vector<Value> items = listArg(args[1]).items();
    return e.apply(args[0], items);
}

Value mapcar(Evaluator& e, Args args) {
    const Value function = e.function(args[0]);
    std::vector<const Value*> lists;
    for (const Value& list : args.subspan(1)) {
        lists.push_back(&listArg(list));
    }
    ListBuilder result;
    std::vector<Value> call(lists.size());
    while (std::ranges::all_of(lists, [](const Value* l) { return l->isCons(); })) {
        for (std::size_t i = 0; i < lists.size(); ++i) {
            call[i] = lists[i]->car();
            lists[i] = &lists[i]->cdr();
        }
        result.add(e.apply(function, call));
    }
    return result.take();
}

Value catchAll(Evaluator& e, Args args) {
    std::vector<Value> items = listArg(optional(args, 1)).items();
    struct Quiet {
        Evaluator& evaluator;
        explicit Quiet(Evaluator& ev) : evaluator(ev) { ++evaluator.quietDepth; }
        ~Quiet() { --evaluator.quietDepth; }
    };
    try {
        const Quiet quiet(e);
        return e.apply(args[0], items);
    } catch (const Failure& failure) {
        if (failure.kind != Failure::Kind::Error) {
            throw;
        }
        return Value::error(failure.text);
    }
}

Value isCaught(Evaluator&, Args args) {
    return Value::boolean(args[0].isError());
}

Value caughtMessage(Evaluator&, Args args) {
    if (!args[0].isError()) {
        failType("catch-all-apply-error-p", args[0]);
    }
    return Value::string(args[0].errorText());
}

Value quit(Evaluator&, Args) {
    fail("quit / exit abort");
}

Value pushError(Evaluator&, Args) {
    return Value::truth();
}

Value typeOf(Evaluator&, Args args) {
    switch (args[0].type()) {
        case Type::Nil:
            return {};
        case Type::Int:
            return Value::symbol("INT");
        case Type::Real:
            return Value::symbol("REAL");
        case Type::Symbol:
            return Value::symbol("SYM");
        case Type::Ename:
            return Value::symbol("ENAME");
        case Type::Subr:
            return Value::symbol("SUBR");
        case Type::String:
            return Value::symbol("STR");
        case Type::Cons:
            return Value::symbol("LIST");
        case Type::Usubr:
            return Value::symbol("USUBR");
        case Type::Exsubr:
            return Value::symbol("EXSUBR");
        case Type::Foreign:
            return Value::symbol(args[0].toForeign().typeName());
        case Type::File:
            return Value::symbol("FILE");
        case Type::Error:
            return Value::symbol("%CATCH-ALL-APPLY-ERROR%");
    }
    return {};
}

Value isNull(Evaluator&, Args args) {
    return Value::boolean(args[0].isNil());
}
Value isAtom(Evaluator&, Args args) {
    return Value::boolean(!args[0].isCons());
}
Value isList(Evaluator&, Args args) {
    return Value::boolean(args[0].isList());
}
Value isCons(Evaluator&, Args args) {
    return Value::boolean(args[0].isCons());
}
Value isSymbol(Evaluator&, Args args) {
    return Value::boolean(args[0].isSymbol());
}
Value isString(Evaluator&, Args args) {
    return Value::boolean(args[0].isString());
}

Value isBound(Evaluator& e, Args args) {
    return Value::boolean(args[0].isSymbol() && e.get(args[0].toSymbol()));
}

Value symbolName(Evaluator&, Args args) {
    return Value::string(symbolArg(args[0])->name());
}

Value symbolValue(Evaluator& e, Args args) {
    return e.get(symbolArg(args[0]));
}

// Format 0 gives symbols, 1 strings; with names, each of them that is bound, else nil in its place.
Value atomsFamily(Evaluator& e, Args args) {
    const bool strings = intArg(args[0]) == 1;
    const auto show = [&](const Symbol* s) { return strings ? Value::string(s->name()) : Value::symbol(s); };
    ListBuilder result;
    if (args.size() == 2) {
        for (const Value& name : listArg(args[1]).items()) {
            const Symbol* symbol = Symbol::intern(stringArg(name));
            result.add(e.get(symbol) ? show(symbol) : Value());
        }
    } else {
        for (const Symbol* symbol : e.boundSymbols()) {
            result.add(show(symbol));
        }
    }
    return result.take();
}

constexpr Subr Functions[] = {
    {"EVAL", 1, 1, evaluate},
    {"SET", 2, 2, set},
    {"APPLY", 2, 2, apply},
    {"MAPCAR", 2, Subr::Any, mapcar},
    {"VL-CATCH-ALL-APPLY", 1, 2, catchAll},
    {"VL-CATCH-ALL-ERROR-P", 1, 1, isCaught},
    {"VL-CATCH-ALL-ERROR-MESSAGE", 1, 1, caughtMessage},
    {"EXIT", 0, 0, quit},
    {"QUIT", 0, 0, quit},
    {"*PUSH-ERROR-USING-COMMAND*", 0, 0, pushError},
    {"*PUSH-ERROR-USING-STACK*", 0, 0, pushError},
    {"*POP-ERROR-MODE*", 0, 0, pushError},
    {"TYPE", 1, 1, typeOf},
    {"NOT", 1, 1, isNull},
    {"NULL", 1, 1, isNull},
    {"ATOM", 1, 1, isAtom},
    {"LISTP", 1, 1, isList},
    {"VL-CONSP", 1, 1, isCons},
    {"VL-SYMBOLP", 1, 1, isSymbol},
    {"VL-STRINGP", 1, 1, isString},
    {"BOUNDP", 1, 1, isBound},
    {"VL-SYMBOL-NAME", 1, 1, symbolName},
    {"VL-SYMBOL-VALUE", 1, 1, symbolValue},
    {"ATOMS-FAMILY", 1, 2, atomsFamily},
};

}  // namespace

std::span<const Subr> functionFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
