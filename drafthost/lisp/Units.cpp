// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Units.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

#include "drafthost/lisp/Symbol.h"

namespace drafthost::lisp {
namespace {

constexpr double Pi = std::numbers::pi;

std::string fixedText(double value, int precision) {
    const int decimals = std::clamp(precision, 0, 16);
    // What lies in the middle between two texts goes away from zero; printf would take the even one.
    const double scale = std::pow(10.0, decimals);
    const double scaled = value * scale;
    if (std::fma(value, scale, -scaled) == 0 && std::fabs(scaled - std::trunc(scaled)) == 0.5) {
        value = std::nextafter(value, std::copysign(HUGE_VAL, value));
    }
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    // A value that rounds to nothing has no sign.
    const std::string_view text = buffer;
    return std::string(text.starts_with('-') && text.find_first_of("123456789") == std::string_view::npos
                           ? text.substr(1)
                           : text);
}

std::string dropZeros(std::string text, int zeros) {
    if ((zeros & 8) != 0 && text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.')) {
            text.pop_back();
        }
    }
    if ((zeros & 4) != 0) {
        const std::size_t start = text.starts_with('-') ? 1 : 0;
        if (text.compare(start, 2, "0.") == 0) {
            text.erase(start, 1);
        }
    }
    return text;
}

/// Whole part and reduced fraction of a value that is not negative.
struct Fraction {
    double whole = 0;
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;
};

Fraction toFraction(double value, int precision) {
    Fraction f;
    f.denominator = std::int64_t{1} << std::clamp(precision, 0, 8);
    f.whole = std::floor(value);
    f.numerator = std::llround((value - f.whole) * static_cast<double>(f.denominator));
    if (f.numerator == f.denominator) {
        f.whole += 1;
        f.numerator = 0;
    }
    while (f.numerator != 0 && f.numerator % 2 == 0) {
        f.numerator /= 2;
        f.denominator /= 2;
    }
    return f;
}

std::string fractionText(const Fraction& f, bool wholeZero) {
    std::string text;
    if (f.whole != 0 || f.numerator == 0 || wholeZero) {
        text = fixedText(f.whole, 0);
    }
    if (f.numerator != 0) {
        text += (text.empty() ? "" : " ") + std::to_string(f.numerator) + "/" + std::to_string(f.denominator);
    }
    return text;
}

std::string joinFeet(double feet, const std::string& inches, bool inchesAreZero, int zeros) {
    const bool showZeroFeet = (zeros & 3) == 1 || (zeros & 3) == 2;
    const bool showZeroInches = (zeros & 3) == 1 || (zeros & 3) == 3;
    const std::string foot = fixedText(feet, 0) + "'";
    if (feet == 0 && !showZeroFeet) {
        return inches + "\"";
    }
    if (inchesAreZero && !showZeroInches && (feet != 0 || showZeroFeet)) {
        return feet == 0 ? foot + "-" + inches + "\"" : foot;
    }
    return foot + "-" + inches + "\"";
}

std::string feetAndInches(double value, const DistanceFormat& format, bool fractions) {
    if (fractions) {
        const Fraction total = toFraction(value, format.precision);
        const double feet = std::floor(total.whole / 12);
        Fraction inches = total;
        inches.whole = total.whole - feet * 12;
        return joinFeet(feet, fractionText(inches, feet != 0), inches.whole == 0 && inches.numerator == 0,
                        format.zeros);
    }
    const double scale = std::pow(10.0, std::clamp(format.precision, 0, 16));
    double feet = std::floor(value / 12);
    double inches = value - feet * 12;
    if (std::round(inches * scale) / scale >= 12) {
        feet += 1;
        inches = 0;
    }
    const std::string text = dropZeros(fixedText(inches, format.precision), format.zeros & ~4);
    return joinFeet(feet, text, std::round(inches * scale) == 0, format.zeros);
}

std::string degreesText(double degrees, int precision) {
    if (precision <= 0) {
        return fixedText(degrees, 0) + "d";
    }
    const int decimals = std::max(0, precision - 4);
    const double perDegree = precision <= 2 ? 60 : 3600 * std::pow(10.0, decimals);
    double units = std::round(degrees * perDegree);
    const double whole = std::floor(units / perDegree);
    units -= whole * perDegree;
    if (precision <= 2) {
        return fixedText(whole, 0) + "d" + fixedText(units, 0) + "'";
    }
    const double perMinute = perDegree / 60;
    const double minutes = std::floor(units / perMinute);
    const double seconds = (units - minutes * perMinute) / std::pow(10.0, decimals);
    return fixedText(whole, 0) + "d" + fixedText(minutes, 0) + "'" + fixedText(seconds, decimals) + "\"";
}

std::string bearing(double degrees, int precision) {
    const auto near = [&](double to) { return std::fabs(degrees - to) < 1e-9; };
    if (near(0) || near(360)) {
        return "E";
    }
    if (near(90)) {
        return "N";
    }
    if (near(180)) {
        return "W";
    }
    if (near(270)) {
        return "S";
    }
    const bool north = degrees < 180;
    const bool east = degrees < 90 || degrees > 270;
    const double off = std::fabs((north ? 90 : 270) - degrees);
    return std::string(north ? "N " : "S ") + degreesText(off, precision) + (east ? " E" : " W");
}

/// Takes pieces off the front of a text.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}
    void skipBlanks() {
        while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t')) {
            ++pos_;
        }
    }
    bool take(char c) {
        if (pos_ < text_.size() && (text_[pos_] | 0x20) == (c | 0x20) && (c != '\'' || text_[pos_] == '\'')) {
            ++pos_;
            return true;
        }
        return false;
    }
    bool done() const { return pos_ >= text_.size(); }
    std::size_t position() const { return pos_; }
    void back(std::size_t to) { pos_ = to; }
    /// A number without sign.
    std::optional<double> number() {
        const char* begin = text_.data() + pos_;
        const char* end = text_.data() + text_.size();
        if (begin == end || !((*begin >= '0' && *begin <= '9') || *begin == '.')) {
            return std::nullopt;
        }
        double value = 0;
        const auto [stop, error] = std::from_chars(begin, end, value);
        if (error != std::errc()) {
            return std::nullopt;
        }
        pos_ += stop - begin;
        return value;
    }

  private:
    std::string_view text_;
    std::size_t pos_ = 0;
};

/// "5", "5.5", "1/2", "5 1/2" or "5-1/2".
std::optional<double> mixedNumber(Scanner& in) {
    const auto first = in.number();
    if (!first) {
        return std::nullopt;
    }
    if (in.take('/')) {
        const auto under = in.number();
        return under && *under != 0 ? std::optional(*first / *under) : std::nullopt;
    }
    const std::size_t mark = in.position();
    if (in.take('-') || in.take(' ')) {
        in.skipBlanks();
        if (const auto over = in.number()) {
            if (in.take('/')) {
                const auto under = in.number();
                return under && *under != 0 ? std::optional(*first + *over / *under) : std::nullopt;
            }
        }
    }
    in.back(mark);
    return first;
}

/// "45", "45d", "45d30'", "45d30'15.5\"" in degrees.
std::optional<double> degreesIn(Scanner& in) {
    auto degrees = in.number();
    if (!degrees) {
        return std::nullopt;
    }
    if (in.take('d')) {
        if (const auto minutes = in.number()) {
            if (!in.take('\'')) {
                return std::nullopt;
            }
            *degrees += *minutes / 60;
            if (const auto seconds = in.number()) {
                if (!in.take('"')) {
                    return std::nullopt;
                }
                *degrees += *seconds / 3600;
            }
        }
    }
    return degrees;
}

std::optional<double> bearingIn(std::string_view text) {
    Scanner in(text);
    in.skipBlanks();
    const bool north = in.take('n');
    const bool south = !north && in.take('s');
    if (!north && !south) {
        const bool east = in.take('e');
        if (!east && !in.take('w')) {
            return std::nullopt;
        }
        in.skipBlanks();
        return in.done() ? std::optional(east ? 0.0 : Pi) : std::nullopt;
    }
    in.skipBlanks();
    if (in.done()) {
        return north ? Pi / 2 : 3 * Pi / 2;
    }
    const auto off = degreesIn(in);
    in.skipBlanks();
    const bool east = in.take('e');
    if (!off || (!east && !in.take('w'))) {
        return std::nullopt;
    }
    in.skipBlanks();
    if (!in.done()) {
        return std::nullopt;
    }
    const double degrees = north ? (east ? 90 - *off : 90 + *off) : (east ? 270 + *off : 270 - *off);
    return degrees * Pi / 180;
}

}  // namespace

std::string formatDistance(double value, const DistanceFormat& format) {
    if (format.mode == 1) {
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%.*E", std::clamp(format.precision, 0, 16), value);
        return buffer;
    }
    if (format.mode < 3 || format.mode > 5 || std::fabs(value) > 1e15) {
        return dropZeros(fixedText(value, format.precision), format.zeros);
    }
    const double size = std::fabs(value);
    std::string text = format.mode == 5 ? fractionText(toFraction(size, format.precision), false)
                                        : feetAndInches(size, format, format.mode == 4);
    const bool zero = text.find_first_of("123456789") == std::string::npos;
    return value < 0 && !zero ? "-" + text : text;
}

std::string formatAngle(double radians, int mode, int precision) {
    double turn = std::fmod(radians, 2 * Pi);
    turn += turn < 0 ? 2 * Pi : 0;
    switch (mode) {
        case 1:
            return degreesText(turn * 180 / Pi, precision);
        case 2:
            return fixedText(turn * 200 / Pi, precision) + "g";
        case 3:
            return fixedText(turn, precision) + "r";
        case 4:
            return bearing(turn * 180 / Pi, precision);
        default:
            return fixedText(turn * 180 / Pi, precision);
    }
}

std::optional<double> parseDistance(std::string_view text, int mode) {
    Scanner in(text);
    in.skipBlanks();
    const bool negative = in.take('-');
    if (!negative) {
        in.take('+');
    }
    auto value = mixedNumber(in);
    if (!value) {
        return std::nullopt;
    }
    if (mode == 3 || mode == 4) {
        if (in.take('\'')) {
            *value *= 12;
            in.take('-');
            in.skipBlanks();
            if (const auto inches = mixedNumber(in)) {
                *value += *inches;
                in.take('"');
            }
        } else {
            in.take('"');
        }
    }
    in.skipBlanks();
    if (!in.done()) {
        return std::nullopt;
    }
    return negative ? -*value : *value;
}

std::optional<double> parseAngle(std::string_view text, int mode) {
    if (auto bearing = bearingIn(text)) {
        return bearing;
    }
    Scanner in(text);
    in.skipBlanks();
    const bool negative = in.take('-');
    if (!negative) {
        in.take('+');
    }
    const std::size_t start = in.position();
    auto value = degreesIn(in);
    if (!value) {
        return std::nullopt;
    }
    double radians = *value * Pi / 180;
    if (text.find_first_of("dD'\"") == std::string_view::npos) {
        in.back(start);
        value = in.number();
        const bool grads = in.take('g');
        const bool asRadians = !grads && in.take('r');
        if (grads || (mode == 2 && !asRadians)) {
            radians = *value * Pi / 200;
        } else if (asRadians || mode == 3) {
            radians = *value;
        }
    }
    in.skipBlanks();
    if (!in.done()) {
        return std::nullopt;
    }
    return negative ? -radians : radians;
}

}  // namespace drafthost::lisp
