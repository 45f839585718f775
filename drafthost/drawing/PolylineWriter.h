// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "drafthost/drawing/EntityCopy.h"

namespace drafthost {

/// A corner of a polyline with what it gives to the segment behind it.
struct WideVertex {
    Point place;  ///< in the plane of the polyline; z counts once, as its elevation
    double bulge = 0;
    double startWidth = 0;
    double endWidth = 0;
};

/// The corners of a polyline of either kind that lies in a plane.
std::vector<WideVertex> wideVertices(const Drawing& drawing, RecordId polyline);

/// A polyline with the given groups for layer and looks, in the form that the version has: LWPOLYLINE from
/// R14 on, POLYLINE before. NoRecord when there is no such place.
RecordId addPolyline(Drawing& drawing, const BlockTarget& target, const std::vector<WideVertex>& vertices,
                     bool closed, const Point& extrusion);
/// Replaces the corners of a polyline; its other groups stay.
void setVertices(Drawing& drawing, RecordId polyline, const std::vector<WideVertex>& vertices, bool closed);
/// Puts a POLYLINE in the place of an LWPOLYLINE, for drawings that have no such thing.
RecordId asOldPolyline(Drawing& drawing, RecordId light);
/// Layer, colour, linetype, lineweight and the like of one entity on another; a group that it has not goes.
void takeLooks(Drawing& drawing, RecordId from, RecordId to);

}  // namespace drafthost
