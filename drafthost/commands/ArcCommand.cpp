// SPDX-License-Identifier: GPL-3.0-or-later
// ARC by any three things that tell one.

#include <cmath>
#include <numbers>

#include "drafthost/commands/CircleGeometry.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

using Found = std::optional<PlaneArc>;

double directionTo(const Point& from, const Point& to) {
    return std::atan2(to.y - from.y, to.x - from.x);
}

/// Centre and start are given: the end, the angle or the chord is missing.
Task<Found> askEndAround(CommandContext& context, Point center, Point start) {
    const double radius = std::hypot(start.x - center.x, start.y - center.y);
    const double from = directionTo(center, start);
    if (!(radius > 0)) {
        co_return std::nullopt;
    }
    auto end = co_await context.point("Specify end point of arc",
                                      {.keywords = "Angle Length", .noEmpty = true, .base = center});
    if (end.isKeyword("Angle")) {
        auto angle = co_await context.angle("Specify included angle", {.noEmpty = true, .base = center});
        const bool left = angle.real > 0;
        co_return PlaneArc{center, radius, left ? from : from + angle.real, left ? from + angle.real : from};
    }
    if (end.isKeyword("Length")) {
        auto chord = co_await context.distance("Specify length of chord", {.noEmpty = true, .base = start});
        const double share = std::fabs(chord.real) / 2 / radius;
        if (!(share > 0) || share > 1) {
            co_return std::nullopt;
        }
        const double included = 2 * std::asin(share);
        const double turn = chord.real > 0 ? included : 2 * std::numbers::pi - included;
        co_return PlaneArc{center, radius, from, from + turn};
    }
    co_return PlaneArc{center, radius, from, directionTo(center, end.point)};
}

/// Both ends are given.
Task<Found> askBetween(CommandContext& context, Point start, Point end) {
    auto middle =
        co_await context.point("Specify center point of arc",
                               {.keywords = "Angle Direction Radius", .noEmpty = true, .base = start});
    if (middle.isKeyword("Angle")) {
        auto angle = co_await context.angle("Specify included angle", {.noEmpty = true, .base = start});
        co_return arcByAngle(start, end, angle.real);
    }
    if (middle.isKeyword("Direction")) {
        auto angle = co_await context.angle("Specify tangent direction for the start point of arc",
                                            {.noEmpty = true, .base = start});
        co_return arcByDirection(start, end, angle.real);
    }
    if (middle.isKeyword("Radius")) {
        auto radius = co_await context.distance("Specify radius of arc", {.noEmpty = true, .base = end});
        co_return arcByRadius(start, end, radius.real);
    }
    const double radius = std::hypot(start.x - middle.point.x, start.y - middle.point.y);
    co_return PlaneArc{middle.point, radius, directionTo(middle.point, start),
                       directionTo(middle.point, end)};
}

Task<Found> askArc(CommandContext& context) {
    auto start = co_await context.point("Specify start point of arc", {.keywords = "Center"});
    if (start.isKeyword()) {
        auto center = co_await context.point("Specify center point of arc", {.noEmpty = true});
        start = co_await context.point("Specify start point of arc", {.noEmpty = true, .base = center.point});
        co_return co_await askEndAround(context, center.point, start.point);
    }
    if (start.isEnter()) {
        const Point from = ucsFromWorld(context.document().drawing(), context.document().memory().lineEnd);
        auto end = co_await context.point("Specify end point of arc", {.noEmpty = true, .base = from});
        co_return arcByDirection(from, end.point, context.document().memory().lineDirection);
    }
    auto second = co_await context.point("Specify second point of arc",
                                         {.keywords = "Center End", .noEmpty = true, .base = start.point});
    if (second.isKeyword("Center")) {
        auto center =
            co_await context.point("Specify center point of arc", {.noEmpty = true, .base = start.point});
        co_return co_await askEndAround(context, center.point, start.point);
    }
    if (second.isKeyword("End")) {
        auto end = co_await context.point("Specify end point of arc", {.noEmpty = true, .base = start.point});
        co_return co_await askBetween(context, start.point, end.point);
    }
    auto end = co_await context.point("Specify end point of arc", {.noEmpty = true, .base = start.point});
    co_return arcThrough(start.point, second.point, end.point);
}

}  // namespace

CommandTask arcCommand(CommandContext& context) {
    auto arc = co_await askArc(context);
    if (!arc || !(arc->radius > 0)) {
        context.fail("There is no arc like that.");
        co_return;
    }
    DrawnEntity drawn(context, "ARC", "AcDbCircle");
    drawn.planar(10, arc->center).real(40, arc->radius);
    drawn.mark("AcDbArc").direction(50, arc->from).direction(51, arc->to).finish();
    CommandMemory& memory = context.document().memory();
    memory.lineEnd = worldFromUcs(context.document().drawing(),
                                  arc->center + Point{std::cos(arc->to), std::sin(arc->to), 0} * arc->radius);
    memory.lineDirection = arc->to + std::numbers::pi / 2;
}

}  // namespace drafthost::commands
