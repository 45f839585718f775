#include "drafthost/editor/AnswerReader.h"

#include <charconv>
#include <cmath>
#include <numbers>
#include <vector>

namespace drafthost {
namespace {

constexpr double Degree = std::numbers::pi / 180;

/// Reads a number at the start of the text and takes it off.
std::optional<double> takeReal(std::string_view& text) {
    if (!text.empty() && text[0] == '+') {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    double value = 0;
    auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (code != std::errc() || !std::isfinite(value)) {
        return std::nullopt;
    }
    text.remove_prefix(std::size_t(end - text.data()));
    return value;
}

/// "3/4", "1-3/4" or a plain number, without a sign.
std::optional<double> readInches(std::string_view text) {
    auto whole = takeReal(text);
    if (!whole || *whole < 0 || std::signbit(*whole)) {
        return std::nullopt;
    }
    if (text.empty()) {
        return whole;
    }
    double value = 0;
    double numerator = *whole;
    if (text[0] == '-') {
        text.remove_prefix(1);
        value = *whole;
        auto part = takeReal(text);
        if (!part || *part < 0) {
            return std::nullopt;
        }
        numerator = *part;
    }
    if (!text.starts_with('/')) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    auto denominator = takeReal(text);
    if (!denominator || *denominator <= 0 || !text.empty()) {
        return std::nullopt;
    }
    return value + numerator / *denominator;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t at = 0;
    for (;;) {
        std::size_t end = text.find(separator, at);
        parts.push_back(text.substr(at, end == std::string_view::npos ? end : end - at));
        if (end == std::string_view::npos) {
            return parts;
        }
        at = end + 1;
    }
}

bool isSmall(char c) {
    return c >= 'a' && c <= 'z';
}
char capital(char c) {
    return isSmall(c) ? char(c - 'a' + 'A') : c;
}

bool keywordFits(std::string_view typed, std::string_view keyword) {
    std::string capitals;
    std::size_t lastCapital = 0;
    for (std::size_t i = 0; i < keyword.size(); ++i) {
        if (!isSmall(keyword[i])) {
            capitals += keyword[i];
            lastCapital = i;
        }
    }
    auto same = [](std::string_view a, std::string_view b) {
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (capital(a[i]) != capital(b[i])) {
                return false;
            }
        }
        return true;
    };
    if (typed.size() == capitals.size() && same(typed, capitals)) {
        return true;
    }
    return typed.size() > lastCapital && typed.size() <= keyword.size() &&
           same(typed, keyword.substr(0, typed.size()));
}

}  // namespace

std::optional<int> readInteger(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    int value = 0;
    auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (code != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<double> readReal(std::string_view text) {
    auto value = takeReal(text);
    return text.empty() ? value : std::nullopt;
}

std::optional<double> readDistance(std::string_view text) {
    if (auto value = readReal(text)) {
        return value;
    }
    double sign = 1;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        sign = text[0] == '-' ? -1 : 1;
        text.remove_prefix(1);
    }
    if (text.ends_with('"')) {
        text.remove_suffix(1);
    }
    double feet = 0;
    if (std::size_t mark = text.find('\''); mark != std::string_view::npos) {
        auto value = readInches(text.substr(0, mark));
        if (!value) {
            return std::nullopt;
        }
        feet = *value;
        text.remove_prefix(mark + 1);
        if (text.starts_with('-')) {
            text.remove_prefix(1);
        }
        if (text.empty()) {
            return sign * feet * 12;
        }
    }
    auto inches = readInches(text);
    if (!inches) {
        return std::nullopt;
    }
    return sign * (feet * 12 + *inches);
}

std::optional<double> readAngle(std::string_view text) {
    double sign = 1;
    if (text.starts_with('-')) {
        sign = -1;
        text.remove_prefix(1);
    }
    auto value = takeReal(text);
    if (!value) {
        return std::nullopt;
    }
    if (text.empty()) {
        return sign * *value * Degree;
    }
    if (text.size() == 1 && capital(text[0]) == 'R') {
        return sign * *value;
    }
    if (text.size() == 1 && capital(text[0]) == 'G') {
        return sign * *value * std::numbers::pi / 200;
    }
    if (capital(text[0]) != 'D') {
        return std::nullopt;
    }
    text.remove_prefix(1);
    double degrees = *value;
    const std::pair<char, double> parts[] = {{'\'', 60.0}, {'"', 3600.0}};
    for (auto [mark, share] : parts) {
        std::size_t at = text.find(mark);
        if (at == std::string_view::npos) {
            continue;
        }
        auto part = readReal(text.substr(0, at));
        if (!part) {
            return std::nullopt;
        }
        degrees += *part / share;
        text.remove_prefix(at + 1);
    }
    if (!text.empty()) {
        return std::nullopt;
    }
    return sign * degrees * Degree;
}

std::optional<lisp::Point> readPoint(std::string_view text, const std::optional<lisp::Point>& base) {
    lisp::Point origin{};
    if (text.starts_with('*')) {
        text.remove_prefix(1);
    }
    if (text.starts_with('@')) {
        text.remove_prefix(1);
        origin = base.value_or(lisp::Point{});
        if (text.empty()) {
            return origin;
        }
    }
    if (std::size_t mark = text.find('<'); mark != std::string_view::npos) {
        auto distance = readDistance(text.substr(0, mark));
        auto angle = readAngle(text.substr(mark + 1));
        if (!distance || !angle) {
            return std::nullopt;
        }
        return lisp::Point{origin[0] + *distance * std::cos(*angle), origin[1] + *distance * std::sin(*angle),
                           origin[2]};
    }
    auto parts = split(text, ',');
    if (parts.size() != 2 && parts.size() != 3) {
        return std::nullopt;
    }
    lisp::Point point = origin;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        auto part = readDistance(parts[i]);
        if (!part) {
            return std::nullopt;
        }
        point[i] += *part;
    }
    return point;
}

std::optional<lisp::Point> pointOf(const lisp::Value& value) {
    if (!value.isCons()) {
        return std::nullopt;
    }
    std::vector<lisp::Value> items = value.items();
    if (items.size() != 2 && items.size() != 3) {
        return std::nullopt;
    }
    lisp::Point point{};
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!items[i].isNumber()) {
            return std::nullopt;
        }
        point[i] = items[i].toDouble();
    }
    return point;
}

std::optional<std::string> matchKeyword(std::string_view typed, std::string_view keywords) {
    if (typed.starts_with('_')) {
        typed.remove_prefix(1);
    }
    if (typed.empty()) {
        return std::nullopt;
    }
    for (std::string_view keyword : split(keywords, ' ')) {
        if (!keyword.empty() && keywordFits(typed, keyword)) {
            return std::string(keyword);
        }
    }
    return std::nullopt;
}

}  // namespace drafthost
