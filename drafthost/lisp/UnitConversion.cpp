// SPDX-License-Identifier: GPL-3.0-or-later
// Units by dimension: a unit is a factor to the SI unit and the exponents of length, mass, time,
// temperature and angle. Expressions multiply and divide units, so areas and speeds need no entries.

#include <array>
#include <cmath>
#include <numbers>
#include <unordered_map>

#include "drafthost/lisp/Symbol.h"
#include "drafthost/lisp/Units.h"

namespace drafthost::lisp {
namespace {

struct Unit {
    double factor = 1;
    std::array<int, 5> dimension{};
    double offset = 0;  ///< of temperature scales, in kelvin
};

constexpr std::array<int, 5> None{};
constexpr std::array<int, 5> Length{1, 0, 0, 0, 0};
constexpr std::array<int, 5> Area{2, 0, 0, 0, 0};
constexpr std::array<int, 5> Volume{3, 0, 0, 0, 0};
constexpr std::array<int, 5> Mass{0, 1, 0, 0, 0};
constexpr std::array<int, 5> Time{0, 0, 1, 0, 0};
constexpr std::array<int, 5> Temperature{0, 0, 0, 1, 0};
constexpr std::array<int, 5> Angle{0, 0, 0, 0, 1};
constexpr std::array<int, 5> Force{1, 1, -2, 0, 0};
constexpr std::array<int, 5> Pressure{-1, 1, -2, 0, 0};
constexpr std::array<int, 5> Energy{2, 1, -2, 0, 0};
constexpr std::array<int, 5> Power{2, 1, -3, 0, 0};

const std::unordered_map<std::string_view, Unit>& units() {
    static const std::unordered_map<std::string_view, Unit> table = [] {
        std::unordered_map<std::string_view, Unit> t;
        const auto add = [&](std::initializer_list<std::string_view> names, double factor,
                             const std::array<int, 5>& dimension, double offset = 0) {
            for (const std::string_view name : names) {
                t.emplace(name, Unit{factor, dimension, offset});
            }
        };
        add({"m", "meter", "meters", "metre", "metres"}, 1, Length);
        add({"km", "kilometer", "kilometers", "kilometre", "kilometres"}, 1000, Length);
        add({"dm", "decimeter", "decimeters", "decimetre", "decimetres"}, 0.1, Length);
        add({"cm", "centimeter", "centimeters", "centimetre", "centimetres"}, 0.01, Length);
        add({"mm", "millimeter", "millimeters", "millimetre", "millimetres"}, 0.001, Length);
        add({"micron", "microns", "micrometer", "micrometers"}, 1e-6, Length);
        add({"nm", "nanometer", "nanometers"}, 1e-9, Length);
        add({"inch", "inches", "in", "\""}, 0.0254, Length);
        add({"foot", "feet", "ft", "'"}, 0.3048, Length);
        add({"yard", "yards", "yd"}, 0.9144, Length);
        add({"mile", "miles", "mi"}, 1609.344, Length);
        add({"mil", "mils"}, 2.54e-5, Length);
        add({"survey_foot", "survey_feet"}, 1200.0 / 3937.0, Length);
        add({"fathom", "fathoms"}, 1.8288, Length);
        add({"rod", "rods"}, 5.0292, Length);
        add({"furlong", "furlongs"}, 201.168, Length);
        add({"inm", "nautical_mile", "nautical_miles"}, 1852, Length);
        add({"point", "points"}, 0.0254 / 72, Length);
        add({"au", "astronomical_unit"}, 149597870700.0, Length);
        add({"ly", "light_year", "light_years"}, 9460730472580800.0, Length);
        add({"acre", "acres"}, 4046.8564224, Area);
        add({"hectare", "hectares", "ha"}, 10000, Area);
        add({"are", "ares"}, 100, Area);
        add({"liter", "liters", "litre", "litres", "l"}, 0.001, Volume);
        add({"ml", "milliliter", "milliliters"}, 1e-6, Volume);
        add({"gallon", "gallons", "gal"}, 0.003785411784, Volume);
        add({"quart", "quarts", "qt"}, 0.000946352946, Volume);
        add({"pint", "pints", "pt"}, 0.000473176473, Volume);
        add({"kg", "kilogram", "kilograms"}, 1, Mass);
        add({"g", "gram", "grams", "gm"}, 0.001, Mass);
        add({"mg", "milligram", "milligrams"}, 1e-6, Mass);
        add({"tonne", "tonnes", "metric_ton", "metric_tons"}, 1000, Mass);
        add({"pound", "pounds", "lb"}, 0.45359237, Mass);
        add({"ounce", "ounces", "oz"}, 0.028349523125, Mass);
        add({"ton", "tons"}, 907.18474, Mass);
        add({"second", "seconds", "sec", "s"}, 1, Time);
        add({"minute", "minutes", "min"}, 60, Time);
        add({"hour", "hours", "hr", "h"}, 3600, Time);
        add({"day", "days"}, 86400, Time);
        add({"week", "weeks"}, 604800, Time);
        add({"year", "years", "yr"}, 31556925.97474, Time);
        add({"kelvin", "degkelvin", "k"}, 1, Temperature);
        add({"celsius", "centigrade", "degc"}, 1, Temperature, 273.15);
        add({"fahrenheit", "degf"}, 5.0 / 9.0, Temperature, 459.67 * 5.0 / 9.0);
        add({"rankine"}, 5.0 / 9.0, Temperature);
        add({"radian", "radians", "rad"}, 1, Angle);
        add({"degree", "degrees", "deg"}, std::numbers::pi / 180, Angle);
        add({"grad", "grads", "grade", "grades"}, std::numbers::pi / 200, Angle);
        add({"circle", "circles", "revolution", "revolutions"}, 2 * std::numbers::pi, Angle);
        add({"quadrant", "quadrants"}, std::numbers::pi / 2, Angle);
        add({"newton", "newtons", "n"}, 1, Force);
        add({"pascal", "pascals", "pa"}, 1, Pressure);
        add({"bar", "bars"}, 1e5, Pressure);
        add({"psi"}, 6894.757293168, Pressure);
        add({"atm", "atmosphere", "atmospheres"}, 101325, Pressure);
        add({"joule", "joules", "j"}, 1, Energy);
        add({"calorie", "calories", "cal"}, 4.1868, Energy);
        add({"btu"}, 1055.05585262, Energy);
        add({"watt", "watts", "w"}, 1, Power);
        add({"kw", "kilowatt", "kilowatts"}, 1000, Power);
        add({"hp", "horsepower"}, 745.69987158227022, Power);
        add({"dozen"}, 12, None);
        return t;
    }();
    return table;
}

/// Units joined by "*" and "/", each with an exponent "^2" or the words "sq" and "cu" before it.
std::optional<Unit> parseUnit(std::string_view text) {
    const std::string expression = lowerCase(text);
    Unit total;
    int sign = 1;
    int count = 0;
    int power = 1;
    for (std::size_t pos = 0; pos < expression.size();) {
        const char c = expression[pos];
        if (c == ' ' || c == '*') {
            ++pos;
            continue;
        }
        if (c == '/') {
            sign = -1;
            ++pos;
            continue;
        }
        std::size_t end = expression.find_first_of(" */^", pos);
        end = end == std::string::npos ? expression.size() : end;
        const std::string_view name(expression.data() + pos, end - pos);
        pos = end;
        if (name == "sq" || name == "square" || name == "cu" || name == "cubic") {
            power = name[0] == 's' ? 2 : 3;
            continue;
        }
        const auto found = units().find(name);
        if (found == units().end()) {
            return std::nullopt;
        }
        if (pos + 1 < expression.size() && expression[pos] == '^' && expression[pos + 1] >= '1' &&
            expression[pos + 1] <= '9') {
            power *= expression[pos + 1] - '0';
            pos += 2;
        } else if (pos < expression.size() && expression[pos] == '^') {
            return std::nullopt;
        }
        power *= sign;
        total.factor *= std::pow(found->second.factor, power);
        for (std::size_t i = 0; i < total.dimension.size(); ++i) {
            total.dimension[i] += power * found->second.dimension[i];
        }
        total.offset = found->second.offset;
        ++count;
        sign = 1;
        power = 1;
    }
    if (count == 0) {
        return std::nullopt;
    }
    total.offset = count == 1 ? total.offset : 0;
    return total;
}

}  // namespace

std::optional<double> convertUnit(double value, std::string_view from, std::string_view to) {
    const auto source = parseUnit(from);
    const auto target = parseUnit(to);
    if (!source || !target || source->dimension != target->dimension) {
        return std::nullopt;
    }
    return (value * source->factor + source->offset - target->offset) / target->factor;
}

}  // namespace drafthost::lisp
