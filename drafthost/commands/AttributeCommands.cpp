// SPDX-License-Identifier: GPL-3.0-or-later
// -ATTEDIT and ATTSYNC: attributes of references changed and brought in line with their block.

#include <algorithm>
#include <map>

#include "drafthost/automation/EntityEdit.h"
#include "drafthost/automation/SelectionAnswer.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/ColorNames.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/EntityLooks.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/AttributeSync.h"
#include "drafthost/drawing/EntityTransform.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

/// Which attributes are meant.
struct AttributeFilter {
    std::string block = "*";
    std::string tag = "*";
    std::string value = "*";
};

Task<AttributeFilter> askFilter(CommandContext& context) {
    AttributeFilter filter;
    auto block = co_await askName(context, "Enter block name specification", "*");
    auto tag = co_await askName(context, "Enter attribute tag specification", "*");
    auto value = co_await context.text("Enter attribute value specification", "*");
    filter.block = block.text;
    filter.tag = tag.text;
    filter.value = value.text == "\\" ? "" : value.text;
    co_return filter;
}

bool matches(const Drawing& drawing, RecordId insert, RecordId attribute, const AttributeFilter& filter) {
    const std::string value = drawing.record(attribute).textOr(1, "");
    const bool valueFits =
        filter.value.empty() ? value.empty() : lisp::wildcardMatch(value, filter.value, false);
    return lisp::wildcardMatch(drawing.record(insert).textOr(2, ""), filter.block, true) &&
           lisp::wildcardMatch(drawing.record(attribute).textOr(2, ""), filter.tag, true) && valueFits;
}

std::vector<RecordId> attributesOf(const Drawing& drawing, RecordId insert) {
    std::vector<RecordId> result;
    for (RecordId id = drawing.next(insert); id != NoRecord && drawing.type(id) == "ATTRIB";
         id = drawing.next(id)) {
        result.push_back(id);
    }
    return result;
}

/// The attributes of the references that fit the filter.
std::vector<RecordId> fitting(const Drawing& drawing, const std::vector<RecordId>& inserts,
                              const AttributeFilter& filter) {
    std::vector<RecordId> result;
    for (const RecordId insert : inserts) {
        if (drawing.type(insert) != "INSERT" || automation::isLocked(drawing, insert)) {
            continue;
        }
        for (const RecordId attribute : attributesOf(drawing, insert)) {
            if (matches(drawing, insert, attribute, filter)) {
                result.push_back(attribute);
            }
        }
    }
    return result;
}

std::vector<RecordId> everyInsert(const Drawing& drawing, bool visibleOnly) {
    std::vector<RecordId> result;
    for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
        if (drawing.type(id) == "INSERT" && (!visibleOnly || automation::isVisibleHere(drawing, id))) {
            result.push_back(id);
        }
    }
    return result;
}

std::string replaced(const std::string& text, const std::string& from, const std::string& to, bool all) {
    if (from.empty()) {
        return to + text;
    }
    std::string result;
    std::size_t at = 0;
    for (std::size_t found = text.find(from); found != std::string::npos; found = text.find(from, at)) {
        result += text.substr(at, found - at) + to;
        at = found + from.size();
        if (!all) {
            break;
        }
    }
    return result + text.substr(at);
}

void setValue(CommandContext& context, RecordId attribute, const std::string& value) {
    ChangeWatch watch(context.document(), ModifiedObjects);
    context.document().drawing().put(attribute, 1, value);
}

Task<bool> changeGlobally(CommandContext& context) {
    context.printLine("Performing global editing of attribute values.");
    bool visible = co_await askYesNo(context, "Edit only attributes visible on screen?", true);
    auto filter = co_await askFilter(context);
    const Drawing& drawing = context.document().drawing();
    std::vector<RecordId> inserts;
    if (visible) {
        inserts = co_await selectObjects(context, SelectToEdit, "Select Attributes");
    } else {
        inserts = everyInsert(drawing, false);
    }
    const auto attributes = fitting(drawing, inserts, filter);
    context.printLine(std::to_string(attributes.size()) + " attributes selected.");
    if (attributes.empty()) {
        co_return false;
    }
    auto from = co_await context.text("Enter string to change");
    auto to = co_await context.text("Enter new string");
    for (const RecordId attribute : attributes) {
        const std::string now = drawing.record(attribute).textOr(1, "");
        if (from.text.empty() || now.find(from.text) != std::string::npos) {
            setValue(context, attribute, replaced(now, from.text, to.text, true));
        }
    }
    co_return true;
}

Task<bool> changeValue(CommandContext& context, RecordId attribute) {
    auto how = co_await context.keyword("Enter type of value modification", "Change Replace", "Replace");
    const Drawing& drawing = context.document().drawing();
    if (how.isKeyword("Replace")) {
        auto value = co_await context.text("Enter new attribute value");
        setValue(context, attribute, value.text);
        co_return true;
    }
    auto from = co_await context.text("Enter string to change");
    auto to = co_await context.text("Enter new string");
    setValue(context, attribute,
             replaced(drawing.record(attribute).textOr(1, ""), from.text, to.text, false));
    co_return true;
}

Task<bool> changePlace(CommandContext& context, RecordId attribute) {
    auto place = co_await context.point("Specify new text insertion point <no change>");
    if (place.isEnter()) {
        co_return false;
    }
    Drawing& drawing = context.document().drawing();
    const Record record = drawing.record(attribute);
    const Transform plane = Transform::ofExtrusion(record.pointOr(210, {0, 0, 1}));
    const bool aligned = record.integerOr(72, 0) != 0 || record.integerOr(74, 0) != 0;
    const Point from = plane(record.pointOr(aligned ? 11 : 10, {}));
    ChangeWatch watch(context.document(), ModifiedObjects);
    std::string error;
    transformEntity(drawing, attribute, Transform::translation(worldFromUcs(drawing, place.point) - from),
                    {.mirrorText = true}, error);
    co_return true;
}

Task<bool> changeOther(CommandContext& context, RecordId attribute, std::string option) {
    Drawing& drawing = context.document().drawing();
    if (option == "Height") {
        auto height =
            co_await context.distance("Specify new height <no change>", {.minimum = 1e-9, .base = Point{}});
        if (!height.isEnter()) {
            ChangeWatch watch(context.document(), ModifiedObjects);
            drawing.put(attribute, 40, height.real);
        }
    } else if (option == "Angle") {
        auto angle = co_await context.angle("Specify new rotation angle <no change>", {.base = Point{}});
        if (!angle.isEnter()) {
            ChangeWatch watch(context.document(), ModifiedObjects);
            setGroupInPlace(drawing, attribute, 50, directionInDegrees(angle.real));
        }
    } else if (option == "Style") {
        auto style = co_await askName(context, "Enter new text style",
                                      drawing.record(attribute).textOr(7, "Standard"));
        const RecordId entry = findEntry(drawing, Table::Style, style.text);
        if (entry == NoRecord) {
            context.complain("Cannot find style " + inQuotes(style.text) + ".");
            co_return false;
        }
        ChangeWatch watch(context.document(), ModifiedObjects);
        drawing.put(attribute, 7, entryName(drawing, entry), {1, 40});
    } else if (option == "Layer") {
        auto layer =
            co_await askName(context, "Enter new layer name", drawing.record(attribute).textOr(8, "0"));
        const RecordId entry = findEntry(drawing, Table::Layer, layer.text);
        if (entry == NoRecord) {
            context.complain("Cannot find layer " + inQuotes(layer.text) + ".");
            co_return false;
        }
        ChangeWatch watch(context.document(), ModifiedObjects);
        drawing.put(attribute, 8, entryName(drawing, entry));
    } else {
        auto color = co_await askName(context, "Enter new color", "BYLAYER");
        const auto index = parseColorIndex(color.text, 0);
        if (!index && !sameName(color.text, "BYLAYER")) {
            context.complain(inQuotes(color.text) + " is no color.");
            co_return false;
        }
        ChangeWatch watch(context.document(), ModifiedObjects);
        setEntityColor(drawing, attribute, Color{index.value_or(256)});
    }
    co_return true;
}

Task<bool> changeOneByOne(CommandContext& context) {
    auto filter = co_await askFilter(context);
    auto inserts = co_await selectObjects(context, SelectToEdit, "Select Attributes");
    const auto attributes = fitting(context.document().drawing(), inserts, filter);
    context.printLine(std::to_string(attributes.size()) + " attributes selected.");
    for (const RecordId attribute : attributes) {
        for (bool next = false; !next;) {
            auto option = co_await context.keyword(
                "Enter an option", "Value Position Height Angle Style Layer Color Next", "Next");
            if (option.isKeyword("Next")) {
                next = true;
            } else if (option.isKeyword("Value")) {
                co_await changeValue(context, attribute);
            } else if (option.isKeyword("Position")) {
                co_await changePlace(context, attribute);
            } else {
                co_await changeOther(context, attribute, option.keyword);
            }
        }
    }
    co_return true;
}

}  // namespace

CommandTask attributeEditCommand(CommandContext& context) {
    bool single = co_await askYesNo(context, "Edit attributes one at a time?", true);
    if (single) {
        co_await changeOneByOne(context);
    } else {
        co_await changeGlobally(context);
    }
}

namespace {

std::vector<std::string> blocksWithAttributes(const Drawing& drawing, const std::string& names) {
    std::vector<std::string> result;
    for (const Block& block : blocks(drawing)) {
        if (!block.name.starts_with('*') && lisp::wildcardMatch(block.name, names, true) &&
            !attributeDefinitions(drawing, block).empty()) {
            result.push_back(block.name);
        }
    }
    return result;
}

}  // namespace

CommandTask attributeSyncCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    std::vector<std::string> names;
    while (names.empty()) {
        auto option = co_await context.keyword("Enter an option", "? Name Select", "Select");
        if (option.isKeyword("?")) {
            for (const std::string& name : blocksWithAttributes(drawing, "*")) {
                context.printLine(inQuotes(name));
            }
            continue;
        }
        if (option.isKeyword("Name")) {
            auto name = co_await askName(context, "Enter block name");
            if (name.text.empty()) {
                co_return;
            }
            names = blocksWithAttributes(drawing, name.text);
            if (names.empty()) {
                context.fail("There is no block with attributes named " + inQuotes(name.text) + ".");
                co_return;
            }
            break;
        }
        auto picked = co_await pickObject(context, "Select a block");
        if (picked.entity == NoRecord) {
            co_return;
        }
        names = drawing.type(picked.entity) == "INSERT"
                    ? blocksWithAttributes(drawing, drawing.record(picked.entity).textOr(2, ""))
                    : std::vector<std::string>();
        if (names.empty()) {
            context.complain("The object is no block with attributes.");
            continue;
        }
        bool wanted = co_await askYesNo(context, "ATTSYNC block " + names.front() + "?", true);
        if (!wanted) {
            co_return;
        }
    }
    ChangeWatch watch(document, ModifiedObjects);
    for (const std::string& name : names) {
        const std::size_t count = syncAttributes(drawing, name);
        context.printLine("ATTSYNC block " + name + ": " + std::to_string(count) + " references.");
    }
}

}  // namespace drafthost::commands
