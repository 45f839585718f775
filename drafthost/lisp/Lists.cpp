// SPDX-License-Identifier: GPL-3.0-or-later
// Making lists and taking them apart.

#include <array>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Compare.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::lisp {
namespace {

Value makeList(Evaluator&, Args args) {
    return Value::list(args);
}
Value makeCons(Evaluator&, Args args) {
    return Value::cons(args[0], args[1]);
}

Value listWithTail(Evaluator&, Args args) {
    Value result = args.back();
    for (std::size_t i = args.size() - 1; i-- > 0;) {
        result = Value::cons(args[i], std::move(result));
    }
    return result;
}

/// The letters between "c" and "r" are applied from the last to the first.
template <char... Letters>
Value access(Evaluator&, Args args) {
    static constexpr std::array PathLetters{Letters...};
    const Value* v = &args[0];
    for (std::size_t i = PathLetters.size(); i-- > 0;) {
        listArg(*v);
        v = PathLetters[i] == 'a' ? &v->car() : &v->cdr();
    }
    return *v;
}

Value nth(Evaluator&, Args args) {
    const std::int32_t n = intArg(args[0]);
    const Value* rest = &listArg(args[1]);
    for (std::int32_t i = 0; i < n && rest->isCons(); ++i) {
        rest = &rest->cdr();
    }
    return n < 0 ? Value() : rest->car();
}

Value last(Evaluator&, Args args) {
    const Value* rest = &listArg(args[0]);
    while (rest->cdr().isCons()) {
        rest = &rest->cdr();
    }
    return rest->car();
}

Value length(Evaluator&, Args args) {
    std::int32_t count = 0;
    const Value* rest = &listArg(args[0]);
    for (; rest->isCons(); rest = &rest->cdr()) {
        ++count;
    }
    if (!rest->isNil()) {
        fail("bad list: " + prin1(args[0]));
    }
    return Value::integer(count);
}

/// Length of a proper list, nil of a dotted one.
Value properLength(Evaluator&, Args args) {
    std::int32_t count = 0;
    const Value* rest = &listArg(args[0]);
    for (; rest->isCons(); rest = &rest->cdr()) {
        ++count;
    }
    return rest->isNil() ? Value::integer(count) : Value();
}

Value reverse(Evaluator&, Args args) {
    Value result;
    for (const Value* rest = &listArg(args[0]); rest->isCons(); rest = &rest->cdr()) {
        result = Value::cons(rest->car(), std::move(result));
    }
    return result;
}

Value append(Evaluator&, Args args) {
    ListBuilder result;
    for (std::size_t i = 0; i + 1 < args.size(); ++i) {
        for (const Value* rest = &listArg(args[i]); rest->isCons(); rest = &rest->cdr()) {
            result.add(rest->car());
        }
    }
    if (!args.empty()) {
        result.setTail(listArg(args.back()));
    }
    return result.take();
}

Value associated(Evaluator&, Args args) {
    for (const Value* rest = &listArg(args[1]); rest->isCons(); rest = &rest->cdr()) {
        const Value& pair = rest->car();
        if (!pair.isList()) {
            fail("bad association list: " + prin1(args[1]));
        }
        if (pair.isCons() && equalValues(pair.car(), args[0])) {
            return pair;
        }
    }
    return {};
}

Value member(Evaluator&, Args args) {
    for (const Value* rest = &listArg(args[1]); rest->isCons(); rest = &rest->cdr()) {
        if (equalValues(rest->car(), args[0])) {
            return *rest;
        }
    }
    return {};
}

Value substitute(Evaluator&, Args args) {
    ListBuilder result;
    for (const Value* rest = &listArg(args[2]); rest->isCons(); rest = &rest->cdr()) {
        result.add(equalValues(rest->car(), args[1]) ? args[0] : rest->car());
    }
    return result.take();
}

constexpr Subr Functions[] = {
    {"LIST", 0, Subr::Any, makeList},
    {"CONS", 2, 2, makeCons},
    {"VL-LIST*", 1, Subr::Any, listWithTail},
    {"CAR", 1, 1, access<'a'>},
    {"CDR", 1, 1, access<'d'>},
    {"CAAR", 1, 1, access<'a', 'a'>},
    {"CADR", 1, 1, access<'a', 'd'>},
    {"CDAR", 1, 1, access<'d', 'a'>},
    {"CDDR", 1, 1, access<'d', 'd'>},
    {"CAAAR", 1, 1, access<'a', 'a', 'a'>},
    {"CAADR", 1, 1, access<'a', 'a', 'd'>},
    {"CADAR", 1, 1, access<'a', 'd', 'a'>},
    {"CADDR", 1, 1, access<'a', 'd', 'd'>},
    {"CDAAR", 1, 1, access<'d', 'a', 'a'>},
    {"CDADR", 1, 1, access<'d', 'a', 'd'>},
    {"CDDAR", 1, 1, access<'d', 'd', 'a'>},
    {"CDDDR", 1, 1, access<'d', 'd', 'd'>},
    {"CAAAAR", 1, 1, access<'a', 'a', 'a', 'a'>},
    {"CAAADR", 1, 1, access<'a', 'a', 'a', 'd'>},
    {"CAADAR", 1, 1, access<'a', 'a', 'd', 'a'>},
    {"CAADDR", 1, 1, access<'a', 'a', 'd', 'd'>},
    {"CADAAR", 1, 1, access<'a', 'd', 'a', 'a'>},
    {"CADADR", 1, 1, access<'a', 'd', 'a', 'd'>},
    {"CADDAR", 1, 1, access<'a', 'd', 'd', 'a'>},
    {"CADDDR", 1, 1, access<'a', 'd', 'd', 'd'>},
    {"CDAAAR", 1, 1, access<'d', 'a', 'a', 'a'>},
    {"CDAADR", 1, 1, access<'d', 'a', 'a', 'd'>},
    {"CDADAR", 1, 1, access<'d', 'a', 'd', 'a'>},
    {"CDADDR", 1, 1, access<'d', 'a', 'd', 'd'>},
    {"CDDAAR", 1, 1, access<'d', 'd', 'a', 'a'>},
    {"CDDADR", 1, 1, access<'d', 'd', 'a', 'd'>},
    {"CDDDAR", 1, 1, access<'d', 'd', 'd', 'a'>},
    {"CDDDDR", 1, 1, access<'d', 'd', 'd', 'd'>},
    {"NTH", 2, 2, nth},
    {"LAST", 1, 1, last},
    {"LENGTH", 1, 1, length},
    {"VL-LIST-LENGTH", 1, 1, properLength},
    {"REVERSE", 1, 1, reverse},
    {"APPEND", 0, Subr::Any, append},
    {"ASSOC", 2, 2, associated},
    {"MEMBER", 2, 2, member},
    {"SUBST", 3, 3, substitute},
};

}  // namespace

std::span<const Subr> listFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
