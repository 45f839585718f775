// SPDX-License-Identifier: GPL-3.0-or-later
// AREA, DIST, ID, LIST: what the drawing measures.

#include <cmath>

#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

std::string number(CommandContext& context, double value) {
    const auto digits = static_cast<int>(headerInteger(context.document().drawing(), "$LUPREC", 4));
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string pointText(CommandContext& context, const Point& p) {
    return "X= " + number(context, p.x) + "  Y= " + number(context, p.y) + "  Z= " + number(context, p.z);
}

void setLast(CommandContext& context, const char* name, double value) {
    context.document().variables()[name] = value;
}

struct Measured {
    double area = 0;
    double length = 0;
    const char* word = "Perimeter";
};

std::optional<Measured> measure(const Drawing& drawing, RecordId id) {
    const std::string_view type = drawing.type(id);
    const auto curve = Curve::of(drawing, id);
    if (!curve || type == "LINE" || type == "RAY" || type == "XLINE") {
        return std::nullopt;
    }
    return Measured{curve->area(), curve->length(),
                    type == "CIRCLE"    ? "Circumference"
                    : curve->isClosed() ? "Perimeter"
                                        : "Length"};
}

Measured measure(const std::vector<Point>& points) {
    Measured result;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point& a = points[i];
        const Point& b = points[(i + 1) % points.size()];
        result.area += (a.x * b.y - b.x * a.y) / 2;
        result.length += length(b - a);
    }
    result.area = std::fabs(result.area);
    return result;
}

void tell(CommandContext& context, const Measured& measured) {
    context.printLine("Area = " + number(context, measured.area) + ", " + measured.word + " = " +
                      number(context, measured.length));
    setLast(context, "AREA", measured.area);
    setLast(context, "PERIMETER", measured.length);
}

Task<std::optional<Measured>> askMeasured(CommandContext& context, Answer first) {
    if (!first.hasValue()) {
        auto picked = co_await pickObject(context, "Select objects");
        if (picked.entity == NoRecord) {
            co_return std::nullopt;
        }
        auto measured = measure(context.document().drawing(), picked.entity);
        if (!measured) {
            context.complain("Selected object does not have an area.");
        }
        co_return measured;
    }
    std::vector<Point> points{first.point};
    for (;;) {
        auto next = co_await context.point("Specify next point",
                                           {.keywords = "Arc Length Undo", .base = points.back()});
        if (next.isEnter()) {
            co_return measure(points);
        }
        if (next.isKeyword("Undo") && points.size() > 1) {
            points.pop_back();
        } else if (next.isKeyword()) {
            context.complain("Corners of the area are given by points here.");
        } else {
            points.push_back(next.point);
        }
    }
}

}  // namespace

CommandTask areaCommand(CommandContext& context) {
    double total = 0;
    double sign = 0;
    for (;;) {
        auto first =
            co_await context.point(sign == 0 ? "Specify first corner point or [Object/Add area/Subtract area]"
                                             : "Specify first corner point or [Object]",
                                   {.keywords = "Object Entity Add Subtract",
                                    .defaultText = sign == 0 ? "Object" : "",
                                    .bareText = true});
        if (first.isEnter()) {
            co_return;
        }
        if (first.isKeyword("Add") || first.isKeyword("Subtract")) {
            sign = first.isKeyword("Add") ? 1 : -1;
            continue;
        }
        auto measured = co_await askMeasured(context, first);
        if (measured) {
            tell(context, *measured);
        }
        if (sign == 0) {
            co_return;
        }
        if (measured) {
            total += sign * measured->area;
            context.printLine("Total area = " + number(context, total));
            setLast(context, "AREA", total);
        }
    }
}

CommandTask distCommand(CommandContext& context) {
    auto first = co_await context.point("Specify first point", {.noEmpty = true});
    auto second = co_await context.point("Specify second point", {.noEmpty = true, .base = first.point});
    const Point d = second.point - first.point;
    const double distance = length(d);
    const auto degrees = [](double y, double x) {
        return formatReal(directionInDegrees(std::atan2(y, x)), 4);
    };
    context.printLine("Distance = " + number(context, distance) + ",  Angle in XY Plane = " +
                      degrees(d.y, d.x) + ",  Angle from XY Plane = " + degrees(d.z, std::hypot(d.x, d.y)));
    context.printLine("Delta X = " + number(context, d.x) + ",  Delta Y = " + number(context, d.y) +
                      ",   Delta Z = " + number(context, d.z));
    setLast(context, "DISTANCE", distance);
}

CommandTask idCommand(CommandContext& context) {
    auto place = co_await context.point("Specify point", {.noEmpty = true});
    context.printLine(" " + pointText(context, place.point));
}

namespace {

void listOne(CommandContext& context, RecordId id) {
    const Drawing& drawing = context.document().drawing();
    const Record record = drawing.record(id);
    const Layout* layout = layoutOf(drawing, id);
    context.printLine("                  " + std::string(record.type()) +
                      "  Layer: " + inQuotes(record.textOr(8, "0")));
    context.printLine("                            Space: " +
                      std::string(layout == nullptr || layout->model ? "Model space" : "Paper space"));
    if (layout != nullptr && !layout->model) {
        context.printLine("                            Layout: " + layout->name);
    }
    if (record.find(62) || record.find(6)) {
        context.printLine("                   Color: " + record.textOr(62, "BYLAYER") +
                          "    Linetype: " + inQuotes(record.textOr(6, "BYLAYER")));
    }
    if (drawing.handle(id) != 0) {
        context.printLine("                   Handle = " + formatHandle(drawing.handle(id)));
    }
    for (const auto& [code, word] : {std::pair{2, "name"}, {1, "text"}, {7, "style"}}) {
        if (const auto at = record.find(code);
            at && *at < record.xdata() && (code != 2 || record.type() != "HATCH")) {
            context.printLine(std::string("                   ") + word + " " + inQuotes(record.text(*at)));
        }
    }
    for (std::size_t i = 1; i < record.xdata(); ++i) {
        const int code = record.code(i);
        if (code >= 10 && code <= 18) {
            context.printLine("          at point  " + pointText(context, record.point(i)));
        }
    }
    if (const auto curve = Curve::of(drawing, id); curve && !curve->isEndless()) {
        context.printLine("                  length  " + number(context, curve->length()));
        if (const auto measured = measure(drawing, id)) {
            context.printLine("                    area  " + number(context, measured->area));
        }
    }
}

}  // namespace

CommandTask listCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectAnySpace);
    for (const RecordId id : selected) {
        listOne(context, id);
    }
}

}  // namespace drafthost::commands
