// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/View.h"

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Structure.h"
#include "drafthost/drawing/Transform.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace drafthost {

namespace {

// A hair of space around what is shown, so that lines at its edge are seen.
constexpr double ExtentsMargin = 1.02;

// The paper space viewport with number 1 is the view of the layout itself.
RecordId paperView(const Drawing& drawing) {
    for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
        const Record record = drawing.record(id);
        if (record.type() != "VIEWPORT") {
            continue;
        }
        const Layout* layout = layoutOf(drawing, id);
        if (record.integerOr(69, 0) == 1 && layout != nullptr && !layout->model) {
            return id;
        }
    }
    return NoRecord;
}

RecordId activeViewport(const Drawing& drawing) {
    return findEntry(drawing, Table::Vport, "*ACTIVE");
}

View around(const Point& low, const Point& high, double aspect) {
    View view;
    view.center = (low + high) * 0.5;
    view.center.z = 0;
    view.aspect = aspect;
    view.height = std::max(high.y - low.y, (high.x - low.x) / aspect);
    return view;
}

double saneAspect(double aspect) {
    return aspect > 1e-6 && aspect < 1e6 ? aspect : 1;
}

// From world to display coordinates of a viewport: seen along its direction, turned by its twist, around its
// target.
Transform toDisplay(const Record& viewport) {
    const Transform system = Transform::ofExtrusion(viewport.pointOr(16, {0, 0, 1}));
    const Transform seen{{system.x.x, system.y.x, system.z.x},
                         {system.x.y, system.y.y, system.z.y},
                         {system.x.z, system.y.z, system.z.z},
                         {}};
    const double twist = viewport.realOr(51, 0) * std::numbers::pi / 180;
    return Transform::rotation(twist) * seen * Transform::translation(viewport.pointOr(17, {}) * -1);
}

Extents displayed(const Extents& extents, const Transform& transform) {
    Extents result;
    for (int corner = 0; corner < 8; ++corner) {
        result.add(transform({(corner & 1) != 0 ? extents.max.x : extents.min.x,
                              (corner & 2) != 0 ? extents.max.y : extents.min.y,
                              (corner & 4) != 0 ? extents.max.z : extents.min.z}));
    }
    return result;
}

void setExistingPoint(Drawing& drawing, std::string_view name, const Point& point) {
    const auto variable = headerVariable(drawing, name);
    setHeaderPoint(drawing, name, point, variable ? variable->reals : 3);
}

void setLayoutExtents(Drawing& drawing, bool paper, const Extents& extents) {
    for (const Layout& layout : layouts(drawing)) {
        const std::string block = foldCase(layout.blockName);
        if (layout.object == NoRecord || (paper ? block != "*paper_space" : !layout.model)) {
            continue;
        }
        const RecordId object = layout.object;
        drawing.putPoint(object, 14, extents.min, true, {32, 22, 21});
        drawing.putPoint(object, 15, extents.max, true, {34});
        return;
    }
}

}  // namespace

bool modelIsCurrent(const Drawing& drawing) {
    return headerInteger(drawing, "$TILEMODE", 1) != 0;
}

bool modelSpaceIsCurrent(const Drawing& drawing) {
    return modelIsCurrent(drawing) || drawing.activeViewport() != NoRecord;
}

View currentView(const Drawing& drawing) {
    const bool model = modelIsCurrent(drawing);
    const RecordId id = model ? activeViewport(drawing) : paperView(drawing);
    if (id != NoRecord) {
        const Record record = drawing.record(id);
        View view;
        view.center = record.pointOr(12, {});
        view.center.z = 0;
        view.height = record.realOr(model ? 40 : 45, 1);
        const double tall = record.realOr(41, 1);
        view.aspect = saneAspect(model ? tall : record.realOr(40, 1) / (tall == 0 ? 1 : tall));
        if (view.height > 0) {
            return view;
        }
    }
    const Point low = headerPoint(drawing, model ? "$LIMMIN" : "$PLIMMIN", {0, 0, 0});
    const Point high = headerPoint(drawing, model ? "$LIMMAX" : "$PLIMMAX", {12, 9, 0});
    View view = around(low, high, 1);
    view.center = headerPoint(drawing, "$VIEWCTR", view.center);
    view.height = headerReal(drawing, "$VIEWSIZE", view.height);
    view.height = view.height > 0 ? view.height : 1;
    return view;
}

void setView(Drawing& drawing, const View& view) {
    if (!modelIsCurrent(drawing)) {
        const RecordId id = paperView(drawing);
        if (id == NoRecord) {
            return;
        }
        drawing.putPoint(id, 12, view.center, false, {68, 69});
        drawing.put(id, 45, view.height, {44, 43});
        drawing.putPoint(id, 10, view.center, false);
        drawing.put(id, 40, view.height * view.aspect);
        drawing.put(id, 41, view.height);
        return;
    }
    RecordId id = activeViewport(drawing);
    if (id == NoRecord && drawing.versionNumber() >= 1012) {
        id = addEntry(drawing, Table::Vport, "*ACTIVE");
        if (id != NoRecord) {
            drawing.put(id, 41, view.aspect);
        }
    }
    if (id != NoRecord) {
        drawing.putPoint(id, 12, view.center, false, {21, 11});
        drawing.put(id, 40, view.height, {37, 27, 17});
    }
    if (headerVariable(drawing, "$VIEWCTR")) {
        setExistingPoint(drawing, "$VIEWCTR", view.center);
    }
    if (headerVariable(drawing, "$VIEWSIZE")) {
        setHeader(drawing, "$VIEWSIZE", 40, view.height);
    }
}

View fitView(const View& view, const Extents& extents, double margin) {
    const View shown = around(extents.min, extents.max, saneAspect(view.aspect));
    View result = shown;
    result.height = shown.height > 0 ? shown.height * margin : view.height;
    return result;
}

Extents updateExtents(Drawing& drawing) {
    const bool paper = !modelIsCurrent(drawing);
    const Extents extents = computeExtents(drawing, paper);
    // A drawing without a header is not given one for this.
    if (drawing.structure().header != NoRecord) {
        setExistingPoint(drawing, paper ? "$PEXTMIN" : "$EXTMIN", extents.min);
        setExistingPoint(drawing, paper ? "$PEXTMAX" : "$EXTMAX", extents.max);
    }
    setLayoutExtents(drawing, paper, extents);
    return extents;
}

Extents zoomExtents(Drawing& drawing) {
    const Extents extents = updateExtents(drawing);
    const bool model = modelIsCurrent(drawing);
    const View view = currentView(drawing);
    Extents shown = extents;
    double margin = ExtentsMargin;
    if (extents.empty()) {
        shown.add(headerPoint(drawing, model ? "$LIMMIN" : "$PLIMMIN", {0, 0, 0}));
        shown.add(headerPoint(drawing, model ? "$LIMMAX" : "$PLIMMAX", {12, 9, 0}));
        margin = 1;
    }
    const RecordId viewport = model ? activeViewport(drawing) : NoRecord;
    if (viewport != NoRecord) {
        shown = displayed(shown, toDisplay(drawing.record(viewport)));
    }
    setView(drawing, fitView(view, shown, margin));
    return extents;
}

}  // namespace drafthost
