// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "drafthost/drawing/Curve.h"

namespace drafthost {

/// Where two curves meet, each point once; lines and arcs are prolonged beyond their ends where asked.
std::vector<Point> intersections(const Curve& a, const Curve& b, bool extendA, bool extendB);

/// A parallel of a line, circle, arc or polyline in its own plane, with the properties of the original. Of a
/// circle or arc a positive distance is the larger one, of a line the one to its right, of a polyline the one
/// to the right of its direction. Empty when there is none (a circle that would vanish).
std::vector<RecordId> offsetEntity(Drawing& drawing, RecordId entity, double distance);

}  // namespace drafthost
