// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/CircleGeometry.h"

#include <cmath>
#include <numbers>

namespace drafthost::commands {

namespace {

constexpr double Turn = 2 * std::numbers::pi;

double direction(const Point& from, const Point& to) {
    return std::atan2(to.y - from.y, to.x - from.x);
}

double distance(const Point& a, const Point& b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

PlaneArc around(const Point& center, const Point& start, const Point& end, bool left) {
    return {center, distance(center, start), direction(center, left ? start : end),
            direction(center, left ? end : start)};
}

}  // namespace

std::optional<PlaneCircle> circleThrough(const Point& a, const Point& b, const Point& c) {
    const double bx = b.x - a.x;
    const double by = b.y - a.y;
    const double cx = c.x - a.x;
    const double cy = c.y - a.y;
    const double d = 2 * (bx * cy - by * cx);
    if (std::fabs(d) < 1e-12 * (std::hypot(bx, by) * std::hypot(cx, cy)) || d == 0) {
        return std::nullopt;
    }
    const double b2 = bx * bx + by * by;
    const double c2 = cx * cx + cy * cy;
    const double x = (cy * b2 - by * c2) / d;
    const double y = (bx * c2 - cx * b2) / d;
    return PlaneCircle{{a.x + x, a.y + y, a.z}, std::hypot(x, y)};
}

double turnBetween(double from, double to) {
    const double turn = std::fmod(to - from, Turn);
    return turn <= 0 ? turn + Turn : turn;
}

double bulgeOf(double included) {
    return std::tan(included / 4);
}

std::optional<PlaneArc> arcThrough(const Point& start, const Point& middle, const Point& end) {
    const auto circle = circleThrough(start, middle, end);
    if (!circle) {
        return std::nullopt;
    }
    const double from = direction(circle->center, start);
    const bool left = turnBetween(from, direction(circle->center, middle)) <
                      turnBetween(from, direction(circle->center, end));
    return around(circle->center, start, end, left);
}

std::optional<PlaneArc> arcByAngle(const Point& start, const Point& end, double included) {
    const double chord = distance(start, end);
    const double half = std::fabs(included) / 2;
    if (!(chord > 0) || !(half > 0) || half >= std::numbers::pi) {
        return std::nullopt;
    }
    // From the middle of the chord the centre lies to the left of the way for arcs to the left.
    const double height = chord / 2 / std::tan(half) * (included > 0 ? 1 : -1);
    const Point middle{(start.x + end.x) / 2, (start.y + end.y) / 2, start.z};
    const Point center{middle.x - (end.y - start.y) / chord * height,
                       middle.y + (end.x - start.x) / chord * height, start.z};
    return around(center, start, end, included > 0);
}

std::optional<PlaneArc> arcByRadius(const Point& start, const Point& end, double radius) {
    const double chord = distance(start, end);
    if (!(chord > 0) || std::fabs(radius) < chord / 2) {
        return std::nullopt;
    }
    const double included = 2 * std::asin(chord / 2 / std::fabs(radius));
    return arcByAngle(start, end, radius > 0 ? included : Turn - included);
}

std::optional<PlaneArc> arcByDirection(const Point& start, const Point& end, double tangent) {
    double turn = std::remainder(direction(start, end) - tangent, Turn);
    return arcByAngle(start, end, 2 * turn);
}

}  // namespace drafthost::commands
