// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/DateTime.h"

#include <ctime>

namespace drafthost::commands {

namespace {

struct LocalTime {
    std::tm parts{};
    int milliseconds = 0;
};

LocalTime localTime(std::chrono::system_clock::time_point when) {
    using namespace std::chrono;
    auto whole = floor<seconds>(when);
    LocalTime result;
    std::time_t seconds = system_clock::to_time_t(whole);
    localtime_r(&seconds, &result.parts);
    result.milliseconds = static_cast<int>(duration_cast<milliseconds>(when - whole).count());
    return result;
}

}  // namespace

double julianDate(std::chrono::system_clock::time_point when) {
    LocalTime local = localTime(when);
    const std::tm& t = local.parts;
    std::chrono::year_month_day day{std::chrono::year{t.tm_year + 1900},
                                    std::chrono::month{static_cast<unsigned>(t.tm_mon + 1)},
                                    std::chrono::day{static_cast<unsigned>(t.tm_mday)}};
    // 2440588 is the day number of 1 January 1970.
    double number = 2440588.0 + static_cast<double>(std::chrono::sys_days{day}.time_since_epoch().count());
    double milliseconds = ((t.tm_hour * 60.0 + t.tm_min) * 60.0 + t.tm_sec) * 1000.0 + local.milliseconds;
    return number + milliseconds / 86400000.0;
}

double calendarDate(std::chrono::system_clock::time_point when) {
    LocalTime local = localTime(when);
    const std::tm& t = local.parts;
    double date = (t.tm_year + 1900) * 10000.0 + (t.tm_mon + 1) * 100.0 + t.tm_mday;
    double time = t.tm_hour * 10000.0 + t.tm_min * 100.0 + t.tm_sec + local.milliseconds / 1000.0;
    return date + time / 1e6;
}

}  // namespace drafthost::commands
