// SPDX-License-Identifier: GPL-3.0-or-later
// UCS, PLAN, LIMITS, -UNITS, VIEWRES: the ground on which is drawn.

#include <cmath>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/commands/UserSystem.h"
#include "drafthost/commands/ViewCommands.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

/// A system from its origin and two directions; nothing when they do not span a plane.
std::optional<Transform> systemOf(const Point& origin, const Point& alongX, const Point& inPlane) {
    const Point z = cross(alongX, inPlane);
    if (length(alongX) < 1e-12 || length(z) < 1e-12 * length(alongX)) {
        return std::nullopt;
    }
    Transform ucs;
    ucs.origin = origin;
    ucs.x = normalised(alongX);
    ucs.z = normalised(z);
    ucs.y = cross(ucs.z, ucs.x);
    return ucs;
}

void changeUcs(CommandContext& context, const Transform& ucs, const std::string& name) {
    Document& document = context.document();
    ChangeWatch watch(document, ModifiedVariables);
    const Transform before = ucsTransform(document.drawing());
    if (!(before == ucs)) {
        document.memory().systemsBefore.push_back(before);
    }
    setUcs(document.drawing(), ucs, name);
}

/// Named systems of the table.
Task<bool> namedUcs(CommandContext& context, std::string option) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    if (option.empty()) {
        auto answer = co_await context.keyword("Enter an option", "Restore Save Delete ?");
        option = answer.keyword;
    }
    if (option == "?" || option.empty()) {
        for (const RecordId id : tableEntries(drawing, Table::Ucs)) {
            context.printLine(inQuotes(entryName(drawing, id)));
        }
        co_return true;
    }
    auto name =
        co_await askName(context, option == "Save" ? "Enter name to save current UCS" : "Enter name of UCS");
    if (name.text.empty()) {
        co_return false;
    }
    RecordId entry = findEntry(drawing, Table::Ucs, name.text);
    if (option != "Save" && entry == NoRecord) {
        context.complain("Cannot find UCS " + inQuotes(name.text) + ".");
        co_return false;
    }
    if (option == "Restore") {
        const Record record = drawing.record(entry);
        const auto ucs =
            systemOf(record.pointOr(10, {}), record.pointOr(11, {1, 0, 0}), record.pointOr(12, {0, 1, 0}));
        changeUcs(context, ucs.value_or(Transform()), entryName(drawing, entry));
        co_return true;
    }
    if (option == "Save" && entry != NoRecord && context.host().variables().integer("EXPERT", 0) < 4) {
        bool replace =
            co_await askYesNo(context, "UCS " + inQuotes(name.text) + " already exists. Replace it?", false);
        if (!replace) {
            co_return false;
        }
    }
    ChangeWatch watch(document, ModifiedTables | ModifiedVariables);
    if (option == "Delete") {
        deleteEntry(drawing, Table::Ucs, entry);
        co_return true;
    }
    entry = entry == NoRecord ? addEntry(drawing, Table::Ucs, name.text) : entry;
    const Transform ucs = ucsTransform(drawing);
    drawing.putPoint(entry, 10, ucs.origin, true);
    drawing.putPoint(entry, 11, ucs.x, true);
    drawing.putPoint(entry, 12, ucs.y, true);
    setUcs(drawing, ucs, name.text);
    co_return true;
}

/// Origin, a point on the x axis and one in the plane, each but the first to be left out.
Task<bool> ucsFromPoints(CommandContext& context, Point origin) {
    const Transform now = ucsTransform(context.document().drawing());
    auto onX = co_await context.point("Specify point on X-axis or <accept>", {.base = origin});
    if (onX.isEnter()) {
        Transform moved = now;
        moved.origin = now(origin);
        changeUcs(context, moved, "");
        co_return true;
    }
    auto inPlane = co_await context.point("Specify point on the XY plane or <accept>", {.base = origin});
    const Point x = now.vector(onX.point - origin);
    const Point y = inPlane.isEnter() ? cross(now.z, x) : now.vector(inPlane.point - origin);
    const auto ucs = systemOf(now(origin), x, y);
    if (!ucs) {
        context.fail("The points lie on one line.");
        co_return false;
    }
    changeUcs(context, *ucs, "");
    co_return true;
}

Task<bool> turnUcs(CommandContext& context, std::string axis) {
    auto answer = co_await context.angle("Specify rotation angle about " + axis + " axis",
                                         {.defaultText = "90", .base = Point{}});
    const Transform now = ucsTransform(context.document().drawing());
    const double c = std::cos(answer.real);
    const double s = std::sin(answer.real);
    Transform turn;
    if (axis == "X") {
        turn.y = {0, c, s};
        turn.z = {0, -s, c};
    } else if (axis == "Y") {
        turn.z = {s, 0, c};
        turn.x = {c, 0, -s};
    } else {
        turn.x = {c, s, 0};
        turn.y = {-s, c, 0};
    }
    changeUcs(context, now * turn, "");
    co_return true;
}

Task<bool> ucsByZ(CommandContext& context) {
    const Transform now = ucsTransform(context.document().drawing());
    auto origin = co_await context.point("Specify new origin point", {.defaultText = "0,0,0"});
    const std::string above =
        formatReal(origin.point.x) + "," + formatReal(origin.point.y) + "," + formatReal(origin.point.z + 1);
    auto onZ = co_await context.point("Specify point on positive portion of Z-axis", {.defaultText = above});
    Transform ucs = Transform::ofExtrusion(normalised(now.vector(onZ.point - origin.point)));
    ucs.origin = now(origin.point);
    changeUcs(context, ucs, "");
    co_return true;
}

Task<bool> ucsOfObject(CommandContext& context) {
    auto picked = co_await pickObject(context, "Select object to align UCS");
    if (picked.entity == NoRecord) {
        co_return false;
    }
    const Record record = context.document().drawing().record(picked.entity);
    Transform ucs = Transform::ofExtrusion(record.pointOr(210, {0, 0, 1}));
    if (record.type() == "LINE") {
        const auto along = systemOf(record.pointOr(10, {}), record.pointOr(11, {}) - record.pointOr(10, {}),
                                    cross({0, 0, 1}, record.pointOr(11, {}) - record.pointOr(10, {})));
        changeUcs(context, along.value_or(ucs), "");
        co_return true;
    }
    const Point place = ucs(record.pointOr(10, {}));
    ucs = ucs * Transform::rotation(record.realOr(50, 0) * RadiansPerDegree);
    ucs.origin = place;
    changeUcs(context, ucs, "");
    co_return true;
}

void previousUcs(CommandContext& context) {
    auto& before = context.document().memory().systemsBefore;
    if (before.empty()) {
        context.printLine("There is no previous UCS.");
        return;
    }
    const Transform ucs = before.back();
    before.pop_back();
    ChangeWatch watch(context.document(), ModifiedVariables);
    setUcs(context.document().drawing(), ucs, "");
}

/// The six views of a box: looking from that side.
std::optional<Transform> orthographic(std::string_view word) {
    const std::pair<std::string_view, std::pair<Point, Point>> sides[] = {
        {"Top", {{1, 0, 0}, {0, 1, 0}}},   {"Bottom", {{-1, 0, 0}, {0, 1, 0}}},
        {"Front", {{1, 0, 0}, {0, 0, 1}}}, {"BAck", {{-1, 0, 0}, {0, 0, 1}}},
        {"Left", {{0, -1, 0}, {0, 0, 1}}}, {"RIght", {{0, 1, 0}, {0, 0, 1}}}};
    for (const auto& [name, axes] : sides) {
        if (name == word) {
            return systemOf({}, axes.first, axes.second);
        }
    }
    return std::nullopt;
}

}  // namespace

CommandTask ucsCommand(CommandContext& context) {
    const Drawing& drawing = context.document().drawing();
    const bool isWorld = ucsTransform(drawing) == Transform();
    context.printLine(isWorld ? "Current ucs name:  *WORLD*" : "Current ucs name:  *NO NAME*");
    auto answer = co_await context.point(
        "Specify origin of UCS or [Face/NAmed/OBject/Previous/View/World/X/Y/Z/ZAxis]",
        {.keywords = "Face NAmed OBject Previous View World X Y Z ZAxis 3 New Move origin Restore "
                     "Save Delete Entity orthoGraphic ?",
         .defaultText = "World",
         .bareText = true});
    const std::string word = answer.keyword;
    if (answer.hasValue()) {
        co_await ucsFromPoints(context, answer.point);
    } else if (word == "World") {
        changeUcs(context, Transform(), "");
    } else if (word == "NAmed") {
        co_await namedUcs(context, "");
    } else if (word == "Restore" || word == "Save" || word == "Delete" || word == "?") {
        co_await namedUcs(context, word);
    } else if (word == "Previous") {
        previousUcs(context);
    } else if (word == "X" || word == "Y" || word == "Z") {
        co_await turnUcs(context, word);
    } else if (word == "ZAxis") {
        co_await ucsByZ(context);
    } else if (word == "OBject" || word == "Entity") {
        co_await ucsOfObject(context);
    } else if (word == "3" || word == "New" || word == "Move" || word == "origin") {
        auto origin = co_await context.point("Specify new origin point", {.defaultText = "0,0,0"});
        if (word == "3" || word == "New") {
            co_await ucsFromPoints(context, origin.point);
        } else {
            Transform moved = ucsTransform(drawing);
            moved.origin = moved(origin.point);
            changeUcs(context, moved, "");
        }
    } else if (word == "orthoGraphic") {
        auto side = co_await context.keyword("Enter an option", "Top Bottom Front BAck Left RIght", "Top");
        changeUcs(context, orthographic(side.keyword).value_or(Transform()), "");
    } else if (word == "View") {
        changeUcs(context, viewSystem(drawing), "");
    } else {
        context.fail("A face is picked with a pointer; give an origin, an axis or three points.");
    }
}

CommandTask planCommand(CommandContext& context) {
    auto answer = co_await context.keyword("Enter an option", "Current Ucs World", "Current");
    const Drawing& drawing = context.document().drawing();
    Transform ucs;
    if (answer.isKeyword("Current")) {
        ucs = ucsTransform(drawing);
    } else if (answer.isKeyword("Ucs")) {
        auto name = co_await askName(context, "Enter name of UCS");
        const RecordId entry = findEntry(drawing, Table::Ucs, name.text);
        if (entry == NoRecord) {
            context.fail("Cannot find UCS " + inQuotes(name.text) + ".");
            co_return;
        }
        const Record record = drawing.record(entry);
        ucs = systemOf(record.pointOr(10, {}), record.pointOr(11, {1, 0, 0}), record.pointOr(12, {0, 1, 0}))
                  .value_or(Transform());
    }
    lookFrom(context.document(), ucs);
    context.printLine("Regenerating model.");
}

CommandTask limitsCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    const bool model = modelIsCurrent(drawing);
    const char* low = model ? "$LIMMIN" : "$PLIMMIN";
    const char* high = model ? "$LIMMAX" : "$PLIMMAX";
    context.printLine(model ? "Reset Model space limits:" : "Reset Paper space limits:");
    const auto shown = [&](const char* name, const Point& standard) {
        const Point p = headerPoint(drawing, name, standard);
        return formatReal(p.x, 4) + "," + formatReal(p.y, 4);
    };
    const std::string first = shown(low, {});
    auto lower =
        co_await context.point("Specify lower left corner", {.keywords = "ON OFF", .defaultText = first});
    if (lower.isKeyword()) {
        ChangeWatch watch(document, ModifiedVariables);
        setHeader(drawing, model ? "$LIMCHECK" : "$PLIMCHECK", 70,
                  std::int64_t{lower.isKeyword("ON") ? 1 : 0});
        co_return;
    }
    const std::string second = shown(high, {12, 9, 0});
    auto upper = co_await context.point("Specify upper right corner", {.defaultText = second});
    ChangeWatch watch(document, ModifiedVariables);
    setHeaderPoint(drawing, low, lower.point, 2);
    setHeaderPoint(drawing, high, upper.point, 2);
}

CommandTask unitsCommand(CommandContext& context) {
    Drawing& drawing = context.document().drawing();
    const auto now = [&](const char* name, std::int64_t standard) {
        return std::to_string(headerInteger(drawing, name, standard));
    };
    context.printLine(
        "Report formats: 1. Scientific  2. Decimal  3. Engineering  4. Architectural  5. Fractional");
    const std::string units = now("$LUNITS", 2);
    auto lengths =
        co_await context.integer("Enter choice, 1 to 5", {.defaultText = units, .minimum = 1, .maximum = 5});
    const std::string digits = now("$LUPREC", 4);
    const bool fractional = lengths.integer >= 4;
    auto precision = co_await context.integer(
        fractional ? "Enter denominator of smallest fraction to display (1, 2, 4, 8, 16, 32, 64, 128, or 256)"
                   : "Enter number of digits to right of decimal point (0 to 8)",
        {.defaultText = digits, .minimum = 0, .maximum = fractional ? 256.0 : 8.0});
    const bool keep = fractional && precision.text == digits;
    const int places = fractional && !keep
                           ? static_cast<int>(std::lround(std::log2(std::max(1, precision.integer))))
                           : precision.integer;
    context.printLine(
        "Systems of angle measure: 1. Decimal degrees  2. Degrees/minutes/seconds  3. Grads  4. Radians  5. "
        "Surveyor's units");
    const std::string angleUnits = std::to_string(headerInteger(drawing, "$AUNITS", 0) + 1);
    auto angles = co_await context.integer("Enter choice, 1 to 5",
                                           {.defaultText = angleUnits, .minimum = 1, .maximum = 5});
    const std::string angleDigits = now("$AUPREC", 0);
    auto angleOf =
        co_await context.integer("Enter number of fractional places for display of angles (0 to 8)",
                                 {.defaultText = angleDigits, .minimum = 0, .maximum = 8});
    const std::string base = formatReal(headerReal(drawing, "$ANGBASE", 0), 4);
    auto direction =
        co_await context.angle("Enter direction for angle 0", {.defaultText = base, .base = Point{}});
    bool clockwise =
        co_await askYesNo(context, "Measure angles clockwise?", headerInteger(drawing, "$ANGDIR", 0) == 1);
    ChangeWatch watch(context.document(), ModifiedVariables);
    setHeader(drawing, "$LUNITS", 70, std::int64_t{lengths.integer});
    setHeader(drawing, "$LUPREC", 70, std::int64_t{places});
    setHeader(drawing, "$AUNITS", 70, std::int64_t{angles.integer - 1});
    setHeader(drawing, "$AUPREC", 70, std::int64_t{angleOf.integer});
    std::string reason;
    context.host().variables().set("ANGBASE", direction.real, reason);
    setHeader(drawing, "$ANGDIR", 70, std::int64_t{clockwise ? 1 : 0});
}

CommandTask viewresCommand(CommandContext& context) {
    co_await askYesNo(context, "Do you want fast zooms?", true);
    auto percent = co_await context.integer("Enter circle zoom percent (1-20000)",
                                            {.defaultText = "1000", .minimum = 1, .maximum = 20000});
    Drawing& drawing = context.document().drawing();
    const RecordId entry = findEntry(drawing, Table::Vport, "*ACTIVE");
    if (entry != NoRecord) {
        ChangeWatch watch(context.document(), ModifiedView);
        drawing.put(entry, 72, std::int64_t{percent.integer});
    }
}

}  // namespace drafthost::commands
