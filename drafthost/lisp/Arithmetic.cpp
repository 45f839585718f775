// SPDX-License-Identifier: GPL-3.0-or-later
// Integers are 32 bit and wrap; one real among the arguments makes the result real, from there on.

#include <cmath>
#include <limits>
#include <utility>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"

namespace drafthost::lisp {
namespace {

std::int32_t wrap(std::int64_t n) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(n));
}

Value checkedReal(double r) {
    if (std::isnan(r) || std::isinf(r)) {
        fail("floating point exception");
    }
    return Value::real(r);
}

template <typename Whole, typename Real>
Value fold(Args args, Whole whole, Real real) {
    Value total = needNumber(args[0]);
    for (const Value& next : args.subspan(1)) {
        needNumber(next);
        total = total.isInt() && next.isInt() ? Value::integer(whole(total.toInt(), next.toInt()))
                                              : checkedReal(real(total.toDouble(), next.toDouble()));
    }
    return total;
}

Value add(Evaluator&, Args args) {
    if (args.empty()) {
        return Value::integer(0);
    }
    return fold(
        args, [](std::int64_t a, std::int64_t b) { return wrap(a + b); },
        [](double a, double b) { return a + b; });
}

Value negate(const Value& v) {
    return v.isInt() ? Value::integer(wrap(-static_cast<std::int64_t>(v.toInt()))) : Value::real(-realArg(v));
}

Value subtract(Evaluator&, Args args) {
    if (args.empty()) {
        return Value::integer(0);
    }
    if (args.size() == 1) {
        return negate(args[0]);
    }
    return fold(
        args, [](std::int64_t a, std::int64_t b) { return wrap(a - b); },
        [](double a, double b) { return a - b; });
}

Value multiply(Evaluator&, Args args) {
    if (args.empty()) {
        return Value::integer(0);
    }
    return fold(
        args, [](std::int64_t a, std::int64_t b) { return wrap(a * b); },
        [](double a, double b) { return a * b; });
}

Value divide(Evaluator&, Args args) {
    if (args.empty()) {
        return Value::integer(0);
    }
    return fold(
        args,
        [](std::int64_t a, std::int64_t b) {
            if (b == 0) {
                fail("divide by zero");
            }
            return wrap(a / b);
        },
        [](double a, double b) {
            if (b == 0) {
                fail("divide by zero");
            }
            return a / b;
        });
}

Value remainder(Evaluator&, Args args) {
    if (args.empty()) {
        return Value::integer(0);
    }
    return fold(
        args,
        [](std::int64_t a, std::int64_t b) {
            if (b == 0) {
                fail("divide by zero");
            }
            return wrap(a % b);
        },
        [](double a, double b) {
            if (b == 0) {
                fail("divide by zero");
            }
            return std::fmod(a, b);
        });
}

Value increment(Evaluator&, Args args) {
    return args[0].isInt() ? Value::integer(wrap(std::int64_t{args[0].toInt()} + 1))
                           : Value::real(realArg(args[0]) + 1);
}

Value decrement(Evaluator&, Args args) {
    return args[0].isInt() ? Value::integer(wrap(std::int64_t{args[0].toInt()} - 1))
                           : Value::real(realArg(args[0]) - 1);
}

Value absolute(Evaluator&, Args args) {
    if (args[0].isInt()) {
        return args[0].toInt() < 0 ? negate(args[0]) : args[0];
    }
    return Value::real(std::fabs(realArg(args[0])));
}

Value fix(Evaluator&, Args args) {
    if (args[0].isInt()) {
        return args[0];
    }
    const double whole = std::trunc(realArg(args[0]));
    if (whole >= std::numeric_limits<std::int32_t>::min() &&
        whole <= std::numeric_limits<std::int32_t>::max()) {
        return Value::integer(static_cast<std::int32_t>(whole));
    }
    return Value::real(whole);
}

Value toReal(Evaluator&, Args args) {
    return Value::real(realArg(args[0]));
}

template <typename Better>
Value extreme(Args args, Better better) {
    if (args.empty()) {
        return Value::integer(0);
    }
    Value best = needNumber(args[0]);
    bool anyReal = best.isReal();
    for (const Value& next : args.subspan(1)) {
        anyReal |= needNumber(next).isReal();
        if (better(next.toDouble(), best.toDouble())) {
            best = next;
        }
    }
    return anyReal ? Value::real(best.toDouble()) : best;
}

Value largest(Evaluator&, Args args) {
    return extreme(args, [](double a, double b) { return a > b; });
}

Value smallest(Evaluator&, Args args) {
    return extreme(args, [](double a, double b) { return a < b; });
}

Value squareRoot(Evaluator&, Args args) {
    if (realArg(args[0]) < 0) {
        fail("function undefined for argument: " + std::to_string(realArg(args[0])));
    }
    return Value::real(std::sqrt(args[0].toDouble()));
}

Value exponential(Evaluator&, Args args) {
    return checkedReal(std::exp(realArg(args[0])));
}

Value logarithm(Evaluator&, Args args) {
    if (realArg(args[0]) <= 0) {
        fail("function undefined for argument: " + std::to_string(realArg(args[0])));
    }
    return Value::real(std::log(args[0].toDouble()));
}

Value power(Evaluator&, Args args) {
    needNumber(args[0]);
    needNumber(args[1]);
    const double result = std::pow(args[0].toDouble(), args[1].toDouble());
    if (args[0].isInt() && args[1].isInt()) {
        if (std::isinf(result)) {
            fail("divide by zero");
        }
        if (std::fabs(result) <= std::numeric_limits<std::int32_t>::max()) {
            return Value::integer(static_cast<std::int32_t>(result));
        }
    }
    return checkedReal(result);
}

Value sine(Evaluator&, Args args) {
    return checkedReal(std::sin(realArg(args[0])));
}
Value cosine(Evaluator&, Args args) {
    return checkedReal(std::cos(realArg(args[0])));
}

Value arcTangent(Evaluator&, Args args) {
    const double y = realArg(args[0]);
    return Value::real(args.size() == 2 ? std::atan2(y, realArg(args[1])) : std::atan(y));
}

Value greatestDivisor(Evaluator&, Args args) {
    std::int64_t a = std::llabs(std::int64_t{intArg(args[0])});
    std::int64_t b = std::llabs(std::int64_t{intArg(args[1])});
    while (b != 0) {
        a = std::exchange(b, a % b);
    }
    return Value::integer(wrap(a));
}

Value bitAnd(Evaluator&, Args args) {
    std::int32_t result = args.empty() ? 0 : -1;
    for (const Value& v : args) {
        result &= intArg(v);
    }
    return Value::integer(result);
}

Value bitOr(Evaluator&, Args args) {
    std::int32_t result = 0;
    for (const Value& v : args) {
        result |= intArg(v);
    }
    return Value::integer(result);
}

Value bitNot(Evaluator&, Args args) {
    return Value::integer(~intArg(args[0]));
}

Value shift(Evaluator&, Args args) {
    const auto bits = static_cast<std::uint32_t>(intArg(args[0]));
    const std::int32_t by = intArg(args[1]);
    if (by <= -32 || by >= 32) {
        return Value::integer(0);
    }
    return Value::integer(static_cast<std::int32_t>(by >= 0 ? bits << by : bits >> -by));
}

// The operator's bits are the results for (1,1), (1,0), (0,1) and (0,0), from the lowest bit on.
Value boole(Evaluator&, Args args) {
    const std::int32_t op = intArg(args[0]);
    std::int32_t total = intArg(args[1]);
    for (const Value& v : args.subspan(2)) {
        const std::int32_t next = intArg(v);
        std::int32_t result = 0;
        result |= (op & 1) != 0 ? total & next : 0;
        result |= (op & 2) != 0 ? total & ~next : 0;
        result |= (op & 4) != 0 ? ~total & next : 0;
        result |= (op & 8) != 0 ? ~total & ~next : 0;
        total = result;
    }
    return Value::integer(total);
}

constexpr Subr Functions[] = {
    {"+", 0, Subr::Any, add},
    {"-", 0, Subr::Any, subtract},
    {"*", 0, Subr::Any, multiply},
    {"/", 0, Subr::Any, divide},
    {"REM", 0, Subr::Any, remainder},
    {"1+", 1, 1, increment},
    {"1-", 1, 1, decrement},
    {"ABS", 1, 1, absolute},
    {"FIX", 1, 1, fix},
    {"FLOAT", 1, 1, toReal},
    {"MAX", 0, Subr::Any, largest},
    {"MIN", 0, Subr::Any, smallest},
    {"SQRT", 1, 1, squareRoot},
    {"EXP", 1, 1, exponential},
    {"LOG", 1, 1, logarithm},
    {"EXPT", 2, 2, power},
    {"SIN", 1, 1, sine},
    {"COS", 1, 1, cosine},
    {"ATAN", 1, 2, arcTangent},
    {"GCD", 2, 2, greatestDivisor},
    {"LOGAND", 0, Subr::Any, bitAnd},
    {"LOGIOR", 0, Subr::Any, bitOr},
    {"~", 1, 1, bitNot},
    {"LSH", 2, 2, shift},
    {"BOOLE", 2, Subr::Any, boole},
};

}  // namespace

std::span<const Subr> arithmeticFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
