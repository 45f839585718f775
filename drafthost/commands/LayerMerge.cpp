// SPDX-License-Identifier: GPL-3.0-or-later
// -LAYDEL and -LAYMRG: layers taken away with what is on them, or put into another.

#include <algorithm>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerTable.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

using Names = std::vector<std::string>;

/// Why a layer stays; empty when it may go.
std::string refusal(CommandContext& context, const std::string& name) {
    const Drawing& drawing = context.document().drawing();
    if (findEntry(drawing, Table::Layer, name) == NoRecord) {
        return "Cannot find layer " + inQuotes(name) + ".";
    }
    const char* reason = sameName(name, "0") || sameName(name, "Defpoints") ? "every drawing has it"
                         : sameName(name, currentLayerName(context))        ? "it is current"
                         : name.find('|') != std::string::npos ? "it belongs to an external reference"
                                                               : nullptr;
    if (reason != nullptr) {
        return "Layer " + inQuotes(name) + " cannot be deleted: " + reason + ".";
    }
    return {};
}

/// Layers by an object on them or by name, one after the other.
Task<Names> askLayers(CommandContext& context, const char* prompt) {
    Names names;
    for (;;) {
        auto picked = co_await pickObject(context, prompt, names.empty() ? "Name" : "Name Undo");
        std::string name;
        if (picked.keyword == "Undo") {
            names.pop_back();
            continue;
        }
        if (picked.keyword == "Name") {
            auto answer = co_await askName(context, "Enter layer name or [?]");
            if (answer.text == "?") {
                for (const RecordId id : tableEntries(context.document().drawing(), Table::Layer)) {
                    context.printLine(inQuotes(entryName(context.document().drawing(), id)));
                }
                continue;
            }
            name = answer.text;
            if (name.empty()) {
                continue;
            }
        } else if (picked.entity == NoRecord) {
            co_return names;
        } else {
            name = context.document().drawing().record(picked.entity).textOr(8, "0");
        }
        const std::string why = refusal(context, name);
        if (why.empty()) {
            names.push_back(name);
            context.printLine("Selected layers: " + name + ".");
        } else {
            context.complain(why);
        }
    }
}

bool isAmong(const Names& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& one) { return sameName(one, name); });
}

/// Every entity of layouts and blocks that lies on one of the layers, parts among them.
template <class Change>
void forEntitiesOn(Drawing& drawing, const Names& names, Change change) {
    std::vector<RecordId> found;
    const auto look = [&](RecordId main) {
        found.push_back(main);
        for (RecordId part = drawing.next(main); part != NoRecord && isSubEntity(drawing, part);
             part = drawing.next(part)) {
            found.push_back(part);
        }
    };
    for (const Block& block : blocks(drawing)) {
        for (const RecordId id : entitiesOf(drawing, block)) {
            look(id);
        }
    }
    if (blocks(drawing).empty() || findBlock(drawing, "*Model_Space") == nullptr) {
        for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
            look(id);
        }
    }
    for (const RecordId id : found) {
        if (drawing.isAlive(id) && isAmong(names, drawing.record(id).textOr(8, "0"))) {
            change(id);
        }
    }
}

void removeLayers(CommandContext& context, const Names& names) {
    Drawing& drawing = context.document().drawing();
    for (const std::string& name : names) {
        const RecordId layer = findEntry(drawing, Table::Layer, name);
        if (layer != NoRecord) {
            deleteEntry(drawing, Table::Layer, layer);
            context.printLine("Deleting layer " + inQuotes(name) + ".");
        }
    }
}

}  // namespace

CommandTask layerDeleteCommand(CommandContext& context) {
    auto names = co_await askLayers(context, "Select object on layer to delete");
    if (names.empty()) {
        co_return;
    }
    context.printLine("******** WARNING ********");
    context.printLine("All objects on the layers are deleted, in blocks too.");
    bool goOn = co_await askYesNo(context, "Do you wish to continue?", false);
    if (!goOn) {
        co_return;
    }
    ChangeWatch watch(context.document(), ModifiedObjects | ModifiedTables);
    Drawing& drawing = context.document().drawing();
    forEntitiesOn(drawing, names, [&](RecordId id) {
        if (isSubEntity(drawing, id)) {
            // An attribute goes alone; what ends or makes up its entity stays with it.
            if (drawing.type(id) == "ATTRIB") {
                drawing.deleteRecord(id);
            } else {
                drawing.put(id, 8, std::string("0"));
            }
        } else {
            deleteEntity(drawing, id);
        }
    });
    removeLayers(context, names);
}

CommandTask layerMergeCommand(CommandContext& context) {
    auto names = co_await askLayers(context, "Select object on layer to merge");
    if (names.empty()) {
        co_return;
    }
    const Drawing& drawing = context.document().drawing();
    std::string target;
    while (target.empty()) {
        auto picked = co_await pickObject(context, "Select object on target layer", "Name");
        if (picked.entity == NoRecord && picked.keyword.empty()) {
            co_return;
        }
        if (picked.entity != NoRecord) {
            target = drawing.record(picked.entity).textOr(8, "0");
        } else {
            auto answer = co_await askName(context, "Enter layer name or [?]");
            target = answer.text;
        }
        const RecordId layer = findEntry(drawing, Table::Layer, target);
        if (layer == NoRecord && !sameName(target, "0")) {
            context.complain("Cannot find layer " + inQuotes(target) + ".");
            target.clear();
        } else if (isAmong(names, target)) {
            context.complain("Layer " + inQuotes(target) + " is itself to be merged.");
            target.clear();
        } else if (layer != NoRecord) {
            target = entryName(drawing, layer);
        }
    }
    bool goOn = co_await askYesNo(context, "Do you wish to continue?", false);
    if (!goOn) {
        co_return;
    }
    ChangeWatch watch(context.document(), ModifiedObjects | ModifiedTables);
    Drawing& edited = context.document().drawing();
    forEntitiesOn(edited, names, [&](RecordId id) { edited.put(id, 8, target); });
    removeLayers(context, names);
}

}  // namespace drafthost::commands
