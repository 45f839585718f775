// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Distances and angles as text in the host's unit formats, both ways, and conversion between units of
// measure. The prompts of the command line read their numbers through these too.

#include <optional>
#include <string>
#include <string_view>

namespace drafthost::lisp {

/// How (rtos) and the prompts write a distance. Bits of `zeros` are those of DIMZIN: 1 to 3 choose
/// between zero feet and zero inches, 4 drops a leading zero, 8 drops trailing ones.
struct DistanceFormat {
    int mode = 2;  ///< 1 scientific, 2 decimal, 3 feet and decimal inches, 4 feet and fractions, 5 fractions
    int precision = 4;  ///< digits after the point, or the power of two of the smallest fraction
    int zeros = 0;
};
std::string formatDistance(double value, const DistanceFormat& format);

/// Mode: 0 degrees, 1 degrees/minutes/seconds, 2 grads, 3 radians, 4 surveyor's. The angle is in radians.
std::string formatAngle(double radians, int mode, int precision);

/// Reads what formatDistance writes; feet and inches only in modes 3 and 4.
std::optional<double> parseDistance(std::string_view text, int mode);

/// Reads an angle to radians; a plain number is taken in the mode's unit.
std::optional<double> parseAngle(std::string_view text, int mode);

/// Converts between units ("inch", "ft", "sq m", "m/second^2"); nothing when a unit is unknown or the
/// two measure different things.
std::optional<double> convertUnit(double value, std::string_view from, std::string_view to);

}  // namespace drafthost::lisp
