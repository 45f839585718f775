// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/PromptReader.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "drafthost/automation/Lisp.h"

namespace drafthost::automation {
namespace {

PromptReading refuse(std::string reason) {
    return {std::nullopt, std::move(reason)};
}

PromptReading checkNumber(const PromptRequest& request, Value v) {
    if ((request.initgetBits & NoZero) != 0 && v.toDouble() == 0) {
        return refuse((request.initgetBits & NoNegative) != 0 ? "Value must be positive and nonzero."
                                                              : "Value must be nonzero.");
    }
    if ((request.initgetBits & NoNegative) != 0 && v.toDouble() < 0) {
        return refuse("Value must be positive.");
    }
    return {std::move(v), {}};
}

PromptReading checkInteger(const PromptRequest& request, const Value& v) {
    const auto n = v.isInt() ? std::optional(v.toInt()) : std::nullopt;
    if (!n || *n < -32768 || *n > 32767) {
        return refuse("Requires an integer between -32768 and 32767.");
    }
    return checkNumber(request, v);
}

double between(const Point& a, const Point& b, bool plane) {
    return std::hypot(b[0] - a[0], b[1] - a[1], plane ? 0 : b[2] - a[2]);
}

double direction(const Point& a, const Point& b) {
    const double radians = std::atan2(b[1] - a[1], b[0] - a[0]);
    return radians < 0 ? radians + 2 * std::numbers::pi : radians;
}

/// The angle from the base to a point: of an orientation from the x axis, else as it would have been typed.
Value angleBetween(const PromptRequest& request, const Point& p, const ReadingRules& rules) {
    const double radians = direction(*request.base, p);
    return Value::real(request.kind == PromptKind::Orientation ? radians : typedAngle(radians, rules));
}

PromptReading readText(const PromptRequest& request, const std::string& text, const ReadingRules& rules) {
    switch (request.kind) {
        case PromptKind::Int: {
            const auto number = readInteger(text);
            return checkInteger(request, number ? Value::integer(*number) : Value());
        }
        case PromptKind::Real: {
            const auto number = readNumber(text, rules);
            return number ? checkNumber(request, Value::real(*number)) : refuse("Requires numeric value.");
        }
        case PromptKind::Point:
        case PromptKind::Corner: {
            const auto p = readPoint(text, rules);
            return p ? PromptReading{Value::point(*p), {}} : refuse("Invalid point.");
        }
        case PromptKind::Distance: {
            if (const auto number = readNumber(text, rules)) {
                return checkNumber(request, Value::real(*number));
            }
            const auto p = readPoint(text, rules);
            if (p && request.base) {
                return checkNumber(request, Value::real(between(*request.base, *p,
                                                                (request.initgetBits & PlaneDistance) != 0)));
            }
            return p ? PromptReading{Value::point(*p), {}}
                     : refuse("Requires numeric distance or two points.");
        }
        case PromptKind::Angle:
        case PromptKind::Orientation: {
            if (const auto p = readPoint(text, rules)) {
                return {request.base ? angleBetween(request, *p, rules) : Value::point(*p), {}};
            }
            const auto typed = readAngle(text, rules);
            if (!typed) {
                return refuse("Requires valid numeric angle or second point.");
            }
            // Only an orientation is counted from the x axis whatever the drawing's base.
            const double radians =
                request.kind == PromptKind::Orientation ? directionOf(*typed, rules) : *typed;
            const double turn = std::fmod(radians, 2 * std::numbers::pi);
            return checkNumber(request, Value::real(turn < 0 ? turn + 2 * std::numbers::pi : turn));
        }
        case PromptKind::Keyword:
            return refuse("Invalid option keyword.");
        case PromptKind::Entity:
        case PromptKind::NestedEntity:
            // A point where nothing was picked.
            return readPoint(text, rules) ? PromptReading{Value(), {}} : refuse("Invalid selection.");
        default:
            return {Value::string(text), {}};
    }
}

PromptReading readValue(const PromptRequest& request, const Value& v, const ReadingRules& rules) {
    switch (request.kind) {
        case PromptKind::Int:
            return checkInteger(request, v);
        case PromptKind::Real:
            return v.isNumber() ? checkNumber(request, Value::real(v.toDouble()))
                                : refuse("Requires numeric value.");
        case PromptKind::Point:
        case PromptKind::Corner: {
            const auto p = toPoint(v);
            return p ? PromptReading{Value::point(*p), {}} : refuse("Invalid point.");
        }
        case PromptKind::Distance:
        case PromptKind::Angle:
        case PromptKind::Orientation: {
            if (v.isNumber()) {
                return checkNumber(request, Value::real(v.toDouble()));
            }
            const auto p = toPoint(v);
            if (!p || !request.base) {
                return p ? PromptReading{v, {}} : refuse("Requires numeric distance or two points.");
            }
            return {request.kind == PromptKind::Distance
                        ? Value::real(between(*request.base, *p, (request.initgetBits & PlaneDistance) != 0))
                        : angleBetween(request, *p, rules),
                    {}};
        }
        case PromptKind::Entity:
        case PromptKind::NestedEntity:
            if (v.isEname()) {
                return {Value::list({v, Value::point({0, 0, 0})}), {}};
            }
            return v.isCons() && v.car().isEname() ? PromptReading{v, {}} : refuse("Invalid selection.");
        case PromptKind::Keyword:
            return refuse("Invalid option keyword.");
        default:
            return {v, {}};
    }
}

}  // namespace

PromptReading readAnswer(const PromptRequest& request, const PromptAnswer& answer,
                         const ReadingRules& rules) {
    if (answer.status == PromptAnswer::Status::Value) {
        if (answer.value.isString()) {
            return readAnswer(request, PromptAnswer::fromText(answer.value.toString()), rules);
        }
        return readValue(request, answer.value, rules);
    }
    const bool isString = request.kind == PromptKind::String;
    if (!isString && answer.text.find_first_not_of(" \t") == std::string::npos) {
        return (request.initgetBits & NoEnter) != 0 ? refuse("Requires an answer.")
                                                    : PromptReading{Value(), {}};
    }
    if (!isString) {
        const std::vector<std::string_view> keywords(request.keywords.begin(), request.keywords.end());
        if (auto keyword = matchKeyword(answer.text, keywords)) {
            return {Value::string(std::move(*keyword)), {}};
        }
    }
    PromptReading reading = readText(request, answer.text, rules);
    if (!reading.value && (request.initgetBits & Arbitrary) != 0 && request.kind != PromptKind::Keyword) {
        return {Value::string(answer.text), {}};
    }
    return reading;
}

}  // namespace drafthost::automation
