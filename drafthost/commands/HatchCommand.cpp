// SPDX-License-Identifier: GPL-3.0-or-later
// -HATCH.

#include <algorithm>

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/SelectionAnswer.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/HatchQuestions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/PolylineWriter.h"
#include "drafthost/drawing/R12Groups.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

/// What the hatch becomes when Enter draws it.
struct HatchPlan {
    std::optional<HatchFill> fill;
    IslandStyle style = IslandStyle::Normal;
    double gap = 0;
    bool separate = false;
    HatchOrder order = HatchOrder::BehindBoundary;
    std::vector<LookChange> looks;
    struct Area {
        std::vector<HatchLoop> loops;
        Point seed;
    };
    std::vector<Area> areas;
    /// Of the whole view, made when the first point is picked.
    std::optional<std::vector<HatchLoop>> seen;
};

HatchPlan planFromVariables(CommandContext& context) {
    const SystemVariables& variables = context.host().variables();
    HatchPlan plan;
    plan.fill = standardFill(context);
    plan.style = static_cast<IslandStyle>(std::clamp(variables.integer("HPISLANDDETECTION", 0), 0, 2));
    plan.separate = variables.integer("HPSEPARATE", 0) != 0;
    plan.order = static_cast<HatchOrder>(std::clamp(variables.integer("HPDRAWORDER", 3), 0, 4));
    const RecordId layer =
        findEntry(context.document().drawing(), Table::Layer, variables.string("HPLAYER", "."));
    if (layer != NoRecord) {
        LookChange look;
        look.kind = LookChange::Kind::Layer;
        look.name = entryName(context.document().drawing(), layer);
        plan.looks.push_back(look);
    }
    const auto gap = variables.get("HPGAPTOL");
    plan.gap = gap && std::holds_alternative<double>(*gap) ? std::get<double>(*gap) : 0;
    return plan;
}

void pickArea(CommandContext& context, HatchPlan& plan, const Point& ucs) {
    const Drawing& drawing = context.document().drawing();
    if (!plan.seen) {
        context.printLine("Selecting everything visible...");
        std::vector<RecordId> visible;
        for (const auto name : automation::entitiesThat(drawing, [&](RecordId id) {
                 return automation::isVisibleHere(drawing, id) && !automation::isOff(drawing, id);
             })) {
            if (const auto record = automation::aliveRecord(drawing, name)) {
                visible.push_back(*record);
            }
        }
        plan.seen = hatchLoops(drawing, visible, plan.gap);
    }
    const Point place = worldFromUcs(drawing, ucs);
    context.printLine("Analyzing internal islands...");
    auto loops = loopsAround(*plan.seen, place, plan.style);
    if (loops.empty()) {
        context.complain("Valid hatch boundary not found.");
        return;
    }
    // Twice the same boundary would leave nothing between the two.
    if (std::ranges::none_of(plan.areas, [&](const HatchPlan::Area& area) {
            return area.loops.front().outline == loops.front().outline;
        })) {
        plan.areas.push_back({std::move(loops), place});
    }
}

Task<bool> selectAreas(CommandContext& context, HatchPlan& plan) {
    auto selected = co_await selectObjects(context, 0);
    if (selected.empty()) {
        co_return false;
    }
    auto loops = withIslands(hatchLoops(context.document().drawing(), selected, plan.gap), plan.style);
    if (loops.empty()) {
        context.complain("Valid hatch boundary not found.");
        co_return false;
    }
    const Point seed = loops.front().outline.front();
    plan.areas.push_back({std::move(loops), seed});
    co_return true;
}

/// Boundaries given by their corners.
Task<bool> drawBoundaries(CommandContext& context, HatchPlan& plan) {
    bool retain = co_await askYesNo(context, "Retain polyline boundary?", false);
    for (;;) {
        auto start = co_await context.point("Specify start point for new boundary or <Accept>");
        if (start.isEnter()) {
            co_return true;
        }
        std::vector<Point> corners{start.point};
        for (;;) {
            auto next = co_await context.point("Specify next point",
                                               {.keywords = "Close Undo", .base = corners.back()});
            if (next.isKeyword("Undo")) {
                if (corners.size() > 1) {
                    corners.pop_back();
                }
                continue;
            }
            if (!next.hasValue()) {
                break;
            }
            corners.push_back(next.point);
        }
        Drawing& drawing = context.document().drawing();
        std::vector<WideVertex> vertices;
        for (Point& corner : corners) {
            corner = worldFromUcs(drawing, corner);
            vertices.push_back({corner, 0, 0, 0});
        }
        HatchLoop loop = polygonLoop(corners);
        if (!(loop.area > 0)) {
            context.complain("The boundary encloses nothing.");
            continue;
        }
        if (retain) {
            ChangeWatch watch(context.document(), ModifiedObjects);
            loop.sources = {addPolyline(drawing, currentTarget(drawing), vertices, true, {0, 0, 1})};
            takeCurrentProperties(drawing, loop.sources.front());
        }
        const Point seed = corners.front();
        plan.areas.push_back({{std::move(loop)}, seed});
    }
}

Task<bool> askAdvanced(CommandContext& context, HatchPlan& plan) {
    for (;;) {
        auto option = co_await context.keyword("Enter an option",
                                               "Boundary Retain Island Style Associativity Gap Hatches");
        if (option.isEnter()) {
            co_return true;
        }
        if (option.isKeyword("Island")) {
            bool found = co_await askYesNo(context, "Do you want island detection?", true);
            plan.style = found ? plan.style : IslandStyle::Ignore;
        } else if (option.isKeyword("Style")) {
            auto style = co_await context.keyword("Enter hatching style", "Ignore Outer Normal", "Normal");
            plan.style = style.isKeyword("Ignore")  ? IslandStyle::Ignore
                         : style.isKeyword("Outer") ? IslandStyle::Outer
                                                    : IslandStyle::Normal;
        } else if (option.isKeyword("Associativity")) {
            bool follow = co_await askYesNo(context, "Do you want associativity?", false);
            if (follow) {
                context.complain("Hatches do not follow their boundaries here.");
            }
        } else if (option.isKeyword("Gap")) {
            auto gap = co_await context.distance("Specify a boundary gap tolerance value",
                                                 {.defaultText = "0", .minimum = 0, .maximum = 5000});
            plan.gap = gap.real;
            plan.seen.reset();
        } else if (option.isKeyword("Hatches")) {
            plan.separate = co_await askYesNo(context, "Create separate hatches?", false);
        } else if (option.isKeyword("Retain")) {
            bool retain = co_await askYesNo(context, "Retain derived boundaries?", false);
            if (retain) {
                context.complain("Boundaries are the objects they were found from; none are made anew.");
            }
        } else {
            context.complain("Boundaries are looked for among all that is visible.");
        }
    }
}

RecordId drawHatch(CommandContext& context, const HatchPlan& plan, const std::vector<HatchLoop>& loops,
                   const Point& seed) {
    Drawing& drawing = context.document().drawing();
    DrawnEntity hatch(context, "HATCH", "AcDbHatch");
    if (!hatch.made()) {
        context.complain("There is no room for the hatch: the current space is not in the drawing.");
        return NoRecord;
    }
    beginHatch(drawing, hatch.id(), loops.front().elevation, plan.style, seed);
    addHatchLoops(drawing, hatch.id(), loops);
    setHatchFill(drawing, hatch.id(), *plan.fill);
    for (const LookChange& look : plan.looks) {
        applyLook(drawing, hatch.id(), look);
    }
    std::vector<RecordId> boundary;
    for (const HatchLoop& loop : loops) {
        boundary.insert(boundary.end(), loop.sources.begin(), loop.sources.end());
    }
    orderHatch(drawing, hatch.id(), boundary, plan.order);
    return hatch.id();
}

void drawHatches(CommandContext& context, const HatchPlan& plan) {
    std::vector<HatchLoop> together;
    for (const HatchPlan::Area& area : plan.areas) {
        if (plan.separate) {
            drawHatch(context, plan, area.loops, area.seed);
        } else {
            together.insert(together.end(), area.loops.begin(), area.loops.end());
        }
    }
    if (!together.empty()) {
        drawHatch(context, plan, together, plan.areas.front().seed);
    }
}

/// The answer to a question about looks takes the place of an earlier one of its kind.
void takeLook(std::vector<LookChange>& looks, const LookChange& look) {
    std::erase_if(looks, [&](const LookChange& old) { return old.kind == look.kind; });
    if (look.kind != LookChange::Kind::None) {
        looks.push_back(look);
    }
}

Task<bool> changePlan(CommandContext& context, HatchPlan& plan, std::string option) {
    if (option == "Properties") {
        auto pattern = co_await askPattern(context);
        if (pattern) {
            plan.fill = pattern->fill;
            plan.style = pattern->style.value_or(plan.style);
        }
    } else if (option == "Select") {
        co_await selectAreas(context, plan);
    } else if (option == "draW") {
        co_await drawBoundaries(context, plan);
    } else if (option == "Boundaries") {
        context.complain("Boundaries are not taken away here; select those that there are to be.");
    } else if (option == "Advanced") {
        co_await askAdvanced(context, plan);
    } else if (option == "DRaw") {
        plan.order = co_await askHatchOrder(context, plan.order);
    } else if (option == "Origin") {
        const auto origin = co_await askHatchOrigin(context);
        if (origin && plan.fill) {
            plan.fill->origin = *origin;
        }
    } else if (option == "ANnotative") {
        bool annotative = co_await askYesNo(context, "Create annotative hatch?", false);
        if (annotative) {
            context.complain("Hatches are not annotative here.");
        }
    } else if (option == "COlor") {
        const auto look = co_await askHatchColor(context);
        takeLook(plan.looks, look);
    } else if (option == "LAyer") {
        const auto look = co_await askHatchLayer(context);
        takeLook(plan.looks, look);
    } else if (option == "Transparency") {
        const auto look = co_await askHatchTransparency(context);
        takeLook(plan.looks, look);
    }
    co_return true;
}

}  // namespace

CommandTask hatchCommand(CommandContext& context) {
    if (!canHold(context.document().drawing(), "HATCH")) {
        context.fail("A drawing of version " + context.document().drawing().version() +
                     " has no hatches; save it in a newer one first.");
        co_return;
    }
    HatchPlan plan = planFromVariables(context);
    if (plan.fill) {
        context.printLine("Current hatch pattern:  " +
                          (plan.fill->user ? std::string("_USER") : plan.fill->pattern.name));
    }
    for (;;) {
        auto answer = co_await context.point(
            "Specify internal point or [Properties/Select objects/draW boundary/remove "
            "Boundaries/Advanced/DRaw "
            "order/Origin/ANnotative/hatch COlor/LAyer/Transparency]",
            {.keywords =
                 "Properties Select draW Boundaries Advanced DRaw Origin ANnotative COlor LAyer Transparency",
             .bareText = true});
        if (answer.isEnter()) {
            break;
        }
        if (answer.isKeyword()) {
            co_await changePlan(context, plan, answer.keyword);
        } else {
            pickArea(context, plan, answer.point);
        }
    }
    if (plan.fill && !plan.areas.empty()) {
        drawHatches(context, plan);
    }
}

}  // namespace drafthost::commands
