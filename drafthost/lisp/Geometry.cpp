// SPDX-License-Identifier: GPL-3.0-or-later
// Points in the plane and in space.

#include <cmath>
#include <numbers>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"

namespace drafthost::lisp {
namespace {

bool hasHeight(const Value& point) {
    return point.cdr().cdr().isCons();
}

/// A point with as many coordinates as the model has.
Value pointLike(const Value& model, const Point& p) {
    return hasHeight(model) ? Value::point(p) : Value::point2d(p[0], p[1]);
}

// Heights count only when both points have one.
Value distance(Evaluator&, Args args) {
    const Point a = pointArg(args[0]);
    const Point b = pointArg(args[1]);
    const double dz = hasHeight(args[0]) && hasHeight(args[1]) ? b[2] - a[2] : 0;
    return Value::real(std::hypot(b[0] - a[0], b[1] - a[1], dz));
}

Value angle(Evaluator&, Args args) {
    const Point a = pointArg(args[0]);
    const Point b = pointArg(args[1]);
    const double radians = std::atan2(b[1] - a[1], b[0] - a[0]);
    return Value::real(radians < 0 ? radians + 2 * std::numbers::pi : radians);
}

Value polar(Evaluator&, Args args) {
    Point p = pointArg(args[0]);
    const double radians = realArg(args[1]);
    const double length = realArg(args[2]);
    p[0] += length * std::cos(radians);
    p[1] += length * std::sin(radians);
    return pointLike(args[0], p);
}

// With heights in all four points the lines are taken in space and must really meet.
Value intersection(Evaluator&, Args args) {
    Point p[4];
    bool space = true;
    for (int i = 0; i < 4; ++i) {
        p[i] = pointArg(args[i]);
        space = space && hasHeight(args[i]);
    }
    const bool onSegments = args.size() < 5 || args[4];
    Point r{};
    Point s{};
    Point w{};
    for (int i = 0; i < 3; ++i) {
        r[i] = p[1][i] - p[0][i];
        s[i] = p[3][i] - p[2][i];
        w[i] = p[2][i] - p[0][i];
    }
    if (!space) {
        r[2] = s[2] = w[2] = 0;
    }
    const auto cross = [](const Point& a, const Point& b) {
        return Point{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    const auto dot = [](const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; };
    const Point n = cross(r, s);
    const double nn = dot(n, n);
    const double scale = std::sqrt(dot(r, r) * dot(s, s));
    if (std::sqrt(nn) <= 1e-12 * scale || nn == 0) {
        return {};
    }
    if (std::fabs(dot(w, n)) / std::sqrt(nn) > 1e-8 * (1 + std::sqrt(dot(w, w)))) {
        return {};
    }
    const double t = dot(cross(w, s), n) / nn;
    const double u = dot(cross(w, r), n) / nn;
    constexpr double Slack = 1e-10;
    if (onSegments && (t < -Slack || t > 1 + Slack || u < -Slack || u > 1 + Slack)) {
        return {};
    }
    const Point at{p[0][0] + t * r[0], p[0][1] + t * r[1], p[0][2] + t * r[2]};
    return space ? Value::point(at) : Value::point2d(at[0], at[1]);
}

// This host has one coordinate system, the world's; an entity's own is given by its extrusion.
Point axisArg(const Value& v, bool& isWorld) {
    isWorld = true;
    if (v.isInt()) {
        if (v.toInt() < 0 || v.toInt() > 3) {
            fail("invalid coordinate system: " + std::to_string(v.toInt()));
        }
        return {0, 0, 1};
    }
    isWorld = false;
    return pointArg(v);
}

struct Axes {
    Point x, y, z;
};

/// Axes of an entity with that extrusion, by the rule of drawings for arbitrary axes.
Axes axesOf(Point z) {
    const double length = std::hypot(z[0], z[1], z[2]);
    if (length == 0) {
        return {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    }
    z = {z.x / length, z.y / length, z.z / length};
    const auto cross = [](const Point& a, const Point& b) {
        return Point{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    const Point x =
        std::fabs(z[0]) < 1.0 / 64 && std::fabs(z[1]) < 1.0 / 64 ? cross({0, 1, 0}, z) : cross({0, 0, 1}, z);
    const double size = std::hypot(x[0], x[1], x[2]);
    const Point unit{x.x / size, x.y / size, x.z / size};
    return {unit, cross(z, unit), z};
}

Value transform(Evaluator&, Args args) {
    const Point p = pointArg(args[0]);
    bool fromWorld = false;
    bool toWorld = false;
    const Point from = axisArg(args[1], fromWorld);
    const Point to = axisArg(args[2], toWorld);
    Point world = p;
    if (!fromWorld) {
        const Axes a = axesOf(from);
        for (int i = 0; i < 3; ++i) {
            world[i] = p[0] * a.x[i] + p[1] * a.y[i] + p[2] * a.z[i];
        }
    }
    if (toWorld) {
        return Value::point(world);
    }
    const Axes a = axesOf(to);
    const auto dot = [](const Point& u, const Point& v) { return u[0] * v[0] + u[1] * v[1] + u[2] * v[2]; };
    return Value::point({dot(world, a.x), dot(world, a.y), dot(world, a.z)});
}

constexpr Subr Functions[] = {
    {"DISTANCE", 2, 2, distance},   {"ANGLE", 2, 2, angle},     {"POLAR", 3, 3, polar},
    {"INTERS", 4, 5, intersection}, {"TRANS", 3, 4, transform},
};

}  // namespace

std::span<const Subr> geometryFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
