#include "drafthost/lisp/PromptReader.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Reader.h"
#include "drafthost/lisp/Units.h"

namespace drafthost::lisp {
namespace {

std::string_view trimmed(std::string_view s) {
    const std::size_t begin = s.find_first_not_of(" \t");
    if (begin == std::string_view::npos) {
        return {};
    }
    return s.substr(begin, s.find_last_not_of(" \t") - begin + 1);
}

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

bool fitsKeyword(std::string_view keyword, const std::string& input) {
    const std::size_t comma = keyword.find(',');
    const std::string full = upperCase(keyword.substr(0, comma));
    if (comma != std::string_view::npos) {
        const std::string least = upperCase(keyword.substr(comma + 1));
        return input == least || (full.starts_with(input) && input.size() >= least.size());
    }
    std::size_t start = 0;
    while (start < keyword.size() && !isUpper(keyword[start]) &&
           !(keyword[start] >= '0' && keyword[start] <= '9')) {
        ++start;
    }
    std::size_t end = start;
    while (end < keyword.size() && (isUpper(keyword[end]) || (keyword[end] >= '0' && keyword[end] <= '9'))) {
        ++end;
    }
    if (start == end) {
        return full == input;
    }
    if (full.starts_with(input) && input.size() >= end) {
        return true;
    }
    return full.substr(start).starts_with(input) && input.size() >= end - start;
}

std::optional<double> numberIn(std::string_view text, int units) {
    return parseDistance(trimmed(text), units);
}

PromptReading refuse(std::string reason) {
    return {std::nullopt, std::move(reason)};
}

PromptReading checkNumber(const PromptRequest& request, Value v) {
    if ((request.initgetBits & kNoZero) != 0 && v.toDouble() == 0) {
        return refuse((request.initgetBits & kNoNegative) != 0 ? "Value must be positive and nonzero."
                                                               : "Value must be nonzero.");
    }
    if ((request.initgetBits & kNoNegative) != 0 && v.toDouble() < 0) {
        return refuse("Value must be positive.");
    }
    return {std::move(v), {}};
}

PromptReading readInteger(const PromptRequest& request, const Value& v) {
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

PromptReading readText(const PromptRequest& request, const std::string& raw, const PromptContext& context) {
    const std::string_view text = trimmed(raw);
    switch (request.kind) {
        case PromptKind::Int: {
            const auto number = parseNumber(text);
            return readInteger(request, number ? *number : Value());
        }
        case PromptKind::Real: {
            const auto number = numberIn(text, context.lengthUnits);
            return number ? checkNumber(request, Value::real(*number)) : refuse("Requires numeric value.");
        }
        case PromptKind::Point:
        case PromptKind::Corner: {
            const auto p = parsePoint(text, context);
            return p ? PromptReading{Value::point(*p), {}} : refuse("Invalid point.");
        }
        case PromptKind::Distance: {
            if (const auto number = numberIn(text, context.lengthUnits)) {
                return checkNumber(request, Value::real(*number));
            }
            const auto p = parsePoint(text, context);
            if (p && request.base) {
                return checkNumber(
                    request,
                    Value::real(between(*request.base, *p, (request.initgetBits & kPlaneDistance) != 0)));
            }
            return p ? PromptReading{Value::point(*p), {}}
                     : refuse("Requires numeric distance or two points.");
        }
        case PromptKind::Angle:
        case PromptKind::Orientation: {
            if (const auto p = parsePoint(text, context)) {
                return {request.base ? Value::real(direction(*request.base, *p)) : Value::point(*p), {}};
            }
            const auto radians = parseAngle(text, context.angleUnits);
            if (!radians) {
                return refuse("Requires valid numeric angle or second point.");
            }
            const double base = request.kind == PromptKind::Orientation ? context.angleBase : 0;
            const double turn = std::fmod(*radians + base, 2 * std::numbers::pi);
            return checkNumber(request, Value::real(turn < 0 ? turn + 2 * std::numbers::pi : turn));
        }
        case PromptKind::Keyword:
            return refuse("Invalid option keyword.");
        case PromptKind::Entity:
        case PromptKind::NestedEntity:
            return {Value(), {}};
        default:
            return {Value::string(raw), {}};
    }
}

PromptReading readValue(const PromptRequest& request, const Value& v) {
    switch (request.kind) {
        case PromptKind::Int:
            return readInteger(request, v);
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
            return {Value::real(request.kind == PromptKind::Distance
                                    ? between(*request.base, *p, (request.initgetBits & kPlaneDistance) != 0)
                                    : direction(*request.base, *p)),
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

std::optional<std::string> matchKeyword(const std::vector<std::string>& keywords, std::string_view text) {
    std::vector<std::string_view> local;
    std::vector<std::string_view> global;
    for (const std::string_view word : keywords) {
        if (word.starts_with('_') || !global.empty()) {
            global.push_back(word.starts_with('_') ? word.substr(1) : word);
        } else {
            local.push_back(word);
        }
    }
    const std::string_view bare = trimmed(text);
    const bool asGlobal = bare.starts_with('_');
    const std::string input = upperCase(asGlobal ? bare.substr(1) : bare);
    const auto& names = asGlobal && !global.empty() ? global : local;
    for (std::size_t i = 0; !input.empty() && i < names.size(); ++i) {
        if (fitsKeyword(names[i], input)) {
            const std::string_view answer = i < global.size() ? global[i] : local[i];
            return std::string(answer.substr(0, answer.find(',')));
        }
    }
    return std::nullopt;
}

std::optional<Point> parsePoint(std::string_view raw, const PromptContext& context) {
    std::string_view text = trimmed(raw);
    Point origin{0, 0, 0};
    const bool relative = text.starts_with('@');
    if (relative) {
        origin = context.lastPoint;
        text.remove_prefix(1);
        if (text.empty()) {
            return origin;
        }
    }
    if (text.starts_with('*')) {
        text.remove_prefix(1);
    }
    Point p{0, 0, 0};
    const std::size_t polar = text.find('<');
    if (polar != std::string_view::npos) {
        const auto length = numberIn(text.substr(0, polar), context.lengthUnits);
        const auto radians = parseAngle(trimmed(text.substr(polar + 1)), context.angleUnits);
        if (!length || !radians) {
            return std::nullopt;
        }
        p = {*length * std::cos(*radians + context.angleBase),
             *length * std::sin(*radians + context.angleBase), 0};
    } else {
        std::size_t count = 0;
        for (bool more = true; more; ++count) {
            const std::size_t comma = text.find(',');
            const auto number = numberIn(text.substr(0, comma), context.lengthUnits);
            if (!number || count == 3) {
                return std::nullopt;
            }
            p[count] = *number;
            more = comma != std::string_view::npos;
            text.remove_prefix(more ? comma + 1 : text.size());
        }
        if (count < 2) {
            return std::nullopt;
        }
    }
    for (int i = 0; i < 3; ++i) {
        p[i] += origin[i];
    }
    return p;
}

PromptReading readAnswer(const PromptRequest& request, const PromptAnswer& answer,
                         const PromptContext& context) {
    if (answer.status == PromptAnswer::Status::Value) {
        if (answer.value.isString()) {
            return readAnswer(request, PromptAnswer::fromText(answer.value.toString()), context);
        }
        return readValue(request, answer.value);
    }
    const bool isString = request.kind == PromptKind::String;
    if (!isString && trimmed(answer.text).empty()) {
        return (request.initgetBits & kNoEnter) != 0 ? refuse("Requires an answer.")
                                                     : PromptReading{Value(), {}};
    }
    if (!isString) {
        if (auto keyword = matchKeyword(request.keywords, answer.text)) {
            return {Value::string(std::move(*keyword)), {}};
        }
    }
    PromptReading reading = readText(request, answer.text, context);
    if (!reading.value && (request.initgetBits & kArbitrary) != 0 && request.kind != PromptKind::Keyword) {
        return {Value::string(answer.text), {}};
    }
    return reading;
}

}  // namespace drafthost::lisp
