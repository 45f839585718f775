// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/ViewGeometry.h"

#include <cmath>
#include <numbers>

#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::commands {

namespace {

struct Axes {
    Point x{1, 0, 0};
    Point y{0, 1, 0};
    Point z{0, 0, 1};
};

Point plus(const Point& a, const Point& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Point minus(const Point& a, const Point& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Point times(const Point& a, double factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}
double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Point cross(const Point& a, const Point& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Point unit(const Point& a) {
    double length = std::sqrt(dot(a, a));
    return length > 0 ? times(a, 1 / length) : a;
}

Point toAxes(const Axes& axes, const Point& point) {
    return {dot(point, axes.x), dot(point, axes.y), dot(point, axes.z)};
}
Point fromAxes(const Axes& axes, const Point& point) {
    return plus(plus(times(axes.x, point.x), times(axes.y, point.y)), times(axes.z, point.z));
}

Axes displayAxes(const ViewPlane& plane) {
    Axes axes;
    axes.z = unit(plane.direction);
    if (dot(axes.z, axes.z) == 0) {
        axes.z = {0, 0, 1};
    }
    // Looking along the world's z, its x stays to the right; else the horizontal does.
    Point x = std::abs(axes.z.x) < 1e-12 && std::abs(axes.z.y) < 1e-12
                  ? Point{axes.z.z > 0 ? 1.0 : -1.0, 0, 0}
                  : unit(cross({0, 0, 1}, axes.z));
    Point y = cross(axes.z, x);
    double c = std::cos(plane.twist);
    double s = std::sin(plane.twist);
    // A twist turns the picture, so the axes of the display turn against it.
    axes.x = minus(times(x, c), times(y, s));
    axes.y = plus(times(x, s), times(y, c));
    return axes;
}

struct Ucs {
    Point origin;
    Axes axes;
};

Ucs currentUcs(const Drawing& drawing) {
    bool model = modelIsCurrent(drawing);
    Ucs ucs;
    ucs.origin = headerPoint(drawing, model ? "$UCSORG" : "$PUCSORG", {});
    ucs.axes.x = unit(headerPoint(drawing, model ? "$UCSXDIR" : "$PUCSXDIR", {1, 0, 0}));
    ucs.axes.y = unit(headerPoint(drawing, model ? "$UCSYDIR" : "$PUCSYDIR", {0, 1, 0}));
    ucs.axes.z = cross(ucs.axes.x, ucs.axes.y);
    if (dot(ucs.axes.z, ucs.axes.z) < 0.5) {
        ucs.axes = {};
    }
    return ucs;
}

}  // namespace

ViewPlane viewPlane(const Drawing& drawing) {
    ViewPlane plane;
    RecordId entry = modelIsCurrent(drawing) ? findEntry(drawing, Table::Vport, "*ACTIVE") : NoRecord;
    if (entry != NoRecord) {
        Record record = drawing.record(entry);
        plane.direction = record.pointOr(16, plane.direction);
        plane.target = record.pointOr(17, plane.target);
        plane.twist = record.realOr(51, 0) * std::numbers::pi / 180.0;
    }
    return plane;
}

Point displayFromUcs(const Drawing& drawing, const Point& point) {
    Ucs ucs = currentUcs(drawing);
    ViewPlane plane = viewPlane(drawing);
    Point world = plus(ucs.origin, fromAxes(ucs.axes, point));
    return toAxes(displayAxes(plane), minus(world, plane.target));
}

Point viewCenterInUcs(const Drawing& drawing) {
    Ucs ucs = currentUcs(drawing);
    ViewPlane plane = viewPlane(drawing);
    View view = currentView(drawing);
    Point world = plus(plane.target, fromAxes(displayAxes(plane), {view.center.x, view.center.y, 0}));
    return toAxes(ucs.axes, minus(world, ucs.origin));
}

Extents displayExtents(const Drawing& drawing, const Extents& world) {
    Extents result;
    if (world.empty()) {
        return result;
    }
    ViewPlane plane = viewPlane(drawing);
    Axes axes = displayAxes(plane);
    for (int corner = 0; corner < 8; ++corner) {
        Point point{corner & 1 ? world.max.x : world.min.x, corner & 2 ? world.max.y : world.min.y,
                    corner & 4 ? world.max.z : world.min.z};
        result.add(toAxes(axes, minus(point, plane.target)));
    }
    return result;
}

}  // namespace drafthost::commands
