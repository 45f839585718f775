// SPDX-License-Identifier: GPL-3.0-or-later
// LINE, CIRCLE, ARC, POINT, SOLID.

#include <cmath>

#include "drafthost/commands/CircleGeometry.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

/// Records that a command has drawn, the last of which it can take back.
class Drawn {
  public:
    explicit Drawn(CommandContext& context) : context_(context) {}
    void line(const Point& from, const Point& to) {
        DrawnEntity line(context_, "LINE", "AcDbLine");
        lines_.push_back(line.world(10, from).world(11, to).id());
        if (headerReal(context_.document().drawing(), "$THICKNESS", 0) != 0) {
            line.finish();
        }
    }
    void takeBack() {
        deleteEntity(context_.document().drawing(), lines_.back());
        lines_.pop_back();
    }

  private:
    CommandContext& context_;
    std::vector<RecordId> lines_;
};

/// Where a line begins; Enter goes on from the last one.
Task<std::optional<Point>> askStart(CommandContext& context) {
    auto first = co_await context.point("Specify first point");
    if (first.isEnter()) {
        co_return ucsFromWorld(context.document().drawing(), context.document().memory().lineEnd);
    }
    co_return first.point;
}

void drawCircle(CommandContext& context, const Point& center, double radius) {
    DrawnEntity circle(context, "CIRCLE", "AcDbCircle");
    circle.planar(10, center).real(40, radius).finish();
    context.document().memory().radius = radius;
}

Task<double> askRadius(CommandContext& context, Point center) {
    const double last = context.document().memory().radius;
    const std::string shown = last > 0 ? formatReal(last, 4) : std::string();
    for (;;) {
        auto radius = co_await context.distance(
            "Specify radius of circle",
            {.keywords = "Diameter", .defaultText = shown, .noEmpty = true, .base = center});
        double value = radius.real;
        if (radius.isKeyword()) {
            auto diameter =
                co_await context.distance("Specify diameter of circle", {.noEmpty = true, .base = center});
            value = diameter.real / 2;
        }
        if (value > 0) {
            co_return value;
        }
        context.complain("Value must be positive and nonzero.");
    }
}

}  // namespace

CommandTask lineCommand(CommandContext& context) {
    auto start = co_await askStart(context);
    std::vector<Point> points{*start};
    Drawn drawn(context);
    for (;;) {
        auto next = co_await context.point(
            "Specify next point",
            {.keywords = points.size() > 2 ? "Close Undo" : "Undo", .base = points.back()});
        if (next.isKeyword("Undo")) {
            if (points.size() > 1) {
                drawn.takeBack();
                points.pop_back();
            } else {
                context.complain("All segments have been undone.");
            }
            continue;
        }
        if (next.isEnter()) {
            break;
        }
        const Point to = next.isKeyword("Close") ? points.front() : next.point;
        drawn.line(points.back(), to);
        points.push_back(to);
        if (next.isKeyword("Close")) {
            break;
        }
    }
    CommandMemory& memory = context.document().memory();
    memory.lineEnd = worldFromUcs(context.document().drawing(), points.back());
    if (points.size() > 1) {
        const Point along = points.back() - points[points.size() - 2];
        memory.lineDirection = std::atan2(along.y, along.x);
    }
}

CommandTask circleCommand(CommandContext& context) {
    auto center =
        co_await context.point("Specify center point for circle", {.keywords = "3P 2P Ttr", .noEmpty = true});
    if (center.isKeyword("Ttr")) {
        context.fail("A circle by tangents needs a pointer; give its centre and radius, 2P or 3P.");
        co_return;
    }
    if (!center.isKeyword()) {
        double radius = co_await askRadius(context, center.point);
        drawCircle(context, center.point, radius);
        co_return;
    }
    auto first = co_await context.point("Specify first point on circle", {.noEmpty = true});
    auto second =
        co_await context.point("Specify second point on circle", {.noEmpty = true, .base = first.point});
    if (center.isKeyword("2P")) {
        const Point middle = (first.point + second.point) * 0.5;
        const double radius = length(second.point - first.point) / 2;
        if (!(radius > 0)) {
            context.fail("Both points are the same.");
            co_return;
        }
        drawCircle(context, middle, radius);
        co_return;
    }
    auto third = co_await context.point("Specify third point on circle", {.noEmpty = true});
    const auto circle = circleThrough(first.point, second.point, third.point);
    if (!circle) {
        context.fail("The three points lie on one line.");
        co_return;
    }
    drawCircle(context, circle->center, circle->radius);
}

CommandTask pointCommand(CommandContext& context) {
    auto place = co_await context.point("Specify a point", {.noEmpty = true});
    DrawnEntity(context, "POINT", "AcDbPoint").world(10, place.point).finish();
}

CommandTask solidCommand(CommandContext& context) {
    auto first = co_await context.point("Specify first point", {.noEmpty = true});
    auto second = co_await context.point("Specify second point", {.noEmpty = true});
    for (;;) {
        auto third = co_await context.point("Specify third point");
        if (third.isEnter()) {
            co_return;
        }
        auto fourth = co_await context.point("Specify fourth point or <exit>");
        DrawnEntity solid(context, "SOLID", "AcDbTrace");
        const Point last = fourth.isEnter() ? third.point : fourth.point;
        solid.planar(10, first.point)
            .planar(11, second.point)
            .planar(12, third.point)
            .planar(13, last)
            .finish();
        if (fourth.isEnter()) {
            continue;
        }
        first = third;
        second = fourth;
    }
}

}  // namespace drafthost::commands
