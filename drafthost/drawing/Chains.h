// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "drafthost/drawing/PolylineWriter.h"

namespace drafthost {

/// A line, arc or plane polyline as one run of corners in its plane.
struct Run {
    std::vector<WideVertex> vertices;
    bool closed = false;
    Point extrusion{0, 0, 1};
};
/// Nothing for other entities, for meshes and for polylines that do not lie in a plane.
std::optional<Run> runOf(const Drawing& drawing, RecordId entity);
/// Turns a run round.
void reverse(Run& run);
/// Hangs pieces of the same plane on the ends of a run as long as one fits, within `fuzz`; the numbers of
/// those that were taken. The run closes when its ends meet.
std::vector<std::size_t> joinRuns(Run& run, const std::vector<std::optional<Run>>& pieces, double fuzz);

}  // namespace drafthost
