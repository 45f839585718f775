// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Region.h"

#include <algorithm>
#include <cmath>

#include "drafthost/drawing/Curve.h"
#include "drafthost/drawing/Extents.h"

namespace drafthost {

namespace {

/// A path through the plan; closed ones end where they begin.
struct Path {
    std::vector<Point> points;
    bool filled = false;  ///< what is inside counts too: a text, a block
};

Path pathOf(const Drawing& drawing, RecordId entity) {
    constexpr int Steps = 48;
    constexpr double Far = 1e9;
    Path path;
    if (const auto curve = Curve::of(drawing, entity)) {
        for (const CurvePiece& piece : curve->pieces()) {
            const double from = std::max(piece.from, -Far);
            const double to = std::min(piece.to, Far);
            const int steps = piece.kind == CurvePiece::Kind::Line ? 1 : Steps;
            for (int i = path.points.empty() ? 0 : 1; i <= steps; ++i) {
                path.points.push_back(piece.at(from + (to - from) * i / steps));
            }
        }
        return path;
    }
    const Extents box = computeExtents(drawing, std::vector<RecordId>{entity});
    if (!box.empty()) {
        path.points = rectangle(box.min, box.max);
        path.points.push_back(path.points.front());
        path.filled = true;
    }
    return path;
}

bool isInside(const Point& p, const std::vector<Point>& polygon) {
    bool inside = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const Point& a = polygon[i];
        const Point& b = polygon[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

double turn(const Point& a, const Point& b, const Point& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool boxesMeet(const Point& a, const Point& b, const Point& c, const Point& d) {
    return std::max(std::min(a.x, b.x), std::min(c.x, d.x)) <=
               std::min(std::max(a.x, b.x), std::max(c.x, d.x)) &&
           std::max(std::min(a.y, b.y), std::min(c.y, d.y)) <=
               std::min(std::max(a.y, b.y), std::max(c.y, d.y));
}

/// Whether two stretches share a point; touching counts.
bool stretchesMeet(const Point& a, const Point& b, const Point& c, const Point& d) {
    const double p = turn(a, b, c);
    const double q = turn(a, b, d);
    const double r = turn(c, d, a);
    const double s = turn(c, d, b);
    const auto apart = [](double u, double v) { return (u > 0 && v > 0) || (u < 0 && v < 0); };
    return boxesMeet(a, b, c, d) && !apart(p, q) && !apart(r, s);
}

bool pathsMeet(const std::vector<Point>& a, const std::vector<Point>& b) {
    for (std::size_t i = 1; i < a.size(); ++i) {
        for (std::size_t j = 1; j < b.size(); ++j) {
            if (stretchesMeet(a[i - 1], a[i], b[j - 1], b[j])) {
                return true;
            }
        }
    }
    return false;
}

std::vector<Point> closed(std::vector<Point> polygon) {
    polygon.push_back(polygon.front());
    return polygon;
}

Extents boxOf(const std::vector<Point>& points) {
    Extents box;
    for (const Point& p : points) {
        box.add(Point{p.x, p.y, 0});
    }
    return box;
}

}  // namespace

std::vector<Point> rectangle(const Point& corner, const Point& opposite) {
    return {corner, {opposite.x, corner.y, 0}, opposite, {corner.x, opposite.y, 0}};
}

bool liesWithin(const Drawing& drawing, RecordId entity, const std::vector<Point>& polygon) {
    const Path path = pathOf(drawing, entity);
    if (path.points.empty() || polygon.size() < 3) {
        return false;
    }
    // What touches the border from inside is inside: snapped windows are drawn through corners.
    const Extents window = boxOf(polygon);
    const Extents box = boxOf(path.points);
    if (box.min.x < window.min.x || box.max.x > window.max.x || box.min.y < window.min.y ||
        box.max.y > window.max.y) {
        return false;
    }
    const bool upright =
        polygon.size() == 4 && std::all_of(polygon.begin(), polygon.end(), [&](const Point& p) {
            return (p.x == window.min.x || p.x == window.max.x) &&
                   (p.y == window.min.y || p.y == window.max.y);
        });
    return upright || (std::all_of(path.points.begin(), path.points.end(),
                                   [&](const Point& p) { return isInside(p, polygon); }) &&
                       !pathsMeet(path.points, closed(polygon)));
}

bool meets(const Drawing& drawing, RecordId entity, const std::vector<Point>& polygon) {
    const Path path = pathOf(drawing, entity);
    if (path.points.empty() || polygon.size() < 3) {
        return false;
    }
    return isInside(path.points.front(), polygon) || pathsMeet(path.points, closed(polygon)) ||
           (path.points.size() == 1 && liesWithin(drawing, entity, polygon)) ||
           (path.filled && isInside(polygon.front(), path.points));
}

bool crossesPath(const Drawing& drawing, RecordId entity, const std::vector<Point>& path) {
    const Path own = pathOf(drawing, entity);
    return !own.points.empty() && (pathsMeet(own.points, path) ||
                                   (own.filled && !path.empty() && isInside(path.front(), own.points)));
}

}  // namespace drafthost
