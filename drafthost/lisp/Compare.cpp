// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Compare.h"

#include <cmath>
#include <vector>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::lisp {

bool equalValues(const Value& first, const Value& second, double fuzz) {
    std::vector<std::pair<const Value*, const Value*>> waiting{{&first, &second}};
    while (!waiting.empty()) {
        auto [a, b] = waiting.back();
        waiting.pop_back();
        while (a->isCons() && b->isCons()) {
            if (&a->cell() == &b->cell()) {
                break;
            }
            waiting.emplace_back(&a->car(), &b->car());
            a = &a->cdr();
            b = &b->cdr();
        }
        if (a->isCons() && b->isCons()) {
            continue;
        }
        if (a->isNumber() && b->isNumber()) {
            const double x = a->toDouble();
            const double y = b->toDouble();
            if (x != y && !(std::fabs(x - y) <= fuzz)) {
                return false;
            }
        } else if (!a->same(*b)) {
            return false;
        }
    }
    return true;
}

namespace {

/// Orders two numbers or two strings; anything else cannot be compared.
int order(const Value& a, const Value& b) {
    if (a.isNumber() && b.isNumber()) {
        const double x = a.toDouble();
        const double y = b.toDouble();
        return x < y ? -1 : x > y ? 1 : 0;
    }
    if (a.isString() && b.isString()) {
        return a.toString().compare(b.toString());
    }
    const Value& wrong = a.isNumber() || a.isString() ? b : a;
    fail("bad argument type for compare: " + prin1(a) + " " + prin1(wrong.same(a) ? b : wrong));
}

template <typename Holds>
Value chain(Args args, Holds holds) {
    if (args.size() == 1 && !args[0].isNumber() && !args[0].isString()) {
        failType("numberp:", args[0]);
    }
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (!holds(order(args[i - 1], args[i]))) {
            return {};
        }
    }
    return Value::truth();
}

/// (= …) and (/= …) take anything: what is neither number nor string is equal only to itself.
bool sameNumberOrString(const Value& a, const Value& b) {
    return a.isNumber() && b.isNumber() ? a.toDouble() == b.toDouble() : a.same(b);
}

Value isEqual(Evaluator&, Args args) {
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (!sameNumberOrString(args[i - 1], args[i])) {
            return {};
        }
    }
    return Value::truth();
}

Value isDifferent(Evaluator&, Args args) {
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (sameNumberOrString(args[i - 1], args[i])) {
            return {};
        }
    }
    return Value::truth();
}

Value isLess(Evaluator&, Args args) {
    return chain(args, [](int c) { return c < 0; });
}
Value isLessOrEqual(Evaluator&, Args args) {
    return chain(args, [](int c) { return c <= 0; });
}
Value isGreater(Evaluator&, Args args) {
    return chain(args, [](int c) { return c > 0; });
}
Value isGreaterOrEqual(Evaluator&, Args args) {
    return chain(args, [](int c) { return c >= 0; });
}

Value sameObject(Evaluator&, Args args) {
    return Value::boolean(args[0].same(args[1]));
}

Value sameValue(Evaluator&, Args args) {
    return Value::boolean(equalValues(args[0], args[1], args.size() == 3 ? realArg(args[2]) : 0));
}

Value isZero(Evaluator&, Args args) {
    return Value::boolean(realArg(args[0]) == 0);
}
Value isMinus(Evaluator&, Args args) {
    return Value::boolean(realArg(args[0]) < 0);
}
Value isNumber(Evaluator&, Args args) {
    return Value::boolean(args[0].isNumber());
}

constexpr Subr Functions[] = {
    {"=", 1, Subr::Any, isEqual},   {"/=", 1, Subr::Any, isDifferent},
    {"<", 1, Subr::Any, isLess},    {"<=", 1, Subr::Any, isLessOrEqual},
    {">", 1, Subr::Any, isGreater}, {">=", 1, Subr::Any, isGreaterOrEqual},
    {"EQ", 2, 2, sameObject},       {"EQUAL", 2, 3, sameValue},
    {"ZEROP", 1, 1, isZero},        {"MINUSP", 1, 1, isMinus},
    {"NUMBERP", 1, 1, isNumber},
};

}  // namespace

std::span<const Subr> compareFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
