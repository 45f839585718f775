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

double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Point unit(const Point& a) {
    double length = std::sqrt(dot(a, a));
    return length > 0 ? a * (1 / length) : a;
}

Point toAxes(const Axes& axes, const Point& point) {
    return {dot(point, axes.x), dot(point, axes.y), dot(point, axes.z)};
}
Point fromAxes(const Axes& axes, const Point& point) {
    return axes.x * point.x + axes.y * point.y + axes.z * point.z;
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
    axes.x = x * c - y * s;
    axes.y = x * s + y * c;
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

Transform viewAxes(const ViewPlane& plane, bool twisted) {
    ViewPlane seen = plane;
    seen.twist = twisted ? plane.twist : 0;
    const Axes axes = displayAxes(seen);
    Transform result;
    result.x = axes.x;
    result.y = axes.y;
    result.z = axes.z;
    return result;
}

Point displayFromUcs(const Drawing& drawing, const Point& point) {
    Ucs ucs = currentUcs(drawing);
    ViewPlane plane = viewPlane(drawing);
    Point world = ucs.origin + fromAxes(ucs.axes, point);
    return toAxes(displayAxes(plane), world - plane.target);
}

Point viewCenterInUcs(const Drawing& drawing) {
    Ucs ucs = currentUcs(drawing);
    ViewPlane plane = viewPlane(drawing);
    View view = currentView(drawing);
    Point world = plane.target + fromAxes(displayAxes(plane), {view.center.x, view.center.y, 0});
    return toAxes(ucs.axes, world - ucs.origin);
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
        result.add(toAxes(axes, point - plane.target));
    }
    return result;
}

}  // namespace drafthost::commands
