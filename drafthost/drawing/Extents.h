// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// Extents are computed from the entities, never taken from the header: this is what ZOOM Extents and REGEN
// are for. Text is measured by a box of its height and an average character width, as fonts are not read;
// splines by their fit or control points. Rays and construction lines have no extents, nor have solids, whose
// geometry is sealed in modeller data. Layers that are off count, frozen ones do not.

/// Width of a character in heights, on average: fonts are not read.
inline constexpr double AverageCharacterWidth = 0.8;

struct Extents {
    Point min{1e20, 1e20, 1e20};
    Point max{-1e20, -1e20, -1e20};
    bool empty() const { return min.x > max.x; }
    /// Widens by a point; one with a coordinate that is no finite number, or not within 1e20, is left out.
    void add(const Point& point);
    void add(const Extents& other);
};

/// Extents of model space, or of the active paper space, in world coordinates.
Extents computeExtents(const Drawing& drawing, bool paper = false);
/// Extents of some entities of one space (ZOOM Object).
Extents computeExtents(const Drawing& drawing, const std::vector<RecordId>& entities);

}  // namespace drafthost
