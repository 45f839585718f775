// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <limits>
#include <numbers>

namespace drafthost {

// Angles are degrees in the file and radians everywhere else.

inline constexpr double RadiansPerDegree = std::numbers::pi / 180;

/// Degrees of the file for radians, without the noise of the conversion: 30 degrees were 30 before.
inline double degreesOf(double radians) {
    constexpr double Steps = 1e10;
    const double degrees = radians / RadiansPerDegree;
    const double rounded = std::nearbyint(degrees * Steps) / Steps;
    return std::fabs(rounded - degrees) <= 4 * std::numeric_limits<double>::epsilon() * std::fabs(degrees)
               ? rounded
               : degrees;
}

/// The same of a computed direction, to the tenth digit after the point and from 0 up to a full turn.
inline double directionInDegrees(double radians) {
    constexpr double Steps = 1e10;
    constexpr double FullTurn = 360;
    const double degrees = std::fmod(std::round(radians / RadiansPerDegree * Steps) / Steps, FullTurn);
    return degrees < 0 ? degrees + FullTurn : degrees;
}

}  // namespace drafthost
