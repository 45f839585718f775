// SPDX-License-Identifier: GPL-3.0-or-later
// PLINE: lines and arcs drawn as one.

#include <cmath>
#include <numbers>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/CircleGeometry.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/drawing/PolylineWriter.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

/// What has been drawn so far, in the UCS.
struct Sketch {
    std::vector<WideVertex> vertices;
    double startWidth = 0;
    double endWidth = 0;
    bool closed = false;
    bool arcs = false;

    const Point& end() const { return vertices.back().place; }
    /// Where the last segment points to at its end.
    double direction(double standard) const {
        if (vertices.size() < 2) {
            return standard;
        }
        const WideVertex& from = vertices[vertices.size() - 2];
        const Point along = end() - from.place;
        return std::atan2(along.y, along.x) + 2 * std::atan(from.bulge);
    }
    void add(const Point& to, double bulge) {
        vertices.back().bulge = bulge;
        vertices.back().startWidth = startWidth;
        vertices.back().endWidth = endWidth;
        startWidth = endWidth;
        vertices.push_back({to, 0, 0, 0});
    }
    void close(double bulge) {
        vertices.back().bulge = bulge;
        vertices.back().startWidth = startWidth;
        vertices.back().endWidth = endWidth;
        closed = true;
    }
};

Task<bool> askWidths(CommandContext& context, Sketch& sketch, bool half) {
    const double share = half ? 2 : 1;
    const std::string now = formatReal(sketch.startWidth / share, 4);
    auto start = co_await context.distance(half ? "Specify starting half-width" : "Specify starting width",
                                           {.defaultText = now, .minimum = 0, .base = sketch.end()});
    sketch.startWidth = start.real * share;
    const std::string same = formatReal(start.real, 4);
    auto end = co_await context.distance(half ? "Specify ending half-width" : "Specify ending width",
                                         {.defaultText = same, .minimum = 0, .base = sketch.end()});
    sketch.endWidth = (formatReal(end.real, 4) == same ? start.real : end.real) * share;
    co_return true;
}

/// The included angle of an arc that leaves in a direction and reaches a point.
double includedTo(const Point& from, double direction, const Point& to) {
    return 2 * std::remainder(std::atan2(to.y - from.y, to.x - from.x) - direction, 2 * std::numbers::pi);
}

double includedOf(const PlaneArc& arc, const Point& start) {
    const double turn = turnBetween(arc.from, arc.to);
    const double first = std::atan2(start.y - arc.center.y, start.x - arc.center.x);
    const bool left = std::fabs(std::remainder(first - arc.from, 2 * std::numbers::pi)) < 1e-6;
    return left ? turn : -turn;
}

struct NextArc {
    Point to;
    double included = 0;
};
using MaybeArc = std::optional<NextArc>;

/// A centre is given: the end on the arc around it, or an angle.
Task<MaybeArc> askAround(CommandContext& context, Sketch& sketch, Point center) {
    const Point start = sketch.end();
    const double radius = std::hypot(start.x - center.x, start.y - center.y);
    const double from = std::atan2(start.y - center.y, start.x - center.x);
    auto end = co_await context.point("Specify endpoint of arc",
                                      {.keywords = "Angle Length", .noEmpty = true, .base = center});
    double included = 0;
    if (end.isKeyword("Angle")) {
        auto angle = co_await context.angle("Specify included angle", {.noEmpty = true, .base = center});
        included = angle.real;
    } else if (end.isKeyword("Length")) {
        auto chord = co_await context.distance("Specify length of chord", {.noEmpty = true, .base = start});
        included = 2 * std::asin(std::min(1.0, chord.real / 2 / radius));
    } else {
        included = turnBetween(from, std::atan2(end.point.y - center.y, end.point.x - center.x));
    }
    const double to = from + included;
    co_return NextArc{{center.x + radius * std::cos(to), center.y + radius * std::sin(to), start.z},
                      included};
}

Task<MaybeArc> askByAngle(CommandContext& context, Sketch& sketch) {
    auto angle = co_await context.angle("Specify included angle", {.noEmpty = true, .base = sketch.end()});
    auto end = co_await context.point("Specify endpoint of arc",
                                      {.keywords = "CEnter Radius", .noEmpty = true, .base = sketch.end()});
    if (end.isKeyword("CEnter")) {
        auto center = co_await context.point("Specify center point of arc", {.noEmpty = true});
        const Point arm = sketch.end() - center.point;
        const Point to = center.point + Transform::rotation(angle.real).vector(arm);
        co_return NextArc{to, angle.real};
    }
    if (end.isKeyword("Radius")) {
        auto radius = co_await context.distance("Specify radius of arc", {.noEmpty = true});
        const double chord = 2 * radius.real * std::sin(std::fabs(angle.real) / 2);
        auto along = co_await context.angle("Specify direction of chord for arc",
                                            {.defaultText = "0", .base = sketch.end()});
        const Point to = sketch.end() + Point{chord * std::cos(along.real), chord * std::sin(along.real), 0};
        co_return NextArc{to, angle.real};
    }
    co_return NextArc{end.point, angle.real};
}

Task<MaybeArc> askArcSegment(CommandContext& context, Sketch& sketch, std::string keyword) {
    const Point start = sketch.end();
    if (keyword == "Angle") {
        co_return co_await askByAngle(context, sketch);
    }
    if (keyword == "CEnter") {
        auto center = co_await context.point("Specify center point of arc", {.noEmpty = true});
        co_return co_await askAround(context, sketch, center.point);
    }
    if (keyword == "Direction") {
        auto angle = co_await context.angle("Specify tangent direction for the start point of arc",
                                            {.noEmpty = true, .base = start});
        auto end = co_await context.point("Specify endpoint of the arc", {.noEmpty = true, .base = start});
        co_return NextArc{end.point, includedTo(start, angle.real, end.point)};
    }
    if (keyword == "Radius") {
        auto radius = co_await context.distance("Specify radius of arc", {.noEmpty = true, .base = start});
        auto end = co_await context.point("Specify endpoint of arc", {.noEmpty = true, .base = start});
        const auto arc = arcByRadius(start, end.point, radius.real);
        co_return arc ? MaybeArc(NextArc{end.point, includedOf(*arc, start)}) : std::nullopt;
    }
    auto second = co_await context.point("Specify second point on arc", {.noEmpty = true, .base = start});
    auto end = co_await context.point("Specify end point of arc", {.noEmpty = true, .base = start});
    const auto arc = arcThrough(start, second.point, end.point);
    co_return arc ? MaybeArc(NextArc{end.point, includedOf(*arc, start)}) : std::nullopt;
}

constexpr const char* LineWords = "Arc Close Halfwidth Length Undo Width";
constexpr const char* ArcWords = "Angle CEnter CLose Direction Halfwidth Line Radius Second Undo Width";

/// One answer of the round; false when the line is finished.
Task<bool> drawNext(CommandContext& context, Sketch& sketch, double startDirection) {
    auto next =
        co_await context.point(sketch.arcs ? "Specify endpoint of arc" : "Specify next point",
                               {.keywords = sketch.arcs ? ArcWords : LineWords, .base = sketch.end()});
    const double direction = sketch.direction(startDirection);
    if (next.isEnter()) {
        co_return false;
    }
    if (next.hasValue()) {
        sketch.add(next.point, sketch.arcs ? bulgeOf(includedTo(sketch.end(), direction, next.point)) : 0);
    } else if (next.isKeyword("Arc") || next.isKeyword("Line")) {
        sketch.arcs = next.isKeyword("Arc");
    } else if (next.isKeyword("Halfwidth") || next.isKeyword("Width")) {
        co_await askWidths(context, sketch, next.isKeyword("Halfwidth"));
    } else if (next.isKeyword("Length")) {
        auto length =
            co_await context.distance("Specify length of line", {.noEmpty = true, .base = sketch.end()});
        sketch.add(sketch.end() + Point{std::cos(direction), std::sin(direction), 0} * length.real, 0);
    } else if (next.isKeyword("Undo")) {
        if (sketch.vertices.size() > 1) {
            sketch.vertices.pop_back();
        } else {
            context.complain("All segments have been undone.");
        }
    } else if (next.isKeyword("Close") || next.isKeyword("CLose")) {
        if (sketch.vertices.size() < 2) {
            context.complain("There is nothing to close yet.");
            co_return true;
        }
        sketch.close(sketch.arcs ? bulgeOf(includedTo(sketch.end(), direction, sketch.vertices.front().place))
                                 : 0);
        co_return false;
    } else {
        auto arc = co_await askArcSegment(context, sketch, next.keyword);
        if (arc) {
            sketch.add(arc->to, bulgeOf(arc->included));
        } else {
            context.complain("There is no arc like that.");
        }
    }
    co_return true;
}

}  // namespace

CommandTask plineCommand(CommandContext& context) {
    Document& document = context.document();
    auto first = co_await context.point("Specify start point");
    const double width = headerReal(document.drawing(), "$PLINEWID", 0);
    const Point start =
        first.isEnter() ? ucsFromWorld(document.drawing(), document.memory().lineEnd) : first.point;
    Sketch sketch;
    sketch.vertices.push_back({start, 0, 0, 0});
    sketch.startWidth = width;
    sketch.endWidth = width;
    context.printLine("Current line-width is " + formatReal(width, 4));
    bool more = true;
    while (more) {
        more = co_await drawNext(context, sketch, document.memory().lineDirection);
    }
    Drawing& drawing = document.drawing();
    document.memory().lineEnd = worldFromUcs(drawing, sketch.end());
    document.memory().lineDirection = sketch.direction(0);
    if (sketch.vertices.size() < 2) {
        co_return;
    }
    ChangeWatch watch(document, ModifiedObjects);
    setHeader(drawing, "$PLINEWID", 40, sketch.endWidth);
    const EntityPlane plane = planeOfUcs(drawing);
    for (WideVertex& vertex : sketch.vertices) {
        vertex.place = plane.place(worldFromUcs(drawing, vertex.place));
    }
    addPolyline(drawing, currentTarget(drawing), sketch.vertices, sketch.closed, plane.extrusion);
}

}  // namespace drafthost::commands
