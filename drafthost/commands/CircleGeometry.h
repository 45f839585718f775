// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "drafthost/base/Point.h"

namespace drafthost::commands {

struct PlaneCircle {
    Point center;
    double radius = 0;
};
/// The circle through three points of one plane parallel to the axes; nothing when they lie on a line.
std::optional<PlaneCircle> circleThrough(const Point& a, const Point& b, const Point& c);

/// An arc of the plane, run through to the left from its first angle to its second; radians.
struct PlaneArc {
    Point center;
    double radius = 0;
    double from = 0;
    double to = 0;
};

/// Arcs by two ends and something more; nothing when there is none.
std::optional<PlaneArc> arcThrough(const Point& start, const Point& middle, const Point& end);
/// `included` counts from start to end, negative to the right.
std::optional<PlaneArc> arcByAngle(const Point& start, const Point& end, double included);
/// The smaller arc to the left, the larger one for a negative radius.
std::optional<PlaneArc> arcByRadius(const Point& start, const Point& end, double radius);
/// `direction` is that of the tangent at the start.
std::optional<PlaneArc> arcByDirection(const Point& start, const Point& end, double direction);

/// The bulge of a polyline for an included angle: the tangent of its quarter.
double bulgeOf(double included);
/// The angle from one direction to another, to the left, above 0 up to a full turn.
double turnBetween(double from, double to);

}  // namespace drafthost::commands
