// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/AnswerReader.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "drafthost/automation/Lisp.h"
#include "drafthost/lisp/Reader.h"
#include "drafthost/lisp/Symbol.h"
#include "drafthost/lisp/Units.h"

namespace drafthost::automation {
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
    const std::string full = lisp::upperCase(keyword.substr(0, comma));
    if (comma != std::string_view::npos) {
        const std::string least = lisp::upperCase(keyword.substr(comma + 1));
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

std::vector<std::string_view> split(std::string_view text) {
    std::vector<std::string_view> words;
    for (std::size_t at = 0; (at = text.find_first_not_of(' ', at)) != std::string_view::npos;) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

}  // namespace

ReadingRules readingRules(LispHost& host) {
    ReadingRules rules;
    const auto number = [&host](std::string_view name, double otherwise) {
        const auto v = host.getVar(name);
        return v && v->isNumber() ? v->toDouble() : otherwise;
    };
    rules.lengthUnits = static_cast<int>(number("LUNITS", rules.lengthUnits));
    rules.angleUnits = static_cast<int>(number("AUNITS", rules.angleUnits));
    rules.angleBase = number("ANGBASE", rules.angleBase);
    rules.clockwise = number("ANGDIR", 0) != 0;
    if (const auto v = host.getVar("LASTPOINT")) {
        rules.lastPoint = toPoint(*v).value_or(Point{0, 0, 0});
    }
    return rules;
}

std::optional<std::int32_t> readInteger(std::string_view text) {
    const auto number = lisp::parseNumber(trimmed(text));
    return number && number->isInt() ? std::optional(number->toInt()) : std::nullopt;
}

std::optional<double> readNumber(std::string_view text, const ReadingRules& rules) {
    return lisp::parseDistance(trimmed(text), rules.lengthUnits);
}

std::optional<double> readAngle(std::string_view text, const ReadingRules& rules) {
    return lisp::parseAngle(trimmed(text), rules.angleUnits);
}

double angleOf(double number, const ReadingRules& rules) {
    constexpr int Grads = 2;
    constexpr int Radians = 3;
    return rules.angleUnits == Radians ? number
                                       : number * std::numbers::pi / (rules.angleUnits == Grads ? 200 : 180);
}

double directionOf(double typed, const ReadingRules& rules) {
    return rules.angleBase + (rules.clockwise ? -typed : typed);
}

double typedAngle(double direction, const ReadingRules& rules) {
    const double from = direction - rules.angleBase;
    const double turn = std::fmod(rules.clockwise ? -from : from, 2 * std::numbers::pi);
    return turn < 0 ? turn + 2 * std::numbers::pi : turn;
}

std::optional<Point> readPoint(std::string_view raw, const ReadingRules& rules) {
    std::string_view text = trimmed(raw);
    Point origin{0, 0, 0};
    if (text.starts_with('*') || text.starts_with('#')) {
        text.remove_prefix(1);
    }
    if (text.starts_with('@')) {
        origin = rules.lastPoint;
        text.remove_prefix(1);
        if (text.empty()) {
            return origin;
        }
    }
    Point p{0, 0, 0};
    const std::size_t polar = text.find('<');
    if (polar != std::string_view::npos) {
        const auto length = readNumber(text.substr(0, polar), rules);
        const auto typed = readAngle(text.substr(polar + 1), rules);
        if (!length || !typed) {
            return std::nullopt;
        }
        const double direction = directionOf(*typed, rules);
        p = {*length * std::cos(direction), *length * std::sin(direction), 0};
    } else {
        std::size_t count = 0;
        for (bool more = true; more; ++count) {
            const std::size_t comma = text.find(',');
            const auto number = readNumber(text.substr(0, comma), rules);
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
    return Point{p.x + origin.x, p.y + origin.y, p.z + origin.z};
}

bool isSnapWord(std::string_view text) {
    static constexpr std::string_view Words[] = {
        "apparent",  "center",   "endpoint",      "extension", "gcenter", "insert",
        "intersect", "m2p",      "midpoint",      "mtp",       "nearest", "node",
        "none",      "parallel", "perpendicular", "quadrant",  "quick",   "tangent"};
    constexpr std::size_t Least = 3;
    const std::string word = lisp::lowerCase(text.starts_with('_') ? text.substr(1) : text);
    return word.size() >= Least &&
           std::any_of(std::begin(Words), std::end(Words),
                       [&](std::string_view known) { return known.starts_with(word); });
}

std::optional<std::string> matchKeyword(std::string_view typed, std::span<const std::string_view> keywords) {
    std::vector<std::string_view> local;
    std::vector<std::string_view> global;
    for (const std::string_view word : keywords) {
        if (word.starts_with('_') || !global.empty()) {
            global.push_back(word.starts_with('_') ? word.substr(1) : word);
        } else {
            local.push_back(word);
        }
    }
    const std::string_view bare = trimmed(typed);
    const bool asGlobal = bare.starts_with('_');
    const std::string input = lisp::upperCase(asGlobal ? bare.substr(1) : bare);
    const auto& names = asGlobal && !global.empty() ? global : local;
    for (std::size_t i = 0; !input.empty() && i < names.size(); ++i) {
        if (fitsKeyword(names[i], input)) {
            const std::string_view answer = i < global.size() ? global[i] : local[i];
            return std::string(answer.substr(0, answer.find(',')));
        }
    }
    return std::nullopt;
}

std::optional<std::string> matchKeyword(std::string_view typed, std::string_view keywords) {
    return matchKeyword(typed, split(keywords));
}

}  // namespace drafthost::automation
