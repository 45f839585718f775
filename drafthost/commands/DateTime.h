// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Dates as drawings and system variables hold them: days and fractions of a day in local time. Local time and
// not UTC, because users compare them with the clock on the wall and scripts cut file names out of them.

#include <chrono>

namespace drafthost::commands {

/// Julian day number with the fraction of the day since midnight, local time (2451545.5 is noon of 1 January
/// 2000: the whole part changes at midnight, not at noon as in astronomy).
double julianDate(std::chrono::system_clock::time_point when);

/// The calendar date as the real YYYYMMDD.HHMMSSmmm, local time.
double calendarDate(std::chrono::system_clock::time_point when);

}  // namespace drafthost::commands
