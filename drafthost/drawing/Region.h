// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// What lies in an area of the plan, for selecting. Curves are followed by their pieces; everything else is
// taken by the box around it.

/// Whether the entity lies wholly inside a closed polygon.
bool liesWithin(const Drawing& drawing, RecordId entity, const std::vector<Point>& polygon);
/// Whether the entity lies inside or crosses its border.
bool meets(const Drawing& drawing, RecordId entity, const std::vector<Point>& polygon);
/// Whether the entity crosses an open path.
bool crossesPath(const Drawing& drawing, RecordId entity, const std::vector<Point>& path);

/// The corners of an upright rectangle.
std::vector<Point> rectangle(const Point& corner, const Point& opposite);

}  // namespace drafthost
