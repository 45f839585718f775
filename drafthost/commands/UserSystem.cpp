// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/UserSystem.h"

#include <cmath>

#include "drafthost/automation/DxfList.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/View.h"

namespace drafthost::commands {

namespace {

double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

std::string variable(const Drawing& drawing, std::string_view name) {
    return (modelSpaceIsCurrent(drawing) ? "$UCS" : "$PUCS") + std::string(name);
}

}  // namespace

Transform ucsTransform(const Drawing& drawing) {
    Transform ucs;
    ucs.origin = headerPoint(drawing, variable(drawing, "ORG"), {});
    const Point x = headerPoint(drawing, variable(drawing, "XDIR"), {1, 0, 0});
    const Point y = headerPoint(drawing, variable(drawing, "YDIR"), {0, 1, 0});
    const Point z = cross(x, y);
    if (length(x) < 0.5 || length(y) < 0.5 || length(z) < 0.5) {
        return ucs;
    }
    ucs.x = normalised(x);
    ucs.y = normalised(y);
    ucs.z = normalised(z);
    return ucs;
}

Transform inverseOf(const Transform& rigid) {
    Transform inverse;
    inverse.x = {rigid.x.x, rigid.y.x, rigid.z.x};
    inverse.y = {rigid.x.y, rigid.y.y, rigid.z.y};
    inverse.z = {rigid.x.z, rigid.y.z, rigid.z.z};
    inverse.origin =
        Point{-dot(rigid.x, rigid.origin), -dot(rigid.y, rigid.origin), -dot(rigid.z, rigid.origin)};
    return inverse;
}

Point worldFromUcs(const Drawing& drawing, const Point& point) {
    return ucsTransform(drawing)(point);
}

Point ucsFromWorld(const Drawing& drawing, const Point& point) {
    return inverseOf(ucsTransform(drawing))(point);
}

void setUcs(Drawing& drawing, const Transform& ucs, std::string_view name) {
    setHeader(drawing, variable(drawing, "NAME"), 2, std::string(name));
    setHeaderPoint(drawing, variable(drawing, "ORG"), ucs.origin, 3);
    setHeaderPoint(drawing, variable(drawing, "XDIR"), ucs.x, 3);
    setHeaderPoint(drawing, variable(drawing, "YDIR"), ucs.y, 3);
}

EntityPlane planeOfUcs(const Drawing& drawing) {
    EntityPlane plane;
    const Transform ucs = ucsTransform(drawing);
    plane.extrusion = ucs.z;
    plane.toPlane = inverseOf(Transform::ofExtrusion(ucs.z));
    const Point x = plane.toPlane.vector(ucs.x);
    plane.turn = std::atan2(x.y, x.x);
    return plane;
}

void putExtrusion(Drawing& drawing, RecordId entity, const EntityPlane& plane) {
    const Point& z = plane.extrusion;
    if (std::fabs(z.x) > 1e-12 || std::fabs(z.y) > 1e-12 || z.z < 0) {
        automation::addGroup(drawing, entity, 210, lisp::Value::point(z));
    }
}

}  // namespace drafthost::commands
