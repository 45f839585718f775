// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Value.h"

namespace drafthost {

// Affine maps and the few vector operations that drawings need.

inline Point operator+(const Point& a, const Point& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Point operator-(const Point& a, const Point& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Point operator*(const Point& a, double f) {
    return {a.x * f, a.y * f, a.z * f};
}

double length(const Point& a);
Point cross(const Point& a, const Point& b);
/// The vector with length 1; a zero vector becomes the z axis, as the format takes a missing extrusion.
Point normalised(const Point& a);

struct Transform {
    Point x{1, 0, 0};  ///< images of the axes
    Point y{0, 1, 0};
    Point z{0, 0, 1};
    Point origin;

    Point vector(const Point& v) const { return x * v.x + y * v.y + z * v.z; }
    Point operator()(const Point& p) const { return vector(p) + origin; }
    /// First `inner`, then this.
    Transform operator*(const Transform& inner) const;
    bool operator==(const Transform&) const = default;

    static Transform translation(const Point& by);
    /// About the z axis, in radians.
    static Transform rotation(double angle);
    static Transform scale(double sx, double sy, double sz);
    /// From the coordinate system of an entity with this extrusion (arbitrary axis algorithm) to world
    /// coordinates.
    static Transform ofExtrusion(const Point& extrusion);
};

}  // namespace drafthost
