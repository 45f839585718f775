// SPDX-License-Identifier: GPL-3.0-or-later
// -VIEW: views with names, and those from the sides of a box.

#include <algorithm>
#include <cmath>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/ViewCommands.h"
#include "drafthost/commands/ViewGeometry.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

RecordId activeVport(const Drawing& drawing) {
    return modelIsCurrent(drawing) ? findEntry(drawing, Table::Vport, "*ACTIVE") : NoRecord;
}

/// The view of a name as it is now, or with another centre and size.
void saveView(Document& document, const std::string& name, const View& view) {
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, ModifiedTables);
    RecordId entry = findEntry(drawing, Table::View, name);
    entry = entry == NoRecord ? addEntry(drawing, Table::View, name) : entry;
    const ViewPlane plane = viewPlane(drawing);
    drawing.put(entry, 70, std::int64_t{modelIsCurrent(drawing) ? 0 : 1});
    drawing.put(entry, 40, view.height);
    drawing.put(entry, 41, view.height * view.aspect);
    drawing.putPoint(entry, 10, view.center, false);
    drawing.putPoint(entry, 11, plane.direction, true);
    drawing.putPoint(entry, 12, plane.target, true);
    drawing.put(entry, 50, std::fmod(plane.twist * 57.29577951308232 + 360, 360));
}

void restoreView(CommandContext& context, RecordId entry) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    const Record record = drawing.record(entry);
    View view = currentView(drawing);
    view.center = record.pointOr(10, {});
    view.center.z = 0;
    // The height that shows the whole of it.
    view.height = std::max(record.realOr(40, 1), view.aspect > 0 ? record.realOr(41, 1) / view.aspect : 0);
    const RecordId port = activeVport(drawing);
    if (port != NoRecord) {
        ChangeWatch watch(document, ModifiedView);
        drawing.putPoint(port, 16, record.pointOr(11, {0, 0, 1}), true);
        drawing.putPoint(port, 17, record.pointOr(12, {}), true);
        drawing.put(port, 51, record.realOr(50, 0));
    }
    showView(document, view);
}

struct Preset {
    std::string_view word;
    Point direction;
};
constexpr Preset Presets[] = {{"TOP", {0, 0, 1}},     {"BOTTOM", {0, 0, -1}}, {"LEFT", {-1, 0, 0}},
                              {"RIGHT", {1, 0, 0}},   {"FRONT", {0, -1, 0}},  {"BACK", {0, 1, 0}},
                              {"SWISO", {-1, -1, 1}}, {"SEISO", {1, -1, 1}},  {"NEISO", {1, 1, 1}},
                              {"NWISO", {-1, 1, 1}}};

void lookAlong(CommandContext& context, const Point& direction) {
    const Transform axes = viewAxes({.direction = direction, .target = {}, .twist = 0});
    lookFrom(context.document(), axes);
}

void deleteViews(CommandContext& context, const std::string& names) {
    Drawing& drawing = context.document().drawing();
    ChangeWatch watch(context.document(), ModifiedTables);
    std::size_t deleted = 0;
    for (const RecordId id : tableEntries(drawing, Table::View)) {
        if (lisp::wildcardMatch(entryName(drawing, id), names, true)) {
            deleteEntry(drawing, Table::View, id);
            ++deleted;
        }
    }
    if (deleted == 0) {
        context.printLine("No matching view names found.");
    }
}

}  // namespace

CommandTask viewCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    auto option =
        co_await context.keyword("Enter an option",
                                 "? Delete Orthographic Restore Save sEttings Window TOP BOTTOM LEFT RIGHT "
                                 "FRONT BACK SWISO SEISO NEISO NWISO");
    if (option.isEnter()) {
        co_return;
    }
    for (const Preset& preset : Presets) {
        if (option.isKeyword(preset.word)) {
            lookAlong(context, preset.direction);
            co_return;
        }
    }
    if (option.isKeyword("?")) {
        for (const RecordId id : tableEntries(drawing, Table::View)) {
            context.printLine(inQuotes(entryName(drawing, id)));
        }
    } else if (option.isKeyword("Orthographic")) {
        auto side = co_await context.keyword("Enter an option", "Top Bottom Front BAck Left Right", "Top");
        for (const Preset& preset : Presets) {
            if (sameName(preset.word, side.keyword)) {
                lookAlong(context, preset.direction);
            }
        }
    } else if (option.isKeyword("sEttings")) {
        context.complain("Settings of views are not kept here.");
    } else {
        auto name = co_await askName(context, option.isKeyword("Restore")  ? "Enter view name to restore"
                                              : option.isKeyword("Delete") ? "Enter view name(s) to delete"
                                                                           : "Enter view name to save");
        if (name.text.empty()) {
            co_return;
        }
        if (option.isKeyword("Delete")) {
            deleteViews(context, name.text);
        } else if (option.isKeyword("Restore")) {
            const RecordId entry = findEntry(drawing, Table::View, name.text);
            if (entry == NoRecord) {
                context.fail("Cannot find view " + inQuotes(name.text) + ".");
            } else {
                restoreView(context, entry);
            }
        } else if (option.isKeyword("Save")) {
            saveView(document, name.text, currentView(drawing));
        } else {
            auto first = co_await context.point("Specify first corner", {.noEmpty = true});
            auto second = co_await context.point("Specify opposite corner", {.noEmpty = true});
            const Point a = displayFromUcs(drawing, first.point);
            const Point b = displayFromUcs(drawing, second.point);
            View view;
            view.center = {(a.x + b.x) / 2, (a.y + b.y) / 2, 0};
            view.height = std::fabs(a.y - b.y);
            view.aspect = view.height > 0 ? std::fabs(a.x - b.x) / view.height : 1;
            saveView(document, name.text, view);
        }
    }
}

}  // namespace drafthost::commands
