// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Chains.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost {

namespace {

constexpr double Touching = 1e-9;

bool isNear(const Point& a, const Point& b, double fuzz) {
    const double size = 1 + std::max({std::fabs(a.x), std::fabs(a.y), std::fabs(b.x), std::fabs(b.y)});
    return std::hypot(a.x - b.x, a.y - b.y) <= std::max(fuzz, Touching * size) &&
           std::fabs(a.z - b.z) <= std::max(fuzz, Touching * size);
}

bool samePlane(const Run& a, const Run& b) {
    return length(a.extrusion - b.extrusion) < 1e-9;
}

/// Puts a piece behind the end; its first corner becomes the end.
void append(Run& run, const Run& piece) {
    WideVertex& end = run.vertices.back();
    const WideVertex& first = piece.vertices.front();
    end.bulge = first.bulge;
    end.startWidth = first.startWidth;
    end.endWidth = first.endWidth;
    run.vertices.insert(run.vertices.end(), piece.vertices.begin() + 1, piece.vertices.end());
}

}  // namespace

std::optional<Run> runOf(const Drawing& drawing, RecordId entity) {
    const Record record = drawing.record(entity);
    const std::string_view type = record.type();
    Run run;
    run.extrusion = normalised(record.pointOr(210, {0, 0, 1}));
    if (type == "LINE") {
        const Point a = record.pointOr(10, {});
        const Point b = record.pointOr(11, {});
        if (a.z != b.z) {
            return std::nullopt;
        }
        run.extrusion = {0, 0, 1};
        run.vertices = {{a, 0, 0, 0}, {b, 0, 0, 0}};
        return run;
    }
    if (type == "ARC") {
        const Point center = record.pointOr(10, {});
        const double radius = record.realOr(40, 0);
        const double from = record.realOr(50, 0) * RadiansPerDegree;
        double turn = std::fmod(record.realOr(51, 0) * RadiansPerDegree - from, 2 * std::numbers::pi);
        turn = turn <= 0 ? turn + 2 * std::numbers::pi : turn;
        const auto at = [&](double angle) {
            return Point{center.x + radius * std::cos(angle), center.y + radius * std::sin(angle), center.z};
        };
        run.vertices = {{at(from), std::tan(turn / 4), 0, 0}, {at(from + turn), 0, 0, 0}};
        return run;
    }
    const std::int64_t flags = record.integerOr(70, 0);
    constexpr std::int64_t NotPlane = 8 | 16 | 64;
    if (type != "LWPOLYLINE" && (type != "POLYLINE" || (flags & NotPlane) != 0)) {
        return std::nullopt;
    }
    run.vertices = wideVertices(drawing, entity);
    run.closed = (flags & 1) != 0;
    return run.vertices.size() < 2 ? std::nullopt : std::optional(run);
}

void reverse(Run& run) {
    std::vector<WideVertex> turned(run.vertices.rbegin(), run.vertices.rend());
    const std::size_t count = turned.size();
    // What a corner gives to the segment behind it belongs to the corner at its other end now.
    for (std::size_t i = 0; i < count; ++i) {
        const WideVertex& owner = run.vertices[(2 * count - 2 - i) % count];
        turned[i].bulge = -owner.bulge;
        turned[i].startWidth = owner.endWidth;
        turned[i].endWidth = owner.startWidth;
    }
    run.vertices = std::move(turned);
}

std::vector<std::size_t> joinRuns(Run& run, const std::vector<std::optional<Run>>& pieces, double fuzz) {
    std::vector<std::size_t> taken;
    std::vector<bool> used(pieces.size(), false);
    bool found = true;
    while (found && !run.closed) {
        found = false;
        for (std::size_t i = 0; i < pieces.size() && !found; ++i) {
            if (used[i] || !pieces[i] || pieces[i]->closed || !samePlane(run, *pieces[i])) {
                continue;
            }
            Run piece = *pieces[i];
            const Point first = piece.vertices.front().place;
            const Point last = piece.vertices.back().place;
            const Point end = run.vertices.back().place;
            const Point start = run.vertices.front().place;
            const bool atEnd = isNear(end, first, fuzz) || isNear(end, last, fuzz);
            if (!atEnd && !isNear(start, first, fuzz) && !isNear(start, last, fuzz)) {
                continue;
            }
            if (atEnd) {
                if (!isNear(end, first, fuzz)) {
                    reverse(piece);
                }
                append(run, piece);
            } else {
                if (!isNear(start, last, fuzz)) {
                    reverse(piece);
                }
                append(piece, run);
                run.vertices = piece.vertices;
            }
            used[i] = true;
            taken.push_back(i);
            found = true;
        }
        if (run.vertices.size() > 2 && isNear(run.vertices.front().place, run.vertices.back().place, fuzz)) {
            run.vertices.pop_back();
            run.closed = true;
        }
    }
    return taken;
}

}  // namespace drafthost
