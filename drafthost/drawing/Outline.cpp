// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/ExtentsBuilder.h"

#include <algorithm>
#include <cmath>

namespace drafthost {

namespace {

constexpr double Turn = 2 * std::numbers::pi;

bool usable(double value) {
    return std::fabs(value) < 1e20;
}

}  // namespace

void Extents::add(const Point& point) {
    // The comparison is false for what is not a number as well.
    if (!usable(point.x) || !usable(point.y) || !usable(point.z)) {
        return;
    }
    min = {std::min(min.x, point.x), std::min(min.y, point.y), std::min(min.z, point.z)};
    max = {std::max(max.x, point.x), std::max(max.y, point.y), std::max(max.z, point.z)};
}

void Extents::add(const Extents& other) {
    if (!other.empty()) {
        add(other.min);
        add(other.max);
    }
}

void Outline::curve(const Point& center, const Point& u, const Point& v, double from, double to) {
    const Point c = transform_(center);
    const Point a = transform_.vector(u);
    const Point b = transform_.vector(v);
    const auto at = [&](double t) { return c + a * std::cos(t) + b * std::sin(t); };
    double sweep = std::fmod(to - from, Turn);
    if (!(sweep > 1e-12)) {
        sweep += Turn;
    }
    if (!std::isfinite(sweep)) {
        return;
    }
    extents_->add(at(from));
    extents_->add(at(from + sweep));
    for (const auto& [cosine, sine] : {std::pair{a.x, b.x}, {a.y, b.y}, {a.z, b.z}}) {
        if (cosine == 0 && sine == 0) {
            continue;
        }
        for (const double extreme : {std::atan2(sine, cosine), std::atan2(-sine, -cosine)}) {
            double ahead = std::fmod(extreme - from, Turn);
            if (ahead < 0) {
                ahead += Turn;
            }
            if (ahead <= sweep) {
                extents_->add(at(extreme));
            }
        }
    }
}

void Outline::arc(const Point& center, double radius, double from, double to) {
    curve(center, {radius, 0, 0}, {0, radius, 0}, from, to);
}

void Outline::segment(const Point& from, const Point& to, double bulge, double halfFrom, double halfTo) {
    const Point chord = to - from;
    const double size = std::hypot(chord.x, chord.y);
    if (bulge == 0 || size == 0 || !std::isfinite(bulge)) {
        point(from);
        point(to);
        if (size > 0 && (halfFrom > 0 || halfTo > 0)) {
            const Point normal{-chord.y / size, chord.x / size, 0};
            point(from + normal * halfFrom);
            point(from - normal * halfFrom);
            point(to + normal * halfTo);
            point(to - normal * halfTo);
        }
        return;
    }
    const double radius = size * (1 + bulge * bulge) / (4 * bulge);
    const double rise = size * (1 - bulge * bulge) / (4 * bulge);
    const Point center{(from.x + to.x) / 2 - chord.y / size * rise,
                       (from.y + to.y) / 2 + chord.x / size * rise, from.z};
    double first = std::atan2(from.y - center.y, from.x - center.x);
    double last = std::atan2(to.y - center.y, to.x - center.x);
    if (bulge < 0) {
        std::swap(first, last);
    }
    arc(center, std::fabs(radius) + std::max(halfFrom, halfTo), first, last);
}

}  // namespace drafthost
