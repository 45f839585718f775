// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Extents.h"

namespace drafthost {

// The view of model space: the first VPORT record named *ACTIVE (centre 12/22 in display coordinates, height
// 40, aspect 41), with $VIEWCTR and $VIEWSIZE beside it in old drawings. In a layout it is the first VIEWPORT
// of the paper space (centre 12/22, height 45).

struct View {
    Point center;
    double height = 1;
    double aspect = 1;  ///< width to height
};

/// Whether the model tab is current ($TILEMODE).
bool modelIsCurrent(const Drawing& drawing);
/// Whether model space is worked in: in the model tab, or through a viewport of a layout.
bool modelSpaceIsCurrent(const Drawing& drawing);
/// The current view; a plain one around the limits when the drawing has none.
View currentView(const Drawing& drawing);
/// Sets the current view; the VPORT record is made when absent, from R13 on.
void setView(Drawing& drawing, const View& view);
/// ZOOM Extents: computes the extents of the current space, writes them to $EXTMIN and $EXTMAX ($PEXTMIN and
/// $PEXTMAX in paper space) and to the layout, and fits the view around them. An empty drawing gets +1e20 and
/// -1e20, and its limits as the view. Returns the extents.
Extents zoomExtents(Drawing& drawing);
/// The part of zoomExtents without the view (REGEN): extents of the current space into the header.
Extents updateExtents(Drawing& drawing);
/// The view that shows `extents` with the aspect of `view`; `margin` is a factor on the height.
View fitView(const View& view, const Extents& extents, double margin);

}  // namespace drafthost
