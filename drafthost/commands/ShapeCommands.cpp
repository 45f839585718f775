// SPDX-License-Identifier: GPL-3.0-or-later
// RECTANG, POLYGON, DONUT, ELLIPSE.

#include <cmath>
#include <numbers>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/drawing/PolylineWriter.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

/// A closed polyline of corners in the UCS.
void drawClosed(CommandContext& context, std::vector<WideVertex> corners) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, ModifiedObjects);
    const EntityPlane plane = planeOfUcs(drawing);
    for (WideVertex& corner : corners) {
        corner.place = plane.place(worldFromUcs(drawing, corner.place));
    }
    addPolyline(drawing, currentTarget(drawing), corners, true, plane.extrusion);
}

Point around(const Point& center, double radius, double angle) {
    return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle), center.z};
}

}  // namespace

CommandTask rectangleCommand(CommandContext& context) {
    double width = 0;
    Point first;
    for (bool asking = true; asking;) {
        auto corner =
            co_await context.point("Specify first corner point",
                                   {.keywords = "Chamfer Elevation Fillet Thickness Width", .noEmpty = true});
        if (corner.isKeyword("Width")) {
            auto given = co_await context.distance("Specify line width for rectangles",
                                                   {.defaultText = "0", .minimum = 0, .base = Point{}});
            width = given.real;
        } else if (corner.isKeyword()) {
            context.complain("Rectangles have plain corners and no thickness here; give two corners.");
        } else {
            first = corner.point;
            asking = false;
        }
    }
    double turn = 0;
    Point opposite;
    for (bool asking = true; asking;) {
        auto corner =
            co_await context.point("Specify other corner point",
                                   {.keywords = "Area Dimensions Rotation", .noEmpty = true, .base = first});
        if (corner.isKeyword("Dimensions")) {
            auto length =
                co_await context.distance("Specify length for rectangles", {.noEmpty = true, .base = first});
            auto height =
                co_await context.distance("Specify width for rectangles", {.noEmpty = true, .base = first});
            auto side =
                co_await context.point("Specify other corner point", {.noEmpty = true, .base = first});
            opposite = {first.x + std::copysign(length.real, side.point.x - first.x),
                        first.y + std::copysign(height.real, side.point.y - first.y), first.z};
            asking = false;
        } else if (corner.isKeyword("Rotation")) {
            auto angle =
                co_await context.angle("Specify rotation angle", {.defaultText = "0", .base = first});
            turn = angle.real;
        } else if (corner.isKeyword("Area")) {
            context.complain("Give the other corner, or Dimensions.");
        } else {
            opposite = corner.point;
            asking = false;
        }
    }
    // In the turned rectangle the corners lie along its own axes.
    const Transform there = about(first, Transform::rotation(turn));
    const Point flat = about(first, Transform::rotation(-turn))(opposite);
    std::vector<WideVertex> corners;
    for (const Point& p : {first, Point{flat.x, first.y, first.z}, Point{flat.x, flat.y, first.z},
                           Point{first.x, flat.y, first.z}}) {
        corners.push_back({there(p), 0, width, width});
    }
    drawClosed(context, corners);
}

CommandTask polygonCommand(CommandContext& context) {
    auto sides = co_await context.integer("Enter number of sides",
                                          {.defaultText = "4", .minimum = 3, .maximum = 1024});
    const int count = sides.integer;
    const double step = 2 * std::numbers::pi / count;
    auto center = co_await context.point("Specify center of polygon", {.keywords = "Edge", .noEmpty = true});
    std::vector<WideVertex> corners;
    if (center.isKeyword()) {
        auto first = co_await context.point("Specify first endpoint of edge", {.noEmpty = true});
        auto second =
            co_await context.point("Specify second endpoint of edge", {.noEmpty = true, .base = first.point});
        Point at = first.point;
        const Point edge = second.point - first.point;
        for (int i = 0; i < count; ++i) {
            corners.push_back({at, 0, 0, 0});
            at = at + Transform::rotation(step * i).vector(edge);
        }
        drawClosed(context, corners);
        co_return;
    }
    auto form = co_await context.keyword(
        "Enter an option (inscribed in circle or circumscribed about circle)", "I C", "I");
    auto radius = co_await context.distance("Specify radius of circle",
                                            {.noEmpty = true, .minimum = 1e-99, .base = center.point});
    const double outer = form.isKeyword("I") ? radius.real : radius.real / std::cos(step / 2);
    // The lowest edge lies flat.
    const double first = -std::numbers::pi / 2 - step / 2;
    for (int i = 0; i < count; ++i) {
        corners.push_back({around(center.point, outer, first + step * i), 0, 0, 0});
    }
    drawClosed(context, corners);
}

CommandTask donutCommand(CommandContext& context) {
    auto inside = co_await context.distance("Specify inside diameter of donut",
                                            {.defaultText = "0.5", .minimum = 0, .base = Point{}});
    auto outside = co_await context.distance("Specify outside diameter of donut",
                                             {.defaultText = "1", .minimum = 1e-99, .base = Point{}});
    const double width = std::fabs(outside.real - inside.real) / 2;
    const double radius = (outside.real + inside.real) / 4;
    for (;;) {
        auto center = co_await context.point("Specify center of donut or <exit>");
        if (center.isEnter()) {
            co_return;
        }
        std::vector<WideVertex> halves{{around(center.point, radius, std::numbers::pi), 1, width, width},
                                       {around(center.point, radius, 0), 1, width, width}};
        drawClosed(context, halves);
    }
}

CommandTask ellipseCommand(CommandContext& context) {
    if (context.document().drawing().versionNumber() < 1012) {
        context.fail("A drawing of version " + context.document().drawing().version() +
                     " cannot hold ellipses.");
        co_return;
    }
    auto first = co_await context.point("Specify axis endpoint of ellipse",
                                        {.keywords = "Arc Center", .noEmpty = true});
    if (first.isKeyword("Arc")) {
        context.fail("Elliptical arcs are not drawn here.");
        co_return;
    }
    Point center;
    Point end;
    if (first.isKeyword("Center")) {
        auto middle = co_await context.point("Specify center of ellipse", {.noEmpty = true});
        auto axis =
            co_await context.point("Specify endpoint of axis", {.noEmpty = true, .base = middle.point});
        center = middle.point;
        end = axis.point;
    } else {
        auto other =
            co_await context.point("Specify other endpoint of axis", {.noEmpty = true, .base = first.point});
        center = (first.point + other.point) * 0.5;
        end = other.point;
    }
    const double half = length(end - center);
    auto minor = co_await context.distance("Specify distance to other axis",
                                           {.keywords = "Rotation", .noEmpty = true, .base = center});
    double across = minor.real;
    if (minor.isKeyword()) {
        auto turn =
            co_await context.angle("Specify rotation around major axis", {.noEmpty = true, .base = center});
        across = half * std::cos(turn.real);
    }
    if (!(half > 0) || !(across > 0)) {
        context.fail("The ellipse has no size.");
        co_return;
    }
    Point major = end - center;
    double ratio = across / half;
    if (ratio > 1) {
        major = Point{-major.y, major.x, 0} * ratio;
        ratio = 1 / ratio;
    }
    const Transform ucs = ucsTransform(context.document().drawing());
    DrawnEntity ellipse(context, "ELLIPSE", "AcDbEllipse");
    ellipse.world(10, center).point(11, ucs.vector(major)).point(210, ucs.z);
    ellipse.real(40, ratio).real(41, 0).real(42, 2 * std::numbers::pi);
}

}  // namespace drafthost::commands
