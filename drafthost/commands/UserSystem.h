// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The user's coordinate system: what is typed at prompts counts in it, what stands in the drawing in the
// world's or in the plane of each entity.

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost::commands {

/// From the current UCS of the current space to the world.
Transform ucsTransform(const Drawing& drawing);
/// The map that undoes one whose axes have length 1 and stand upright on each other.
Transform inverseOf(const Transform& rigid);
Point worldFromUcs(const Drawing& drawing, const Point& point);
Point ucsFromWorld(const Drawing& drawing, const Point& point);
/// Makes a UCS current; of the current space.
void setUcs(Drawing& drawing, const Transform& ucs, std::string_view name);

/// The plane of an entity that is drawn in the current UCS.
struct EntityPlane {
    Point extrusion{0, 0, 1};
    Transform toPlane;  ///< from the world to the coordinates of that plane
    double turn = 0;    ///< angle in that plane of the UCS's x axis, radians
    Point place(const Point& world) const { return toPlane(world); }
};
EntityPlane planeOfUcs(const Drawing& drawing);
/// Gives a new entity the extrusion, when it is not the world's z.
void putExtrusion(Drawing& drawing, RecordId entity, const EntityPlane& plane);

}  // namespace drafthost::commands
