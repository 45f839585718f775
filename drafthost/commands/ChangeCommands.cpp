// SPDX-License-Identifier: GPL-3.0-or-later
// CHANGE, CHPROP, MATCHPROP, SETBYLAYER: objects get other properties.

#include <cmath>
#include <unordered_set>

#include "drafthost/automation/DxfList.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/EntityLooks.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/EntityTransform.h"
#include "drafthost/drawing/PolylineWriter.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

void applyToAll(CommandContext& context, const std::vector<RecordId>& entities, const LookChange& change) {
    ChangeWatch watch(context.document(), ModifiedObjects);
    std::size_t refused = 0;
    for (const RecordId id : entities) {
        refused += applyLook(context.document().drawing(), id, change) ? 0 : 1;
    }
    if (refused != 0) {
        context.printLine(std::to_string(refused) + " of the objects cannot have that property.");
    }
}

Task<bool> changeProperties(CommandContext& context, std::vector<RecordId> selected, bool elevation) {
    for (;;) {
        auto change = co_await askLookChange(context, elevation);
        if (change.kind == LookChange::Kind::None) {
            co_return true;
        }
        applyToAll(context, selected, change);
    }
}

/// Lines that end near the point end there; circles go through it.
void changePoint(CommandContext& context, const std::vector<RecordId>& selected, const Point& ucs) {
    Drawing& drawing = context.document().drawing();
    ChangeWatch watch(context.document(), ModifiedObjects);
    const Point to = worldFromUcs(drawing, ucs);
    for (const RecordId id : selected) {
        const Record record = drawing.record(id);
        if (record.type() == "LINE") {
            const Point a = record.pointOr(10, {});
            const Point b = record.pointOr(11, {});
            drawing.putPoint(id, length(a - to) < length(b - to) ? 10 : 11, to, true);
        } else if (record.type() == "CIRCLE") {
            const Transform plane = inverseOf(Transform::ofExtrusion(record.pointOr(210, {0, 0, 1})));
            const Point arm = plane(to) - record.pointOr(10, {});
            const double radius = std::hypot(arm.x, arm.y);
            if (radius > 0) {
                drawing.put(id, 40, radius);
            }
        }
    }
}

bool moveTo(CommandContext& context, RecordId id, const Point& ucs) {
    Drawing& drawing = context.document().drawing();
    const Record record = drawing.record(id);
    const Transform plane = Transform::ofExtrusion(record.pointOr(210, {0, 0, 1}));
    const bool aligned =
        record.type() != "INSERT" &&
        (record.integerOr(72, 0) != 0 || record.integerOr(73, 0) != 0 || record.integerOr(74, 0) != 0);
    const Point from = plane(record.pointOr(aligned ? 11 : 10, {}));
    std::string error;
    return transformEntity(drawing, id, Transform::translation(worldFromUcs(drawing, ucs) - from), {}, error);
}

Task<bool> changeText(CommandContext& context, RecordId id) {
    Drawing& drawing = context.document().drawing();
    auto place = co_await context.point("Specify new text insertion point <no change>");
    ChangeWatch watch(context.document(), ModifiedObjects);
    if (!place.isEnter()) {
        moveTo(context, id, place.point);
    }
    co_return drawing.isAlive(id);
}

Task<bool> changeTextForm(CommandContext& context, RecordId id) {
    Drawing& drawing = context.document().drawing();
    const std::string style = drawing.record(id).textOr(7, "Standard");
    auto name = co_await Ask(context, Ask::Type::FileName, "Enter new text style", {.defaultText = style});
    const RecordId entry = findEntry(drawing, Table::Style, name.text);
    if (entry == NoRecord && foldCase(name.text) != foldCase(style)) {
        context.complain("Cannot find style " + inQuotes(name.text) + ".");
        co_return false;
    }
    if (entry != NoRecord && foldCase(name.text) != foldCase(style)) {
        ChangeWatch watch(context.document(), ModifiedObjects);
        if (drawing.record(id).find(7)) {
            drawing.put(id, 7, entryName(drawing, entry));
        } else {
            automation::addGroup(drawing, id, 7, lisp::Value::string(entryName(drawing, entry)));
        }
    }
    if (entry == NoRecord || drawing.record(entry).realOr(40, 0) == 0) {
        const std::string now = formatReal(drawing.record(id).realOr(40, 1), 4);
        auto height = co_await context.distance("Specify new height",
                                                {.defaultText = now, .minimum = 1e-9, .base = Point{}});
        if (formatReal(height.real, 4) != now) {
            ChangeWatch watch(context.document(), ModifiedObjects);
            drawing.put(id, 40, height.real);
        }
    }
    const std::string turned = formatReal(drawing.record(id).realOr(50, 0), 4);
    auto rotation =
        co_await context.angle("Specify new rotation angle", {.defaultText = turned, .base = Point{}});
    const double degrees = directionInDegrees(rotation.real);
    if (formatReal(degrees, 4) != turned) {
        ChangeWatch watch(context.document(), ModifiedObjects);
        setGroupInPlace(drawing, id, 50, degrees);
    }
    co_return true;
}

Task<bool> changeWords(CommandContext& context, RecordId id) {
    Drawing& drawing = context.document().drawing();
    const std::string now = drawing.record(id).textOr(1, "");
    auto words = co_await context.text("Enter new text", now);
    ChangeWatch watch(context.document(), ModifiedObjects);
    drawing.put(id, 1, words.text);
    co_return true;
}

Task<bool> changeInsert(CommandContext& context, RecordId id) {
    auto place = co_await context.point("Specify new block insertion point <no change>");
    if (!place.isEnter()) {
        ChangeWatch watch(context.document(), ModifiedObjects);
        moveTo(context, id, place.point);
    }
    Drawing& drawing = context.document().drawing();
    const std::string turned = formatReal(drawing.record(id).realOr(50, 0), 4);
    auto rotation =
        co_await context.angle("Specify new block rotation angle", {.defaultText = turned, .base = Point{}});
    const double degrees = directionInDegrees(rotation.real);
    if (formatReal(degrees, 4) == turned) {
        co_return true;
    }
    ChangeWatch watch(context.document(), ModifiedObjects);
    const double by = (degrees - drawing.record(id).realOr(50, 0)) * RadiansPerDegree;
    const Record record = drawing.record(id);
    const Transform plane = Transform::ofExtrusion(record.pointOr(210, {0, 0, 1}));
    const Transform turn = plane * about(record.pointOr(10, {}), Transform::rotation(by)) * inverseOf(plane);
    std::string error;
    if (!transformEntity(drawing, id, turn, {}, error)) {
        context.complain(error);
    }
    co_return true;
}

/// Enter instead of a point: each object is asked about in turn.
Task<bool> changeOneByOne(CommandContext& context, std::vector<RecordId> selected) {
    for (const RecordId id : selected) {
        const std::string type(context.document().drawing().type(id));
        if (type == "TEXT" || type == "ATTDEF") {
            co_await changeText(context, id);
            co_await changeTextForm(context, id);
            co_await changeWords(context, id);
        } else if (type == "INSERT") {
            co_await changeInsert(context, id);
        } else if (type == "CIRCLE") {
            auto radius = co_await context.distance("Specify new circle radius <no change>",
                                                    {.minimum = 1e-9, .base = Point{}});
            if (!radius.isEnter()) {
                ChangeWatch watch(context.document(), ModifiedObjects);
                context.document().drawing().put(id, 40, radius.real);
            }
        }
    }
    co_return true;
}

}  // namespace

CommandTask changeCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    auto point = co_await context.point("Specify change point", {.keywords = "Properties"});
    if (point.isKeyword()) {
        co_await changeProperties(context, selected, true);
    } else if (point.isEnter()) {
        co_await changeOneByOne(context, selected);
    } else {
        changePoint(context, selected, point.point);
    }
}

CommandTask chpropCommand(CommandContext& context) {
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (!selected.empty()) {
        co_await changeProperties(context, selected, false);
    }
}

namespace {

/// The settings are a dialog's: which properties count. All do.
Task<std::vector<RecordId>> selectWithSettings(CommandContext& context, unsigned flags, const char* prompt) {
    std::string word;
    for (;;) {
        auto selected = co_await selectObjects(context, flags, prompt, "Settings", word);
        if (word.empty()) {
            co_return selected;
        }
        context.printLine("The settings stay as they are: all properties count.");
    }
}

/// Groups of the kind's own that MATCHPROP carries over besides the looks.
std::vector<int> matchedGroups(std::string_view type) {
    if (type == "TEXT" || type == "ATTDEF" || type == "ATTRIB") {
        return {7, 40, 41, 51, 71};
    }
    if (type == "MTEXT") {
        return {7, 40, 71, 72};
    }
    if (type == "DIMENSION" || type == "LEADER" || type == "TOLERANCE") {
        return {3};
    }
    if (type == "HATCH") {
        return {2, 41, 52};
    }
    return {};
}

void match(Drawing& drawing, RecordId from, RecordId to) {
    takeLooks(drawing, from, to);
    const std::string type(drawing.type(from));
    if (type != drawing.type(to) || type == "HATCH") {
        return;
    }
    for (const int code : matchedGroups(type)) {
        const auto at = drawing.record(from).find(code);
        if (!at) {
            continue;
        }
        const Value value = drawing.record(from).value(*at);
        if (drawing.record(to).find(code)) {
            drawing.put(to, code, value);
        } else if (const auto* number = std::get_if<double>(&value)) {
            setGroupInPlace(drawing, to, code, *number);
        } else {
            drawing.put(to, code, value, {1});
        }
    }
}

}  // namespace

CommandTask matchpropCommand(CommandContext& context) {
    auto source = co_await pickObject(context, "Select source object");
    if (source.entity == NoRecord) {
        co_return;
    }
    context.printLine(
        "Current active settings:  Color Layer Ltype Ltscale Lineweight Transparency Thickness PlotStyle Dim "
        "Text Hatch");
    auto targets = co_await selectWithSettings(context, SelectToEdit | SelectNoPickFirst,
                                               "Select destination object(s) or [Settings]");
    ChangeWatch watch(context.document(), ModifiedObjects);
    for (const RecordId id : targets) {
        if (id != source.entity) {
            match(context.document().drawing(), source.entity, id);
        }
    }
}

namespace {

/// Takes away what an object has of its own; colours by block go too where asked.
bool toByLayer(Drawing& drawing, RecordId id, bool byBlock) {
    bool changed = false;
    for (const int code : {62, 420, 430, 6, 370, 440, 347}) {
        const Record record = drawing.record(id);
        const auto at = record.find(code);
        if (!at || *at >= record.xdata()) {
            continue;
        }
        const bool isByBlock = (code == 62 && record.integer(*at) == 0) ||
                               (code == 370 && record.integer(*at) == -2) ||
                               (code == 6 && foldCase(record.text(*at)) == foldCase("ByBlock")) ||
                               (code == 440 && record.integer(*at) == 0x01000000);
        if (byBlock || !isByBlock) {
            drawing.removeTag(id, *at);
            changed = true;
        }
    }
    return changed;
}

struct ByLayerCount {
    std::size_t objects = 0;
    std::size_t blocks = 0;
};

class ByLayerWork {
  public:
    ByLayerWork(Drawing& drawing, bool byBlock, bool blocks)
        : drawing_(drawing), byBlock_(byBlock), blocks_(blocks) {}
    void entity(RecordId id) {
        bool changed = toByLayer(drawing_, id, byBlock_);
        for (RecordId part = drawing_.next(id); part != NoRecord && isSubEntity(drawing_, part);
             part = drawing_.next(part)) {
            changed = toByLayer(drawing_, part, byBlock_) || changed;
        }
        count.objects += changed ? 1 : 0;
        if (blocks_ && drawing_.type(id) == "INSERT") {
            block(drawing_.record(id).textOr(2, ""));
        }
    }
    ByLayerCount count;

  private:
    void block(const std::string& name) {
        const Block* found = findBlock(drawing_, name);
        if (found == nullptr || !done_.insert(foldCase(name)).second) {
            return;
        }
        ++count.blocks;
        for (const RecordId id : entitiesOf(drawing_, *found)) {
            entity(id);
        }
    }

    Drawing& drawing_;
    bool byBlock_;
    bool blocks_;
    std::unordered_set<std::string> done_;
};

}  // namespace

CommandTask setByLayerCommand(CommandContext& context) {
    context.printLine("Current active settings: Color Linetype Lineweight Transparency Material");
    auto selected = co_await selectWithSettings(context, SelectToEdit, "Select objects or [Settings]");
    if (selected.empty()) {
        co_return;
    }
    bool byBlock = co_await askYesNo(context, "Change ByBlock to ByLayer?", true);
    bool blocks = co_await askYesNo(context, "Include blocks?", true);
    ChangeWatch watch(context.document(), ModifiedObjects);
    ByLayerWork work(context.document().drawing(), byBlock, blocks);
    for (const RecordId id : selected) {
        work.entity(id);
    }
    context.printLine(std::to_string(work.count.objects) + " objects modified, " +
                      std::to_string(work.count.blocks) + " blocks looked through.");
}

}  // namespace drafthost::commands
