// SPDX-License-Identifier: GPL-3.0-or-later
// MVIEW: viewports of a layout made, switched and locked.

#include <cmath>
#include <functional>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/LayoutSwitch.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Extents.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "drafthost/drawing/ViewportLayers.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

constexpr std::int64_t Locked = 0x4000;
constexpr std::int64_t Off = 0x20000;

int freeNumber(const Drawing& drawing) {
    int number = 1;
    for (const RecordId id : layoutViewports(drawing)) {
        number = std::max(number, static_cast<int>(drawing.record(id).integerOr(69, 1)));
    }
    return number + 1;
}

/// A viewport on the sheet that shows the whole of model space.
void addViewport(CommandContext& context, const Point& a, const Point& b) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    const double width = std::fabs(a.x - b.x);
    const double height = std::fabs(a.y - b.y);
    if (!(width > 0) || !(height > 0)) {
        context.fail("The viewport has no size.");
        return;
    }
    ChangeWatch watch(document, ModifiedObjects);
    View view;
    view.aspect = width / height;
    const Extents shown = computeExtents(drawing, false);
    view = shown.empty() ? View{{0, 0, 0}, height, view.aspect} : fitView(view, shown, 1.0);
    const int number = freeNumber(drawing);
    DrawnEntity entity(context, "VIEWPORT", "AcDbViewport");
    entity.point(10, {(a.x + b.x) / 2, (a.y + b.y) / 2, 0}).real(40, width).real(41, height);
    entity.integer(68, number).integer(69, number);
    if (drawing.versionNumber() < 1015) {
        return;
    }
    constexpr std::int64_t Shown = 32864;
    entity.flat(12, {view.center.x, view.center.y, 0})
        .flat(13, {})
        .flat(14, {10, 10, 0})
        .flat(15, {10, 10, 0});
    entity.point(16, {0, 0, 1}).point(17, {}).real(42, 50).real(43, 0).real(44, 0).real(45, view.height);
    entity.real(50, 0).real(51, 0).integer(72, 1000).integer(90, Shown).text(1, "").integer(281, 0).integer(
        71, 1);
    entity.integer(74, 0).point(110, {}).point(111, {1, 0, 0}).point(112, {0, 1, 0}).integer(79, 0);
}

Task<bool> forViewports(CommandContext& context, std::function<void(Drawing&, RecordId)> change) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    Document& document = context.document();
    ChangeWatch watch(document, ModifiedObjects);
    for (const RecordId id : selected) {
        if (document.drawing().type(id) == "VIEWPORT" && id != sheetViewport(document.drawing())) {
            change(document.drawing(), id);
        }
    }
    co_return true;
}

void setStatus(Drawing& drawing, RecordId id, std::int64_t bit, bool on) {
    if (drawing.versionNumber() >= 1015) {
        const std::int64_t flags = drawing.record(id).integerOr(90, 0);
        drawing.put(id, 90, on ? flags | bit : flags & ~bit, {331, 72});
    }
}

void switchViewport(Drawing& drawing, RecordId id, bool on) {
    setStatus(drawing, id, Off, !on);
    drawing.put(id, 68, on ? drawing.record(id).integerOr(69, 2) : std::int64_t{0});
}

void dropOverrides(Drawing& drawing, RecordId viewport) {
    for (const RecordId layer : tableEntries(drawing, Table::Layer)) {
        for (const LayerOverride kind : {LayerOverride::Color, LayerOverride::Linetype,
                                         LayerOverride::Lineweight, LayerOverride::Transparency}) {
            setOverride(drawing, viewport, layer, kind, std::nullopt);
        }
    }
}

/// The whole paper, as the limits of the sheet tell it.
void fitSheet(CommandContext& context) {
    const Drawing& drawing = context.document().drawing();
    const Point low = headerPoint(drawing, "$PLIMMIN", {});
    const Point high = headerPoint(drawing, "$PLIMMAX", {12, 9, 0});
    addViewport(context, low, high);
}

}  // namespace

CommandTask mviewCommand(CommandContext& context) {
    if (modelIsCurrent(context.document().drawing())) {
        context.complain("** Command not allowed in Model Tab **");
        co_return;
    }
    // What is drawn here lies on the sheet.
    context.document().drawing().setActiveViewport(NoRecord);
    auto answer = co_await context.point(
        "Specify corner of viewport",
        {.keywords = "ON OFF Fit Shadeplot Lock Object Polygonal Restore LAyer 2 3 4", .defaultText = "Fit"});
    if (answer.hasValue()) {
        auto opposite =
            co_await context.point("Specify opposite corner", {.noEmpty = true, .base = answer.point});
        addViewport(context, answer.point, opposite.point);
        context.printLine("Regenerating model.");
    } else if (answer.isKeyword("ON") || answer.isKeyword("OFF")) {
        const bool on = answer.isKeyword("ON");
        std::function<void(Drawing&, RecordId)> change = [on](Drawing& drawing, RecordId id) {
            switchViewport(drawing, id, on);
        };
        co_await forViewports(context, change);
    } else if (answer.isKeyword("Fit")) {
        fitSheet(context);
        context.printLine("Regenerating model.");
    } else if (answer.isKeyword("Lock")) {
        auto state = co_await context.keyword("Viewport View Locking", "ON OFF", "ON");
        const bool on = state.isKeyword("ON");
        std::function<void(Drawing&, RecordId)> change = [on](Drawing& drawing, RecordId id) {
            setStatus(drawing, id, Locked, on);
        };
        co_await forViewports(context, change);
    } else if (answer.isKeyword("Shadeplot")) {
        auto how = co_await context.keyword("Shade plot?", "As Wireframe Hidden Visual Rendered", "As");
        if (how.isKeyword("Visual")) {
            context.fail("Visual styles of viewports are not set here.");
            co_return;
        }
        const std::int64_t mode = how.isKeyword("Wireframe")  ? 1
                                  : how.isKeyword("Hidden")   ? 2
                                  : how.isKeyword("Rendered") ? 3
                                                              : 0;
        std::function<void(Drawing&, RecordId)> change = [mode](Drawing& drawing, RecordId id) {
            if (drawing.versionNumber() >= 1018) {
                drawing.put(id, 170, mode);
            }
        };
        co_await forViewports(context, change);
    } else if (answer.isKeyword("LAyer")) {
        bool reset = co_await askYesNo(
            context, "Reset viewport layer property overrides back to global properties?", false);
        std::function<void(Drawing&, RecordId)> change = [reset](Drawing& drawing, RecordId id) {
            if (reset) {
                dropOverrides(drawing, id);
            }
        };
        co_await forViewports(context, change);
    } else {
        context.fail("Viewports of the form " + answer.keyword +
                     " are not made here; give two corners or Fit.");
    }
}

}  // namespace drafthost::commands
