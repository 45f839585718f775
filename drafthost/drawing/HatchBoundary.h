// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// One closed boundary of a hatch: its groups as the HATCH entity holds them, and its course in corners.
struct HatchLoop {
    std::vector<std::pair<int, double>> groups;  ///< from behind the flags (92) on
    bool polyline = true;
    double elevation = 0;
    std::vector<Point> outline;
    double area = 0;
    std::vector<RecordId> sources;
};

/// The boundaries that entities of the plane of the drawing form: closed ones by themselves, lines and arcs
/// where they join end to end, with gaps of `fuzz` at most.
std::vector<HatchLoop> hatchLoops(const Drawing& drawing, const std::vector<RecordId>& entities, double fuzz);
/// The boundary along corners, straight from one to the next and back to the first.
HatchLoop polygonLoop(const std::vector<Point>& corners);
bool isInside(const HatchLoop& loop, const Point& place);
/// Whether the second loop lies within the first.
bool encloses(const HatchLoop& outer, const HatchLoop& inner);

/// Which boundaries inside others end the hatch; the numbers are those of group 75.
enum class IslandStyle { Normal = 0, Outer = 1, Ignore = 2 };

/// Of boundaries those that a hatch with such islands has.
std::vector<HatchLoop> withIslands(const std::vector<HatchLoop>& all, IslandStyle style);
/// The boundary around a place with what lies in it; empty when there is none.
std::vector<HatchLoop> loopsAround(const std::vector<HatchLoop>& all, const Point& place, IslandStyle style);

/// Writes the groups of an AcDbHatch that has no boundaries and is solid, behind those that all entities
/// have.
void beginHatch(Drawing& drawing, RecordId hatch, double elevation, IslandStyle style, const Point& seed);
/// Adds boundaries behind those that the hatch has.
void addHatchLoops(Drawing& drawing, RecordId hatch, const std::vector<HatchLoop>& loops);

}  // namespace drafthost
