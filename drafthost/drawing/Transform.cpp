// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Transform.h"

#include <cmath>

namespace drafthost {

double length(const Point& a) {
    return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
}

Point cross(const Point& a, const Point& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Point normalised(const Point& a) {
    const double size = length(a);
    return size > 0 && std::isfinite(size) ? a * (1 / size) : Point{0, 0, 1};
}

Transform Transform::operator*(const Transform& inner) const {
    return {vector(inner.x), vector(inner.y), vector(inner.z), (*this)(inner.origin)};
}

Transform Transform::translation(const Point& by) {
    Transform result;
    result.origin = by;
    return result;
}

Transform Transform::rotation(double angle) {
    if (angle == 0) {
        return {};
    }
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {{c, s, 0}, {-s, c, 0}, {0, 0, 1}, {}};
}

Transform Transform::scale(double sx, double sy, double sz) {
    return {{sx, 0, 0}, {0, sy, 0}, {0, 0, sz}, {}};
}

Transform Transform::ofExtrusion(const Point& extrusion) {
    const Point z = normalised(extrusion);
    if (z == Point{0, 0, 1}) {
        return {};
    }
    constexpr double Limit = 1.0 / 64;
    const bool nearAxis = std::fabs(z.x) < Limit && std::fabs(z.y) < Limit;
    const Point x = normalised(cross(nearAxis ? Point{0, 1, 0} : Point{0, 0, 1}, z));
    return {x, normalised(cross(z, x)), z, {}};
}

}  // namespace drafthost
