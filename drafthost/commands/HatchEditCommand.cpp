// SPDX-License-Identifier: GPL-3.0-or-later
// -HATCHEDIT.

#include "drafthost/automation/EntityEdit.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/HatchQuestions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

constexpr const char* EditWords =
    "DIsassociate Style Properties DRaw ADd Remove Boundary ASsociate Hatches Origin ANnotative COlor LAyer "
    "Transparency";

void setStyle(Drawing& drawing, RecordId hatch, IslandStyle style) {
    const Record record = drawing.record(hatch);
    for (std::size_t i = record.subclass("AcDbHatch"); i < record.xdata(); ++i) {
        if (drawing.record(hatch).code(i) == 75) {
            drawing.setTag(hatch, i, std::int64_t{static_cast<int>(style)});
        }
    }
}

/// Moves the lines of the pattern; the hatch keeps its pattern as it is.
void moveOrigin(Drawing& drawing, RecordId hatch, const Point& origin) {
    const Record record = drawing.record(hatch);
    std::optional<Point> first;
    for (std::size_t i = record.subclass("AcDbHatch"); i < record.xdata(); ++i) {
        const int code = drawing.record(hatch).code(i);
        if (code == 43 || code == 44) {
            const double value = drawing.record(hatch).real(i);
            if (!first) {
                first = Point{value, drawing.record(hatch).real(i + 1), 0};
            }
            drawing.setTag(hatch, i, value + (code == 43 ? origin.x - first->x : origin.y - first->y));
        }
    }
}

Task<bool> changeHatch(CommandContext& context, RecordId hatch, std::string option) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    if (option == "Properties") {
        auto pattern = co_await askPattern(context);
        if (pattern) {
            ChangeWatch watch(document, ModifiedObjects);
            setHatchFill(drawing, hatch, pattern->fill);
            if (pattern->style) {
                setStyle(drawing, hatch, *pattern->style);
            }
        }
    } else if (option == "Style") {
        auto style = co_await context.keyword("Enter hatching style", "Ignore Outer Normal", "Normal");
        ChangeWatch watch(document, ModifiedObjects);
        setStyle(drawing, hatch,
                 style.isKeyword("Ignore")  ? IslandStyle::Ignore
                 : style.isKeyword("Outer") ? IslandStyle::Outer
                                            : IslandStyle::Normal);
    } else if (option == "DRaw") {
        auto order = co_await askHatchOrder(context, HatchOrder::AsDrawn);
        if (order == HatchOrder::BehindBoundary || order == HatchOrder::BeforeBoundary) {
            context.complain("The hatch does not know its boundary; use DRAWORDER.");
        } else {
            ChangeWatch watch(document, ModifiedObjects);
            orderHatch(drawing, hatch, {}, order);
        }
    } else if (option == "Origin") {
        const auto origin = co_await askHatchOrigin(context);
        if (origin) {
            ChangeWatch watch(document, ModifiedObjects);
            moveOrigin(drawing, hatch, *origin);
        }
    } else if (option == "COlor" || option == "LAyer" || option == "Transparency") {
        LookChange look;
        if (option == "COlor") {
            look = co_await askHatchColor(context);
        } else if (option == "LAyer") {
            look = co_await askHatchLayer(context);
        } else {
            look = co_await askHatchTransparency(context);
        }
        ChangeWatch watch(document, ModifiedObjects);
        applyLook(drawing, hatch, look);
    } else if (option == "DIsassociate") {
        ChangeWatch watch(document, ModifiedObjects);
        drawing.put(hatch, 71, std::int64_t{0}, {70});
    } else {
        context.complain("-HATCHEDIT " + option + " is not done here.");
    }
    co_return true;
}

}  // namespace

CommandTask hatchEditCommand(CommandContext& context) {
    auto picked = co_await pickObject(context, "Select hatch object");
    if (picked.entity == NoRecord) {
        co_return;
    }
    if (context.document().drawing().type(picked.entity) != "HATCH") {
        context.fail("The object is no hatch.");
        co_return;
    }
    if (automation::isLocked(context.document().drawing(), picked.entity)) {
        context.fail("The hatch is on a locked layer.");
        co_return;
    }
    auto option = co_await context.keyword("Enter hatch option", EditWords, "Properties");
    co_await changeHatch(context, picked.entity, option.keyword);
}

}  // namespace drafthost::commands
