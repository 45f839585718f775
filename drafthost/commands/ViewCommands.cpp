// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/commands/UserSystem.h"
#include "drafthost/commands/ViewCommands.h"
#include "drafthost/commands/ViewGeometry.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"
#include "drafthost/lisp/Arguments.h"

namespace drafthost::commands {

namespace {

/// Views kept for ZOOM Previous.
constexpr size_t ViewStackDepth = 10;
constexpr double ScreenMargin = 1.05;

bool sameView(const View& a, const View& b) {
    return a.center == b.center && a.height == b.height && a.aspect == b.aspect;
}

/// Sets the view. The one left can be had back by Previous unless `remember` is false.
void changeView(Document& document, const View& view, bool remember = true) {
    Drawing& drawing = document.drawing();
    View old = currentView(drawing);
    if (sameView(old, view)) {
        return;
    }
    if (remember) {
        auto& stack = document.previousViews();
        if (stack.size() == ViewStackDepth) {
            stack.erase(stack.begin());
        }
        stack.push_back({{old.center.x, old.center.y}, old.height, old.height * old.aspect});
    }
    setView(drawing, view);
    document.setModified(ModifiedView);
}

Extents limits(const Drawing& drawing) {
    bool model = modelIsCurrent(drawing);
    Extents box;
    Point low = headerPoint(drawing, model ? "$LIMMIN" : "$PLIMMIN", {0, 0, 0});
    Point high = headerPoint(drawing, model ? "$LIMMAX" : "$PLIMMAX", {12, 9, 0});
    box.add(Point{std::min(low.x, high.x), std::min(low.y, high.y), 0});
    box.add(Point{std::max(low.x, high.x), std::max(low.y, high.y), 0});
    return box;
}

/// The box in display coordinates made the view, as a factor larger. It fits the window where there is one,
/// else the aspect that the drawing keeps. A box without height and width keeps the view's height.
void showBox(Document& document, const Extents& box, double margin = 1.0) {
    View view = currentView(document.drawing());
    if (box.max.x > box.min.x || box.max.y > box.min.y) {
        const double aspect = view.aspect;
        view.aspect = document.host().screenAspect().value_or(aspect);
        view = fitView(view, box, margin);
        view.aspect = aspect;
    } else {
        view.center = {box.min.x, box.min.y, view.center.z};
    }
    changeView(document, view);
}

/// Brings the header's extents up to date. They follow from the drawing, so this changes no more of it than
/// looking at it does.
Extents refreshExtents(Document& document) {
    ChangeWatch watch(document, ModifiedView);
    return updateExtents(document.drawing());
}

void zoomToExtents(Document& document, bool withLimits) {
    Drawing& drawing = document.drawing();
    Extents box = displayExtents(drawing, refreshExtents(document));
    if (withLimits || box.empty()) {
        box.add(displayExtents(drawing, limits(drawing)));
    }
    // On a screen, lines at the very edge of the window are not seen.
    showBox(document, box, document.host().screenAspect() ? ScreenMargin : 1.0);
}

void zoomToWindow(CommandContext& context, const Point& first, const Point& second) {
    const Drawing& drawing = context.document().drawing();
    Extents box;
    box.add(displayFromUcs(drawing, first));
    box.add(displayFromUcs(drawing, second));
    if (!(box.max.x > box.min.x) && !(box.max.y > box.min.y)) {
        context.fail("The window has no size.");
        return;
    }
    showBox(context.document(), box);
}

/// Height in paper units of what shows the drawing on the sheet; nothing in model space, which has no sheet.
std::optional<double> sheetHeight(const Drawing& drawing) {
    if (modelIsCurrent(drawing)) {
        return std::nullopt;
    }
    for (RecordId entity = firstEntity(drawing); entity != NoRecord;
         entity = nextEntity(drawing, entity, false)) {
        Record record = drawing.record(entity);
        if (record.type() == "VIEWPORT" && record.integerOr(67, 0) == 1) {
            double height = record.realOr(41, 0);
            return height > 0 ? std::optional(height) : std::nullopt;
        }
    }
    return std::nullopt;
}

enum class ScaleKind { Limits, View, Paper };
struct Scale {
    double factor = 1;
    ScaleKind kind = ScaleKind::Limits;
};

/// Reads n, nX or nXP with n over 0.
std::optional<Scale> readScale(std::string_view text, const automation::ReadingRules& rules) {
    Scale scale;
    auto endsWith = [&](std::string_view tail) {
        return text.size() > tail.size() &&
               foldCase(text.substr(text.size() - tail.size())) == foldCase(tail);
    };
    if (endsWith("XP")) {
        scale.kind = ScaleKind::Paper;
        text.remove_suffix(2);
    } else if (endsWith("X")) {
        scale.kind = ScaleKind::View;
        text.remove_suffix(1);
    }
    auto factor = automation::readNumber(text, rules);
    if (!factor || !(*factor > 0)) {
        return std::nullopt;
    }
    scale.factor = *factor;
    return scale;
}

/// The height that the scale asks for; nothing when the current space has no such scale.
std::optional<double> scaledHeight(const Drawing& drawing, const View& view, const Scale& scale) {
    switch (scale.kind) {
        case ScaleKind::View:
            return view.height / scale.factor;
        case ScaleKind::Limits:
            return fitView(view, limits(drawing), 1.0).height / scale.factor;
        case ScaleKind::Paper:
            break;
    }
    auto sheet = sheetHeight(drawing);
    return sheet ? std::optional(*sheet / scale.factor) : std::nullopt;
}

void zoomToScale(CommandContext& context, const Scale& scale) {
    View view = currentView(context.document().drawing());
    auto height = scaledHeight(context.document().drawing(), view, scale);
    if (!height) {
        context.fail("A scale by XP needs a layout with a viewport; the current tab has none.");
        return;
    }
    view.height = *height;
    changeView(context.document(), view);
}

automation::ReadingRules rulesOf(CommandContext& context) {
    return automation::readingRules(context.document().lisp());
}

std::optional<Scale> scaleOf(CommandContext& context, const Answer& answer) {
    if (answer.value.isNumber()) {
        double number = answer.value.toDouble();
        return number > 0 ? std::optional(Scale{number, ScaleKind::Limits}) : std::nullopt;
    }
    return answer.value.isNil() ? readScale(answer.text, rulesOf(context)) : std::nullopt;
}

CommandTask zoomScale(CommandContext& context) {
    for (;;) {
        auto answer = co_await context.input("Enter a scale factor (nX or nXP)", {.noEmpty = true});
        if (auto scale = scaleOf(context, answer)) {
            zoomToScale(context, *scale);
            co_return;
        }
        context.complain("\"" + answer.text +
                         "\" is not a scale: give a number over 0, with X or XP behind it if need be.");
    }
}

CommandTask zoomCenter(CommandContext& context) {
    Document& document = context.document();
    auto center = co_await context.point("Specify center point", {.noEmpty = true});
    for (;;) {
        View view = currentView(document.drawing());
        auto answer =
            co_await context.input("Enter magnification or height <" + formatReal(view.height, 4) + ">");
        view.center = displayFromUcs(document.drawing(), center.point);
        view.center.z = 0;
        if (answer.isEnter()) {
            changeView(document, view);
            co_return;
        }
        auto scale = scaleOf(context, answer);
        if (!scale) {
            context.complain("\"" + answer.text + "\" is neither a height nor a magnification (nX).");
            continue;
        }
        // A bare number is the height itself here.
        auto height = scale->kind == ScaleKind::Limits ? std::optional(scale->factor)
                                                       : scaledHeight(document.drawing(), view, *scale);
        if (!height) {
            context.fail("A scale by XP needs a layout with a viewport; the current tab has none.");
            co_return;
        }
        view.height = *height;
        changeView(document, view);
        co_return;
    }
}

CommandTask zoomWindow(CommandContext& context) {
    auto first = co_await context.point("Specify first corner", {.noEmpty = true});
    auto second = co_await context.point("Specify opposite corner", {.noEmpty = true});
    zoomToWindow(context, first.point, second.point);
}

CommandTask zoomObject(CommandContext& context) {
    auto selected = co_await selectObjects(context);
    if (selected.empty()) {
        co_return;
    }
    Document& document = context.document();
    Extents box = displayExtents(document.drawing(), computeExtents(document.drawing(), selected));
    if (box.empty()) {
        context.fail("The selected objects have no extents.");
        co_return;
    }
    showBox(document, box);
}

void zoomPrevious(CommandContext& context) {
    auto& stack = context.document().previousViews();
    if (stack.empty()) {
        context.fail("There is no previous view to go back to.");
        return;
    }
    ViewState old = stack.back();
    stack.pop_back();
    View view = currentView(context.document().drawing());
    view.center = {old.center[0], old.center[1], view.center.z};
    view.height = old.height;
    changeView(context.document(), view, false);
}

}  // namespace

void showView(Document& document, const View& view) {
    changeView(document, view);
}

void lookFrom(Document& document, const Transform& ucs) {
    Drawing& drawing = document.drawing();
    const RecordId entry = modelIsCurrent(drawing) ? findEntry(drawing, Table::Vport, "*ACTIVE") : NoRecord;
    if (entry != NoRecord) {
        ChangeWatch watch(document, ModifiedView);
        const Transform plain = viewAxes({.direction = ucs.z, .target = {}, .twist = 0});
        const Point along{ucs.x.x * plain.x.x + ucs.x.y * plain.x.y + ucs.x.z * plain.x.z,
                          ucs.x.x * plain.y.x + ucs.x.y * plain.y.y + ucs.x.z * plain.y.z, 0};
        drawing.putPoint(entry, 16, ucs.z, true);
        drawing.putPoint(entry, 17, ucs.origin, true);
        // The picture turns against the UCS.
        drawing.put(entry, 51, directionInDegrees(-std::atan2(along.y, along.x)));
    }
    zoomToExtents(document, false);
}

Transform viewSystem(const Drawing& drawing) {
    Transform ucs = viewAxes(viewPlane(drawing));
    ucs.origin = ucsTransform(drawing).origin;
    return ucs;
}

CommandTask regenCommand(CommandContext& context) {
    refreshExtents(context.document());
    co_return;
}

CommandTask regenAllCommand(CommandContext& context) {
    refreshExtents(context.document());
    co_return;
}

CommandTask redrawCommand(CommandContext&) {
    // The picture is drawn by whoever shows the drawing; without a window there is nothing to draw anew.
    co_return;
}

CommandTask zoomCommand(CommandContext& context) {
    for (;;) {
        auto answer =
            co_await context.input("Specify corner of window, enter a scale factor (nX or nXP)",
                                   {.keywords = "All Center Dynamic Extents Previous Scale Window Object"});
        if (answer.isEnter()) {
            context.fail("Real-time zoom needs a mouse.");
        } else if (answer.isKeyword("All")) {
            zoomToExtents(context.document(), true);
        } else if (answer.isKeyword("Center")) {
            co_await zoomCenter(context);
        } else if (answer.isKeyword("Dynamic")) {
            context.fail("ZOOM Dynamic needs a mouse.");
        } else if (answer.isKeyword("Extents")) {
            zoomToExtents(context.document(), false);
        } else if (answer.isKeyword("Previous")) {
            zoomPrevious(context);
        } else if (answer.isKeyword("Scale")) {
            co_await zoomScale(context);
        } else if (answer.isKeyword("Window")) {
            co_await zoomWindow(context);
        } else if (answer.isKeyword("Object")) {
            co_await zoomObject(context);
        } else if (auto scale = scaleOf(context, answer)) {
            zoomToScale(context, *scale);
        } else if (auto corner = answer.value.isNil() ? automation::readPoint(answer.text, rulesOf(context))
                                                      : lisp::toPoint(answer.value)) {
            auto second =
                co_await context.point("Specify opposite corner", {.noEmpty = true, .base = *corner});
            zoomToWindow(context, *corner, second.point);
        } else {
            context.complain(
                "\"" + answer.text +
                "\" is neither a point, a scale nor one of the options All, Center, Dynamic, Extents, "
                "Previous, Scale, Window, Object.");
            continue;
        }
        co_return;
    }
}

}  // namespace drafthost::commands
