// SPDX-License-Identifier: GPL-3.0-or-later
// ROTATE, SCALE, OFFSET.

#include <cmath>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/drawing/Intersect.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"

namespace drafthost::commands {

namespace {

/// Two points in a row: their distance and direction.
struct Stretch {
    double length = 0;
    double angle = 0;
};
Task<Stretch> askStretch(CommandContext& context, Point first) {
    auto second = co_await context.point("Specify second point", {.noEmpty = true, .base = first});
    const double dx = second.point.x - first.x;
    const double dy = second.point.y - first.y;
    co_return Stretch{std::hypot(dx, dy), std::atan2(dy, dx)};
}

std::optional<Point> pointOf(CommandContext& context, const Answer& answer) {
    return answer.value.isNil()
               ? automation::readPoint(answer.text, automation::readingRules(context.document().lisp()))
               : lisp::toPoint(answer.value);
}

/// A number, or two points whose distance (or direction, with `angle`) it is.
Task<double> askMeasure(CommandContext& context, const char* prompt, bool angle, double standard) {
    const auto rules = automation::readingRules(context.document().lisp());
    for (;;) {
        auto answer = co_await context.input(prompt);
        if (answer.isEnter()) {
            co_return standard;
        }
        if (answer.value.isNumber()) {
            const double number = answer.value.toDouble();
            co_return angle ? automation::angleOf(number, rules) : number;
        }
        if (const auto first = pointOf(context, answer)) {
            auto stretch = co_await askStretch(context, *first);
            co_return angle ? stretch.angle : stretch.length;
        }
        const auto number =
            angle ? automation::readAngle(answer.text, rules) : automation::readNumber(answer.text, rules);
        if (number) {
            co_return *number;
        }
        context.complain("A number or two points are needed here, not \"" + answer.text + "\".");
    }
}

Task<double> askReferenceAngle(CommandContext& context, Point base) {
    double reference = co_await askMeasure(context, "Specify the reference angle <0>", true, 0);
    auto to = co_await context.angle("Specify the new angle", {.keywords = "Points", .base = base});
    if (to.isKeyword("Points")) {
        auto first = co_await context.point("Specify first point", {.noEmpty = true});
        auto stretch = co_await askStretch(context, first.point);
        co_return stretch.angle - reference;
    }
    co_return (to.isEnter() ? 0 : to.real) - reference;
}

Task<double> askReferenceScale(CommandContext& context, Point base) {
    double reference = 0;
    do {
        reference = co_await askMeasure(context, "Specify reference length <1>", false, 1);
        if (!(reference > 0)) {
            context.complain("Value must be positive and nonzero.");
        }
    } while (!(reference > 0));
    for (;;) {
        auto to = co_await context.distance("Specify new length", {.keywords = "Points", .base = base});
        double length = to.isEnter() ? 1 : to.real;
        if (to.isKeyword("Points")) {
            auto first = co_await context.point("Specify first point", {.noEmpty = true});
            auto stretch = co_await askStretch(context, first.point);
            length = stretch.length;
        }
        if (length > 0) {
            co_return length / reference;
        }
        context.complain("Value must be positive and nonzero.");
    }
}

}  // namespace

CommandTask rotateCommand(CommandContext& context) {
    context.printLine("Current positive angle in UCS:  ANGDIR=counterclockwise  ANGBASE=0");
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    auto base = co_await context.point("Specify base point", {.noEmpty = true});
    double angle = 0;
    for (bool asking = true; asking;) {
        auto answer = co_await context.angle(
            "Specify rotation angle", {.keywords = "Copy Reference", .defaultText = "0", .base = base.point});
        if (answer.isKeyword("Copy")) {
            context.printLine("Rotating a copy of the selected objects.");
            selected = copyAll(context, selected);
            continue;
        }
        angle = answer.real;
        if (answer.isKeyword("Reference")) {
            angle = co_await askReferenceAngle(context, base.point);
        }
        asking = false;
    }
    transformAll(context, selected,
                 worldMap(context.document().drawing(), about(base.point, Transform::rotation(angle))));
}

CommandTask scaleCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    auto base = co_await context.point("Specify base point", {.noEmpty = true});
    double factor = 0;
    while (!(factor > 0)) {
        auto answer = co_await context.distance(
            "Specify scale factor", {.keywords = "Copy Reference", .noEmpty = true, .base = base.point});
        if (answer.isKeyword("Copy")) {
            context.printLine("Scaling a copy of the selected objects.");
            selected = copyAll(context, selected);
            continue;
        }
        factor = answer.real;
        if (answer.isKeyword("Reference")) {
            factor = co_await askReferenceScale(context, base.point);
        }
        if (!(factor > 0)) {
            context.complain("Value must be positive and nonzero.");
        }
    }
    transformAll(
        context, selected,
        worldMap(context.document().drawing(), about(base.point, Transform::scale(factor, factor, factor))));
}

namespace {

double distanceTo(const Drawing& drawing, const std::vector<RecordId>& curves, const Point& p) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const RecordId id : curves) {
        if (const auto curve = Curve::of(drawing, id)) {
            nearest = std::min(nearest, length(curve->closest(p, false) - p));
        }
    }
    return nearest;
}

/// A parallel on the side of a point; the other one goes again.
bool offsetTowards(Document& document, RecordId entity, double distance, const Point& side,
                   bool onCurrentLayer) {
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, ModifiedObjects);
    const auto one = offsetEntity(drawing, entity, distance);
    const auto other = offsetEntity(drawing, entity, -distance);
    const bool first = distanceTo(drawing, one, side) <= distanceTo(drawing, other, side);
    for (const RecordId id : first ? other : one) {
        deleteEntity(drawing, id);
    }
    for (const RecordId id : first ? one : other) {
        if (onCurrentLayer) {
            drawing.put(id, 8, headerText(drawing, "$CLAYER", "0"));
        }
    }
    return !(first ? one : other).empty();
}

}  // namespace

CommandTask offsetCommand(CommandContext& context) {
    Document& document = context.document();
    context.printLine("Current settings: Erase source=No  Layer=Source  OFFSETGAPTYPE=0");
    bool erase = false;
    bool onCurrentLayer = false;
    bool through = false;
    double distance = 0;
    for (bool asking = true; asking;) {
        auto answer = co_await context.distance(
            "Specify offset distance",
            {.keywords = "Through Erase Layer", .defaultText = "Through", .minimum = 0});
        if (answer.isKeyword("Erase")) {
            auto choice = co_await context.keyword("Erase source object after offsetting?", "Yes No", "No");
            erase = choice.isKeyword("Yes");
        } else if (answer.isKeyword("Layer")) {
            auto layer =
                co_await context.keyword("Enter layer option for offset objects", "Current Source", "Source");
            onCurrentLayer = layer.isKeyword("Current");
        } else {
            through = answer.isKeyword("Through");
            distance = answer.real;
            asking = false;
        }
    }
    for (;;) {
        auto picked = co_await pickObject(context, "Select object to offset", "Exit Undo");
        if (picked.entity == NoRecord) {
            co_return;
        }
        auto side =
            co_await context.point(through ? "Specify through point" : "Specify point on side to offset",
                                   {.keywords = "Exit Multiple Undo", .noEmpty = true});
        if (side.isKeyword()) {
            co_return;
        }
        const Point place = worldFromUcs(document.drawing(), side.point);
        const auto curve = Curve::of(document.drawing(), picked.entity);
        if (curve && through) {
            distance = length(curve->closest(place, true) - place);
        }
        if (!curve || !offsetTowards(document, picked.entity, distance, place, onCurrentLayer)) {
            context.complain("Cannot offset that object.");
        } else if (erase) {
            ChangeWatch watch(document, ModifiedObjects);
            eraseEntity(context, picked.entity);
        }
    }
}

}  // namespace drafthost::commands
