// SPDX-License-Identifier: GPL-3.0-or-later
// ERASE, OOPS, MOVE, COPY, MIRROR: objects taken away, moved and doubled.

#include <cmath>

#include "drafthost/automation/EntityNames.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"

namespace drafthost::commands {

namespace {

struct Displacement {
    Point by;  ///< in the UCS
    bool given = false;
    bool multiple = false;
    Point base;
};

/// The second of the two points, or the first itself as the displacement.
Task<Point> askSecondPoint(CommandContext& context, Point base) {
    auto second =
        co_await context.point("Specify second point or <use first point as displacement>", {.base = base});
    co_return second.isEnter() ? base : second.point - base;
}

Task<Displacement> askDisplacement(CommandContext& context, const char* keywords) {
    Displacement result;
    for (;;) {
        auto first = co_await context.point("Specify base point", {.keywords = keywords});
        if (first.isKeyword("Multiple")) {
            result.multiple = true;
            continue;
        }
        if (first.isKeyword("mOde")) {
            auto mode = co_await context.keyword("Enter a copy mode option", "Single Multiple", "Multiple");
            result.multiple = mode.isKeyword("Multiple");
            continue;
        }
        if (first.hasValue()) {
            result.base = first.point;
            co_return result;
        }
        auto by = co_await context.point("Specify displacement", {.base = Point{}});
        result.by = by.isEnter() ? Point{} : by.point;
        result.given = true;
        co_return result;
    }
}

Transform moved(const Drawing& drawing, const Point& by) {
    return worldMap(drawing, Transform::translation(by));
}

}  // namespace

CommandTask eraseCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    Document& document = context.document();
    ChangeWatch watch(document, ModifiedObjects);
    document.memory().erased = selected;
    for (const RecordId id : selected) {
        eraseEntity(context, id);
    }
}

CommandTask oopsCommand(CommandContext& context) {
    Document& document = context.document();
    auto& deleted = document.lisp().session().deleted;
    std::size_t restored = 0;
    ChangeWatch watch(document, ModifiedObjects);
    for (const RecordId id : std::exchange(document.memory().erased, {})) {
        const auto found = deleted.find(automation::nameOf(id));
        if (found != deleted.end() && !document.drawing().isAlive(id)) {
            for (const RecordId record : found->second) {
                document.drawing().restoreRecord(record);
            }
            ++restored;
        }
    }
    if (restored == 0) {
        context.printLine("There is nothing erased that could come back.");
    }
    co_return;
}

CommandTask moveCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    auto displacement = co_await askDisplacement(context, "Displacement");
    if (!displacement.given) {
        displacement.by = co_await askSecondPoint(context, displacement.base);
    }
    transformAll(context, selected, moved(context.document().drawing(), displacement.by));
}

CommandTask copyCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context);
    if (selected.empty()) {
        co_return;
    }
    auto displacement = co_await askDisplacement(context, "Displacement mOde Multiple");
    const Drawing& drawing = context.document().drawing();
    if (displacement.given) {
        const auto copies = copyAll(context, selected);
        transformAll(context, copies, moved(drawing, displacement.by));
        co_return;
    }
    const Point base = displacement.base;
    const bool again = displacement.multiple || isByHand(context);
    bool first = true;
    for (bool more = true; more; more = again) {
        auto second = co_await context.point(
            first ? "Specify second point or <use first point as displacement>" : "Specify second point",
            {.keywords = first ? "Array" : "Array Exit Undo", .base = base});
        if (second.isKeyword("Array")) {
            auto count = co_await context.integer("Enter number of items to array",
                                                  {.noEmpty = true, .minimum = 2, .maximum = 32767});
            auto step = co_await context.point("Specify second point",
                                               {.keywords = "Fit", .noEmpty = true, .base = base});
            const bool fit = step.isKeyword("Fit");
            if (fit) {
                step = co_await context.point("Specify second point", {.noEmpty = true, .base = base});
            }
            for (int i = 1; i < count.integer; ++i) {
                const double share = fit ? double(i) / (count.integer - 1) : i;
                const auto copies = copyAll(context, selected);
                transformAll(context, copies, moved(drawing, (step.point - base) * share));
            }
        } else if (second.isKeyword("Undo")) {
            context.complain("A copy is taken back by U when the command has ended.");
        } else if (second.isKeyword("Exit") || (second.isEnter() && !first)) {
            co_return;
        } else {
            const auto copies = copyAll(context, selected);
            transformAll(context, copies, moved(drawing, second.isEnter() ? base : second.point - base));
            if (second.isEnter()) {
                co_return;
            }
        }
        first = false;
    }
}

CommandTask mirrorCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    auto first = co_await context.point("Specify first point of mirror line", {.noEmpty = true});
    auto second =
        co_await context.point("Specify second point of mirror line", {.noEmpty = true, .base = first.point});
    bool erase = co_await askYesNo(context, "Erase source objects?", false);
    const double dx = second.point.x - first.point.x;
    const double dy = second.point.y - first.point.y;
    if (dx == 0 && dy == 0) {
        context.fail("The mirror line has no length.");
        co_return;
    }
    const double angle = 2 * std::atan2(dy, dx);
    Transform mirror;
    mirror.x = {std::cos(angle), std::sin(angle), 0};
    mirror.y = {std::sin(angle), -std::cos(angle), 0};
    const auto parts = erase ? selected : copyAll(context, selected);
    transformAll(context, parts, worldMap(context.document().drawing(), about(first.point, mirror)));
}

}  // namespace drafthost::commands
