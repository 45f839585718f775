// SPDX-License-Identifier: GPL-3.0-or-later
// -GROUP, DRAWORDER, DIVIDE, MEASURE, -OVERKILL.

#include <algorithm>
#include <cmath>
#include <set>

#include "drafthost/automation/EntityNames.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/drawing/DrawOrder.h"
#include "drafthost/drawing/EntityGroups.h"
#include "drafthost/drawing/InsertBlock.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"

namespace drafthost::commands {

namespace {

Task<std::string> askGroup(CommandContext& context, const char* prompt) {
    for (;;) {
        auto name = co_await askName(context, prompt);
        if (name.text == "?") {
            for (const EntityGroup& group : entityGroups(context.document().drawing())) {
                context.printLine(group.name + "  " + group.description);
            }
            continue;
        }
        co_return name.text;
    }
}

/// A group that is there; nothing when the command ends, which has been told.
Task<std::optional<EntityGroup>> askOldGroup(CommandContext& context, const char* prompt) {
    auto name = co_await askGroup(context, prompt);
    if (name.empty()) {
        co_return std::nullopt;
    }
    auto group = findGroup(context.document().drawing(), name);
    if (!group) {
        context.complain("Group " + inQuotes(name) + " not found.");
    }
    co_return group;
}

Task<bool> createGroup(CommandContext& context) {
    Document& document = context.document();
    auto name = co_await askGroup(context, "Enter a group name or [?]");
    if (name.empty()) {
        co_return false;
    }
    const bool unnamed = name == "*";
    if (!unnamed && name.find_first_of("<>/\\\":;?*|,=` ") != std::string::npos) {
        context.complain("Invalid group name " + inQuotes(name) + ".");
        co_return false;
    }
    if (!unnamed && findGroup(document.drawing(), name)) {
        context.complain("Group " + inQuotes(name) + " already exists.");
        co_return false;
    }
    auto description = co_await context.text("Enter a group description");
    auto selected = co_await selectObjects(context, 0);
    ChangeWatch watch(document, ModifiedObjects);
    if (!addGroup(document.drawing(), unnamed ? "" : name, description.text, selected)) {
        context.complain("A drawing of version " + document.drawing().version() + " keeps no groups.");
        co_return false;
    }
    co_return true;
}

Task<bool> changeGroup(CommandContext& context, bool add) {
    auto group = co_await askOldGroup(context, "Enter group name or [?]");
    if (!group) {
        co_return false;
    }
    auto selected = co_await selectObjects(
        context, 0, add ? "Select objects to add to group" : "Select objects to remove from group");
    std::vector<RecordId> members = group->members;
    for (const RecordId id : selected) {
        std::erase(members, id);
        if (add) {
            members.push_back(id);
        }
    }
    ChangeWatch watch(context.document(), ModifiedObjects);
    setMembers(context.document().drawing(), *group, members);
    co_return true;
}

}  // namespace

CommandTask groupCommand(CommandContext& context) {
    Document& document = context.document();
    auto option = co_await context.keyword("Enter a group option",
                                           "? Order Add Remove Explode REName Selectable Create", "Create");
    if (option.isKeyword("Create")) {
        co_await createGroup(context);
    } else if (option.isKeyword("?")) {
        for (const EntityGroup& group : entityGroups(document.drawing())) {
            context.printLine(group.name + "  " + group.description);
        }
    } else if (option.isKeyword("Add") || option.isKeyword("Remove")) {
        co_await changeGroup(context, option.isKeyword("Add"));
    } else if (option.isKeyword("Explode")) {
        auto group = co_await askOldGroup(context, "Enter group name or [?]");
        if (group) {
            ChangeWatch watch(document, ModifiedObjects);
            removeGroup(document.drawing(), *group);
        }
    } else if (option.isKeyword("REName")) {
        auto group = co_await askOldGroup(context, "Enter old group name or [?]");
        if (!group) {
            co_return;
        }
        auto name = co_await askName(context, "Enter new name for group");
        if (name.text.empty() || findGroup(document.drawing(), name.text)) {
            context.complain(name.text.empty() ? "A name is needed."
                                               : "Group " + inQuotes(name.text) + " already exists.");
            co_return;
        }
        ChangeWatch watch(document, ModifiedObjects);
        renameGroup(document.drawing(), *group, name.text);
    } else if (option.isKeyword("Selectable")) {
        auto group = co_await askOldGroup(context, "Enter group name or [?]");
        if (group) {
            bool selectable = co_await askYesNo(context, "Selectable?", true);
            ChangeWatch watch(document, ModifiedObjects);
            document.drawing().put(group->record, 71, std::int64_t{selectable ? 1 : 0});
        }
    } else {
        context.fail("The order in a group is kept as the objects came into it.");
    }
}

CommandTask drawOrderCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    auto option = co_await context.keyword("Enter object ordering option", "Above Under Front Back", "Back");
    std::vector<RecordId> references;
    if (option.isKeyword("Above") || option.isKeyword("Under")) {
        references = co_await selectObjects(context, SelectNoPickFirst, "Select reference objects");
        if (references.empty()) {
            co_return;
        }
    }
    Document& document = context.document();
    ChangeWatch watch(document, ModifiedObjects);
    const OrderPlace place = option.isKeyword("Above")   ? OrderPlace::Above
                             : option.isKeyword("Under") ? OrderPlace::Under
                             : option.isKeyword("Front") ? OrderPlace::Front
                                                         : OrderPlace::Back;
    if (!changeDrawOrder(document.drawing(), selected, place, references)) {
        context.complain("A drawing of version " + document.drawing().version() +
                         " keeps no order but that of its objects.");
    }
}

namespace {

/// Marks along a curve: points, or insertions of a block turned along it or not.
struct Marker {
    std::string block;
    bool align = true;
};

Task<std::optional<Marker>> askMarker(CommandContext& context) {
    Marker marker;
    auto name = co_await askName(context, "Enter name of block to insert");
    const Block* block = findBlock(context.document().drawing(), name.text);
    if (block == nullptr) {
        context.complain("Cannot find block " + inQuotes(name.text) + ".");
        co_return std::nullopt;
    }
    marker.block = block->name;
    marker.align = co_await askYesNo(context, "Align block with object?", true);
    co_return marker;
}

void putMark(CommandContext& context, const Curve& curve, double distance, const Marker& marker,
             std::vector<RecordId>& made) {
    const auto t = curve.parameterAtDistance(distance);
    const auto place = t ? curve.at(*t) : std::nullopt;
    if (!place) {
        return;
    }
    Drawing& drawing = context.document().drawing();
    if (marker.block.empty()) {
        DrawnEntity point(context, "POINT", "AcDbPoint");
        made.push_back(point.point(10, *place).id());
        return;
    }
    const auto along = curve.first(*t);
    InsertRequest request;
    request.target = currentTarget(drawing);
    request.block = marker.block;
    request.place = *place;
    request.rotation = marker.align && along ? std::atan2(along->y, along->x) : 0;
    // Marks carry no attributes.
    const RecordId insert = insertBlockReference(drawing, request, {});
    for (RecordId part = drawing.next(insert); part != NoRecord && isSubEntity(drawing, part);
         part = drawing.next(insert)) {
        drawing.deleteRecord(part);
    }
    if (const auto follow = drawing.record(insert).find(66)) {
        drawing.removeTag(insert, *follow);
    }
    made.push_back(insert);
}

CommandTask markCurve(CommandContext& context, bool divide) {
    auto picked =
        co_await pickObject(context, divide ? "Select object to divide" : "Select object to measure");
    if (picked.entity == NoRecord) {
        co_return;
    }
    const auto curve = Curve::of(context.document().drawing(), picked.entity);
    if (!curve || curve->isEndless()) {
        context.fail("Cannot divide that object.");
        co_return;
    }
    Marker marker;
    double step = 0;
    const double whole = curve->length();
    for (bool asking = true; asking;) {
        auto answer =
            co_await context.distance(divide ? "Enter the number of segments" : "Specify length of segment",
                                      {.keywords = "Block", .noEmpty = true, .base = Point{}});
        if (answer.isKeyword()) {
            auto chosen = co_await askMarker(context);
            if (!chosen) {
                co_return;
            }
            marker = *chosen;
            continue;
        }
        if (divide && (answer.real < 2 || answer.real > 32767 || answer.real != std::floor(answer.real))) {
            context.complain("Requires an integer between 2 and 32767.");
            continue;
        }
        step = divide ? whole / answer.real : answer.real;
        if (!(step > 0) || whole / step > 1e6) {
            context.complain("Value must be positive and nonzero.");
            continue;
        }
        asking = false;
    }
    std::vector<RecordId> made;
    const double tail = whole * 1e-9;
    if (divide && curve->isClosed()) {
        putMark(context, *curve, 0, marker, made);
    }
    for (int i = 1; i * step < whole - (divide ? tail : 0) || (!divide && i * step <= whole + tail); ++i) {
        putMark(context, *curve, i * step, marker, made);
    }
    std::vector<automation::EntityName> names;
    names.reserve(made.size());
    for (const RecordId id : made) {
        names.push_back(automation::nameOf(id));
    }
    context.document().lisp().session().previousSelection = std::move(names);
    context.document().setModified(ModifiedObjects);
}

}  // namespace

CommandTask divideCommand(CommandContext& context) {
    return markCurve(context, true);
}

CommandTask measureCommand(CommandContext& context) {
    return markCurve(context, false);
}

namespace {

/// What an object is, without its handle and owner: two with the same text lie one over the other.
std::string content(const Drawing& drawing, RecordId id) {
    std::string text(drawing.type(id));
    const auto add = [&](RecordId record) {
        const Record tags = drawing.record(record);
        bool group = false;
        for (std::size_t i = 1; i < tags.size(); ++i) {
            const int code = tags.code(i);
            if (code == 102) {
                group = tags.raw(i).starts_with('{');
                continue;
            }
            if (!group && code != 5 && code != 330 && code != 999) {
                const double real = kindOf(code) == ValueKind::Real ? tags.real(i) : 0;
                text += "\n" + std::to_string(code) + "\t" +
                        (kindOf(code) == ValueKind::Real ? formatReal(real, 6) : tags.text(i));
            }
        }
    };
    add(id);
    for (RecordId part = drawing.next(id); part != NoRecord && isSubEntity(drawing, part);
         part = drawing.next(part)) {
        text += "\n0\t" + std::string(drawing.type(part));
        add(part);
    }
    return text;
}

}  // namespace

CommandTask overkillCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    for (;;) {
        auto option = co_await context.keyword(
            "Enter an option", "Ignore tOlerance Plines parTial Endtoend Associativity Done", "Done");
        if (option.isKeyword("Done")) {
            break;
        }
        if (option.isKeyword("tOlerance")) {
            co_await context.real("Specify tolerance", {.defaultText = "0.000001", .minimum = 0});
        } else if (option.isKeyword("Ignore")) {
            co_await askName(context, "Specify properties to ignore");
            context.printLine("All properties count here.");
        } else {
            co_await askYesNo(context, "Do that?", true);
            context.printLine("Only objects that lie exactly one over the other are deleted here.");
        }
    }
    Document& document = context.document();
    ChangeWatch watch(document, ModifiedObjects);
    std::set<std::string> seen;
    std::size_t deleted = 0;
    for (const RecordId id : selected) {
        if (!seen.insert(content(document.drawing(), id)).second) {
            eraseEntity(context, id);
            ++deleted;
        }
    }
    context.printLine(std::to_string(deleted) + " duplicate(s) deleted");
    context.printLine("0 overlapping object(s) or segment(s) deleted");
}

}  // namespace drafthost::commands
