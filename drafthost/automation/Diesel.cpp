// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/Diesel.h"

#include <chrono>
#include <cmath>
#include <functional>
#include <map>
#include <vector>

#include "drafthost/drawing/Value.h"
#include "drafthost/lisp/Units.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::automation {
namespace {

using Strings = std::vector<std::string>;

/// Numbers as they stand in strings of this language: no digits that say nothing.
std::string shown(double number) {
    if (number == std::floor(number) && std::fabs(number) < 1e15) {
        return std::to_string(static_cast<long long>(number));
    }
    std::string text = formatReal(number, 8);
    return text;
}

std::string shown(const Value& value) {
    if (value.isString()) {
        return value.toString();
    }
    if (value.isInt()) {
        return std::to_string(value.toInt());
    }
    if (value.isReal()) {
        return shown(value.toReal());
    }
    if (const auto p = toPoint(value)) {
        const bool flat = value.items().size() == 2;
        return shown(p->x) + "," + shown(p->y) + (flat ? "" : "," + shown(p->z));
    }
    return "";
}

struct Moment {
    int year, month, day, hour, minute, second, millisecond, weekday;
};

/// Of a date as the host's variables hold it: days, the whole part of which changes at midnight.
Moment momentOf(double date) {
    constexpr double FirstOf1970 = 2440588;  // 1 January 1970 by this count
    const double whole = std::floor(date);
    const auto civil = std::chrono::year_month_day(
        std::chrono::sys_days(std::chrono::days(static_cast<int>(whole - FirstOf1970))));
    const auto milliseconds = static_cast<long long>(std::llround((date - whole) * 86'400'000.0));
    Moment m{};
    m.year = static_cast<int>(civil.year());
    m.month = static_cast<int>(static_cast<unsigned>(civil.month()));
    m.day = static_cast<int>(static_cast<unsigned>(civil.day()));
    m.hour = static_cast<int>(milliseconds / 3'600'000 % 24);
    m.minute = static_cast<int>(milliseconds / 60'000 % 60);
    m.second = static_cast<int>(milliseconds / 1000 % 60);
    m.millisecond = static_cast<int>(milliseconds % 1000);
    m.weekday = static_cast<int>(std::chrono::weekday(std::chrono::sys_days(civil)).c_encoding());
    return m;
}

std::string padded(int number, int width = 2) {
    std::string text = std::to_string(number);
    return std::string(text.size() < static_cast<std::size_t>(width)
                           ? static_cast<std::size_t>(width) - text.size()
                           : 0,
                       '0') +
           text;
}

/// The pictures of (edtime), longest first where one begins another.
std::string formattedTime(double date, std::string_view picture) {
    static const char* const days[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                       "Thursday", "Friday", "Saturday"};
    static const char* const months[] = {"January",   "February", "March",    "April",
                                         "May",       "June",     "July",     "August",
                                         "September", "October",  "November", "December"};
    const Moment m = momentOf(date);
    const bool half =
        picture.find("AM/PM") != std::string_view::npos || picture.find("am/pm") != std::string_view::npos ||
        picture.find("A/P") != std::string_view::npos || picture.find("a/p") != std::string_view::npos;
    const int hour = half ? (m.hour % 12 == 0 ? 12 : m.hour % 12) : m.hour;
    const std::string day = days[m.weekday];
    const std::string month = months[m.month - 1];
    const std::pair<std::string_view, std::string> pictures[] = {{"MONTH", month},
                                                                 {"MSEC", padded(m.millisecond, 3)},
                                                                 {"AM/PM", m.hour < 12 ? "AM" : "PM"},
                                                                 {"am/pm", m.hour < 12 ? "am" : "pm"},
                                                                 {"YYYY", std::to_string(m.year)},
                                                                 {"DDDD", day},
                                                                 {"DDD", day.substr(0, 3)},
                                                                 {"MON", month.substr(0, 3)},
                                                                 {"A/P", m.hour < 12 ? "A" : "P"},
                                                                 {"a/p", m.hour < 12 ? "a" : "p"},
                                                                 {"YY", padded(m.year % 100)},
                                                                 {"MO", padded(m.month)},
                                                                 {"DD", padded(m.day)},
                                                                 {"HH", padded(hour)},
                                                                 {"MM", padded(m.minute)},
                                                                 {"SS", padded(m.second)},
                                                                 {"M", std::to_string(m.month)},
                                                                 {"D", std::to_string(m.day)},
                                                                 {"H", std::to_string(hour)}};
    std::string text;
    while (!picture.empty()) {
        bool found = false;
        for (const auto& [name, value] : pictures) {
            if (picture.starts_with(name)) {
                text += value;
                picture.remove_prefix(name.size());
                found = true;
                break;
            }
        }
        if (!found) {
            text += picture.front();
            picture.remove_prefix(1);
        }
    }
    return text;
}

class Diesel {
  public:
    explicit Diesel(LispHost& host) : host_(host) {}

    std::string text(std::string_view source) {
        std::string result;
        for (std::size_t at = 0; at < source.size();) {
            if (source.compare(at, 2, "$(") == 0) {
                result += call(source, at);
            } else if (source[at] == '"') {
                // In quotes everything stands for itself, a doubled quote for one.
                for (++at; at < source.size(); ++at) {
                    if (source[at] == '"' && (at + 1 >= source.size() || source[at + 1] != '"')) {
                        break;
                    }
                    at += source[at] == '"' ? 1 : 0;
                    result += source[at];
                }
                ++at;
            } else {
                result += source[at++];
            }
        }
        return result;
    }

  private:
    /// A call from its "$(" on; `at` ends behind it.
    std::string call(std::string_view source, std::size_t& at) {
        Strings parts(1);
        int depth = 1;
        bool quoted = false;
        std::size_t end = at + 2;
        for (; end < source.size() && depth > 0; ++end) {
            const char c = source[end];
            quoted = quoted != (c == '"');
            depth += quoted ? 0 : c == '(' ? 1 : c == ')' ? -1 : 0;
            if (depth == 1 && c == ',' && !quoted) {
                parts.emplace_back();
            } else if (depth > 0) {
                parts.back() += c;
            }
        }
        at = end;
        if (depth > 0) {
            return "$?";
        }
        std::string name = lisp::lowerCase(parts.front());
        name.erase(0, name.find_first_not_of(' '));
        name.erase(name.find_last_not_of(' ') + 1);
        parts.erase(parts.begin());
        if (++calls_ > MostCalls) {
            return "$(++)";
        }
        const std::string shouted = lisp::upperCase(name);
        const auto found = functions().find(name);
        if (found == functions().end()) {
            return "$(" + shouted + ")?\?";
        }
        bool fits = true;
        const std::string value = found->second(*this, parts, fits);
        return fits ? value : "$(" + shouted + ",?\?)";
    }

    std::string argument(const Strings& parts, std::size_t i) {
        return i < parts.size() ? text(parts[i]) : "";
    }
    double number(const Strings& parts, std::size_t i) { return parseReal(argument(parts, i)); }

    using Function = std::function<std::string(Diesel&, const Strings&, bool& fits)>;

    template <class Operation>
    static Function folding(Operation operation) {
        return [operation](Diesel& d, const Strings& p, bool& fits) {
            fits = !p.empty();
            double result = fits ? d.number(p, 0) : 0;
            for (std::size_t i = 1; i < p.size(); ++i) {
                result = operation(result, d.number(p, i));
            }
            return shown(result);
        };
    }
    template <class Test>
    static Function comparing(Test test) {
        return [test](Diesel& d, const Strings& p, bool& fits) {
            fits = p.size() == 2;
            return std::string(fits && test(d.number(p, 0), d.number(p, 1)) ? "1" : "0");
        };
    }

    static const std::map<std::string, Function, std::less<>>& functions();

    static constexpr int MostCalls = 10000;
    LispHost& host_;
    int calls_ = 0;
};

const std::map<std::string, Diesel::Function, std::less<>>& Diesel::functions() {
    static const std::map<std::string, Function, std::less<>> all = {
        {"+", folding([](double a, double b) { return a + b; })},
        {"-", folding([](double a, double b) { return a - b; })},
        {"*", folding([](double a, double b) { return a * b; })},
        {"/", folding([](double a, double b) { return b == 0 ? 0 : a / b; })},
        {"and", folding([](double a, double b) {
             return double(static_cast<long long>(a) & static_cast<long long>(b));
         })},
        {"or", folding([](double a, double b) {
             return double(static_cast<long long>(a) | static_cast<long long>(b));
         })},
        {"xor", folding([](double a, double b) {
             return double(static_cast<long long>(a) ^ static_cast<long long>(b));
         })},
        {"=", comparing([](double a, double b) { return a == b; })},
        {"!=", comparing([](double a, double b) { return a != b; })},
        {"<", comparing([](double a, double b) { return a < b; })},
        {">", comparing([](double a, double b) { return a > b; })},
        {"<=", comparing([](double a, double b) { return a <= b; })},
        {">=", comparing([](double a, double b) { return a >= b; })},
        {"angtos",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = !p.empty();
             return lisp::formatAngle(d.number(p, 0), static_cast<int>(d.number(p, 1)),
                                      static_cast<int>(d.number(p, 2)));
         }},
        {"edtime",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 2;
             const double time = d.number(p, 0);
             const auto now = time == 0 ? d.host_.getVar("DATE") : std::nullopt;
             return fits ? formattedTime(now && now->isReal() ? now->toReal() : time, d.argument(p, 1)) : "";
         }},
        {"eq",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 2;
             return std::string(d.argument(p, 0) == d.argument(p, 1) ? "1" : "0");
         }},
        {"eval",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 1;
             return d.text(d.argument(p, 0));
         }},
        {"fix",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 1;
             return shown(std::trunc(d.number(p, 0)));
         }},
        {"getenv",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 1;
             return d.host_.environment(d.argument(p, 0)).value_or("");
         }},
        {"getvar",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 1;
             return shown(d.host_.getVar(lisp::upperCase(d.argument(p, 0))).value_or(Value()));
         }},
        {"if",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 2 || p.size() == 3;
             return d.argument(p, d.number(p, 0) != 0 ? 1 : 2);
         }},
        {"index",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 2;
             std::string rest = d.argument(p, 1);
             for (auto skip = static_cast<int>(d.number(p, 0)); skip > 0; --skip) {
                 const std::size_t comma = rest.find(',');
                 rest = comma == std::string::npos ? "" : rest.substr(comma + 1);
             }
             return rest.substr(0, rest.find(','));
         }},
        {"linelen", [](Diesel&, const Strings&, bool&) { return std::string("240"); }},
        {"nth",
         [](Diesel& d, const Strings& p, bool& fits) {
             const auto which = static_cast<std::size_t>(std::max(0.0, d.number(p, 0))) + 1;
             fits = which < p.size();
             return d.argument(p, which);
         }},
        {"rtos",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = !p.empty();
             const auto setting = [&](std::size_t i, const char* name) {
                 const auto value = d.host_.getVar(name);
                 return i < p.size()              ? static_cast<int>(d.number(p, i))
                        : value && value->isInt() ? value->toInt()
                                                  : 2;
             };
             return lisp::formatDistance(d.number(p, 0),
                                         {.mode = setting(1, "LUNITS"), .precision = setting(2, "LUPREC")});
         }},
        {"strlen",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 1;
             return std::to_string(lisp::characterCount(d.argument(p, 0)));
         }},
        {"substr",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 2 || p.size() == 3;
             const std::string whole = d.argument(p, 0);
             const auto from = static_cast<std::size_t>(std::max(1.0, d.number(p, 1)));
             const std::size_t begin = lisp::characterOffset(whole, from - 1);
             const std::size_t count =
                 p.size() == 3 ? static_cast<std::size_t>(std::max(0.0, d.number(p, 2))) : whole.size();
             return whole.substr(begin, lisp::characterOffset(std::string_view(whole).substr(begin), count));
         }},
        {"upper",
         [](Diesel& d, const Strings& p, bool& fits) {
             fits = p.size() == 1;
             return lisp::upperCase(d.argument(p, 0));
         }},
    };
    return all;
}

}  // namespace

std::string evaluateDiesel(LispHost& host, std::string_view text) {
    return Diesel(host).text(text);
}

}  // namespace drafthost::automation
