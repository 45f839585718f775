// SPDX-License-Identifier: GPL-3.0-or-later
// Hatches: their pattern and their boundaries.

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/HatchBoundary.h"
#include "drafthost/drawing/HatchPattern.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/InsertBlock.h"
#include "drafthost/drawing/R12Groups.h"

namespace drafthost::activex {
namespace {

/// The fill of that name; "_USER" and the kind of user patterns give lines of their own.
HatchFill fillNamed(Call& call, int kind, const std::string& name) {
    HatchFill fill;
    const std::string folded = foldCase(name);
    std::string error;
    const auto patterns = knownPatterns(
        name, headerInteger(call.drawing(), "$MEASUREMENT", 0) == 1,
        [&](const std::string& file) { return call.session().host.findFile(file).value_or(std::string()); },
        error);
    if (!error.empty()) {
        failAutomation(error);
    }
    const auto pattern = patternNamed(patterns, name);
    if (pattern) {
        fill.pattern = *pattern;
    } else if (kind == 0 || folded == foldCase("_USER") || folded == foldCase("_U")) {
        fill.user = true;
    } else {
        failAutomation("Cannot find hatch pattern \"" + name + "\".");
    }
    return fill;
}

/// Where the origin of the pattern lies is kept by its lines alone.
void setPattern(Call& call, int kind, const std::string& name) {
    checkUnlocked(call);
    HatchFill fill = fillNamed(call, kind, name);
    fill.scale = call.record().realOr(41, 1);
    fill.angle = call.record().realOr(52, 0);
    setHatchFill(call.drawing(), call.id(), fill);
    call.changed();
}

void putPatternName(Call& call, const Value& value) {
    setPattern(call, 1, textOf(unwrapped(value)));
}
Result setPatternMethod(Call& call) {
    setPattern(call, call.integer(0), call.text(1));
    return {};
}

void putScale(Call& call, const Value& value) {
    checkUnlocked(call);
    const double scale = realOf(unwrapped(value));
    if (!(scale > 0)) {
        failAutomation("Invalid input");
    }
    resizeHatchPattern(call.drawing(), call.id(), scale, call.record().realOr(52, 0));
    call.changed();
}
Result getScale(Call& call) {
    return Result::real(call.record().realOr(41, 1));
}
void putAngle(Call& call, const Value& value) {
    checkUnlocked(call);
    resizeHatchPattern(call.drawing(), call.id(), call.record().realOr(41, 1),
                       degreesOf(realOf(unwrapped(value))));
    call.changed();
}
Result getAngle(Call& call) {
    return Result::real(call.record().realOr(52, 0) * RadiansPerDegree);
}

/// Boundaries from an array of objects, whose ends must meet.
Result appendLoops(Call& call) {
    checkUnlocked(call);
    std::vector<RecordId> entities;
    for (const Value& item : itemsOf(call.arg(0))) {
        Object& object = objectOf(unwrapped(item));
        checkUsable(object);
        if (object.record == NoRecord || object.database != call.self.database) {
            failMismatch();
        }
        entities.push_back(object.record);
    }
    const auto loops = hatchLoops(call.drawing(), entities, 0);
    if (loops.empty()) {
        failAutomation("Invalid input");
    }
    addHatchLoops(call.drawing(), call.id(), loops);
    call.changed();
    return {};
}

Result evaluate(Call&) {
    return {};
}

constexpr Property Members[] = {
    {"PatternName", Access::Text, 2, 0, nullptr, putPatternName},
    {"PatternType", Access::Integer, 76, 1, nullptr, nullptr, true},
    {"PatternScale", Access::Custom, 41, 1, getScale, putScale},
    {"PatternSpace", Access::Custom, 41, 1, getScale, putScale},
    {"PatternAngle", Access::Custom, 52, 0, getAngle, putAngle},
    {"PatternDouble", Access::Bool, 77, 0},
    {"AssociativeHatch", Access::Bool, 71, 0},
    {"HatchStyle", Access::Integer, 75, 0},
    {"HatchObjectType", Access::Integer, 450, 0, nullptr, nullptr, true},
    {"NumberOfLoops", Access::Integer, 91, 0, nullptr, nullptr, true},
    {"Elevation", Access::Real, 30, 0},
    {"GradientName", Access::Text, 470},
};
constexpr Method Actions[] = {
    {"AppendOuterLoop", 1, 1, appendLoops},
    {"AppendInnerLoop", 1, 1, appendLoops},
    {"SetPattern", 2, 2, setPatternMethod},
    {"Evaluate", 0, 0, evaluate},
};

}  // namespace

Properties hatchProperties() {
    return Members;
}
Methods hatchMethods() {
    return Actions;
}

Result addHatch(Call& call) {
    Drawing& drawing = call.drawing();
    if (!canHold(drawing, "HATCH")) {
        failAutomation("A drawing of version " + drawing.version() + " cannot hold HATCH.");
    }
    const HatchFill fill = fillNamed(call, call.integer(0), call.text(1));
    call.arg(2);
    if (call.has(3) && call.integer(3) != 0) {
        failAutomation("Gradients are not drawn here.");
    }
    const BlockTarget block{call.record().textOr(2, "")};
    const RecordId hatch = addEntityTo(drawing, block, "HATCH", headerText(drawing, "$CLAYER", "0"));
    if (hatch == NoRecord) {
        failAutomation("The block has no place in the drawing.");
    }
    takeCurrentProperties(drawing, hatch);
    drawing.appendTag(hatch, 100, std::string("AcDbHatch"));
    beginHatch(drawing, hatch, 0, IslandStyle::Normal, {});
    setHatchFill(drawing, hatch, fill);
    call.changed();
    return call.object(hatch);
}

}  // namespace drafthost::activex
