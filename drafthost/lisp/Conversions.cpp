// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers to text and back, in the host's unit formats.

#include <charconv>
#include <cmath>
#include <limits>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Reader.h"
#include "drafthost/lisp/Units.h"

namespace drafthost::lisp {
namespace {

int integerVariable(Evaluator& e, std::string_view name, int otherwise) {
    const auto value = e.host.getVar(name);
    return value && value->isInt() ? value->toInt() : otherwise;
}

int modeArg(Evaluator& e, Args args, std::size_t i, std::string_view variable, int otherwise) {
    if (!optional(args, i)) {
        return integerVariable(e, variable, otherwise);
    }
    const int given = intArg(args[i]);
    return given < 0 ? integerVariable(e, variable, otherwise) : given;
}

Value integerToText(Evaluator&, Args args) {
    return Value::string(std::to_string(intArg(args[0])));
}

std::string_view numberStart(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    std::string_view rest =
        start == std::string::npos ? std::string_view() : std::string_view(text).substr(start);
    return rest.starts_with('+') ? rest.substr(1) : rest;
}

Value textToInteger(Evaluator&, Args args) {
    const std::string_view text = numberStart(stringArg(args[0]));
    std::int32_t n = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), n);
    if (error == std::errc::result_out_of_range) {
        return Value::integer(text.starts_with('-') ? std::numeric_limits<std::int32_t>::min()
                                                    : std::numeric_limits<std::int32_t>::max());
    }
    return Value::integer(n);
}

Value textToReal(Evaluator&, Args args) {
    const std::string_view text = numberStart(stringArg(args[0]));
    double r = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), r);
    return Value::real(error == std::errc() && std::isfinite(r) ? r : 0);
}

Value distanceToText(Evaluator& e, Args args) {
    DistanceFormat format;
    const double value = realArg(args[0]);
    format.mode = modeArg(e, args, 1, "LUNITS", 2);
    format.precision = modeArg(e, args, 2, "LUPREC", 4);
    format.zeros = integerVariable(e, "DIMZIN", 0);
    return Value::string(formatDistance(value, format));
}

Value angleToText(Evaluator& e, Args args) {
    return Value::string(
        formatAngle(realArg(args[0]), modeArg(e, args, 1, "AUNITS", 0), modeArg(e, args, 2, "AUPREC", 0)));
}

Value realOrNil(const std::optional<double>& r) {
    return r ? Value::real(*r) : Value();
}

Value textToDistance(Evaluator& e, Args args) {
    return realOrNil(parseDistance(stringArg(args[0]), modeArg(e, args, 1, "LUNITS", 2)));
}

Value textToAngle(Evaluator& e, Args args) {
    return realOrNil(parseAngle(stringArg(args[0]), modeArg(e, args, 1, "AUNITS", 0)));
}

Value convert(Evaluator&, Args args) {
    const std::string& from = stringArg(args[1]);
    const std::string& to = stringArg(args[2]);
    if (args[0].isNumber()) {
        return realOrNil(convertUnit(args[0].toDouble(), from, to));
    }
    const Point p = pointArg(args[0]);
    ListBuilder result;
    for (std::size_t i = 0; i < args[0].items().size(); ++i) {
        const auto converted = convertUnit(p[i], from, to);
        if (!converted) {
            return {};
        }
        result.add(Value::real(*converted));
    }
    return result.take();
}

Value readText(Evaluator&, Args args) {
    const std::string text = stringArg(args[0]);
    return Reader(text).next().value_or(Value());
}

constexpr Subr Functions[] = {
    {"ITOA", 1, 1, integerToText},  {"ATOI", 1, 1, textToInteger}, {"ATOF", 1, 1, textToReal},
    {"RTOS", 1, 3, distanceToText}, {"ANGTOS", 1, 3, angleToText}, {"DISTOF", 1, 2, textToDistance},
    {"ANGTOF", 1, 2, textToAngle},  {"CVUNIT", 3, 3, convert},     {"READ", 1, 1, readText},
};

}  // namespace

std::span<const Subr> conversionFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
