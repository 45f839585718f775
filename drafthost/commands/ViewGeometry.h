// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The view in three dimensions: a view's centre and height stand in the coordinates of the display, while
// users give points in their own coordinate system and extents come in the world's.

#include "drafthost/drawing/Extents.h"
#include "drafthost/drawing/Transform.h"
#include "drafthost/drawing/View.h"

namespace drafthost::commands {

/// How the current view looks at the drawing; twist in radians.
struct ViewPlane {
    Point direction{0, 0, 1};
    Point target;
    double twist = 0;
};

/// Plane of the current view; straight from above in layouts and where the drawing tells nothing.
ViewPlane viewPlane(const Drawing& drawing);
/// The axes of the display in the world, without the twist when `twisted` is false.
Transform viewAxes(const ViewPlane& plane, bool twisted = true);
/// A point of the current UCS in the display's coordinates.
Point displayFromUcs(const Drawing& drawing, const Point& point);
/// The view's centre in the current UCS (VIEWCTR).
Point viewCenterInUcs(const Drawing& drawing);
/// The box around a box of the world, in the display's coordinates; empty when that is.
Extents displayExtents(const Drawing& drawing, const Extents& world);

}  // namespace drafthost::commands
