// SPDX-License-Identifier: GPL-3.0-or-later
// Layers by the objects on them: LAYISO, LAYUNISO, LAYFRZ, LAYOFF, LAYLCK, LAYULK, LAYON, LAYTHW, LAYMCUR,
// LAYCUR, LAYERP.

#include <set>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EntityLooks.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerTable.h"
#include "drafthost/commands/LayerWatch.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/LayerLook.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/RegistryFile.h"

namespace drafthost::commands {

namespace {

constexpr unsigned TableBits = ModifiedObjects | ModifiedTables;

std::string layerOf(const Drawing& drawing, RecordId id) {
    return drawing.record(id).textOr(8, "0");
}

RecordId layerRecord(Drawing& drawing, const std::string& name) {
    provideLayerZero(drawing, name);
    return findEntry(drawing, Table::Layer, name);
}

template <class Change>
void changeAll(CommandContext& context, Change change) {
    Document& document = context.document();
    LayerWatch before(document);
    ChangeWatch watch(document, TableBits);
    for (const RecordId id : tableEntries(document.drawing(), Table::Layer)) {
        change(document.drawing(), id);
    }
}

/// What the commands for single layers do to the layer of the object that was picked.
struct PickedChange {
    const char* prompt;
    const char* done;
    void (*apply)(Drawing&, RecordId layer);
    bool sparesCurrent;
    bool asksForCurrent;
};

Task<bool> mayTouch(CommandContext& context, PickedChange change, std::string name) {
    if (!sameName(name, currentLayerName(context))) {
        co_return true;
    }
    if (change.sparesCurrent) {
        context.printLine("Cannot freeze layer " + inQuotes(name) + ".  It is the CURRENT layer.");
        co_return false;
    }
    if (change.asksForCurrent) {
        bool wanted = co_await askYesNo(
            context, "Layer " + inQuotes(name) + " is current, do you want to turn it off?", false);
        co_return wanted;
    }
    co_return true;
}

/// Choices that concern viewports and nested objects; they change nothing about whole layers.
Task<bool> askPickSettings(CommandContext& context) {
    auto kind = co_await context.keyword("Enter setting type for", "Viewports Block", "Viewports");
    if (kind.isKeyword("Viewports")) {
        co_await context.keyword("In paper space viewport use", "Freeze Off Vpfreeze", "Vpfreeze");
    } else {
        co_await context.keyword("Enter Block Selection nesting level", "Block Entity None", "Entity");
    }
    co_return true;
}

CommandTask changePicked(CommandContext& context, PickedChange change, bool once) {
    Document& document = context.document();
    LayerWatch before(document);
    std::vector<LayerSnapshot> steps;
    for (bool more = true; more; more = !once) {
        auto picked = co_await pickObject(context, change.prompt, once ? "" : "Settings Undo");
        if (picked.keyword == "Settings") {
            co_await askPickSettings(context);
            continue;
        }
        if (picked.keyword == "Undo") {
            if (!steps.empty()) {
                ChangeWatch watch(document, TableBits);
                restoreLayers(document.drawing(), steps.back());
                steps.pop_back();
            }
            continue;
        }
        if (picked.entity == NoRecord) {
            co_return;
        }
        const std::string name = layerOf(document.drawing(), picked.entity);
        bool may = co_await mayTouch(context, change, name);
        if (!may) {
            continue;
        }
        ChangeWatch watch(document, TableBits);
        steps.push_back(layerSnapshot(document.drawing()));
        const RecordId layer = layerRecord(document.drawing(), name);
        if (layer != NoRecord) {
            change.apply(document.drawing(), layer);
            context.printLine("Layer " + inQuotes(name) + change.done);
        }
    }
}

void freeze(Drawing& drawing, RecordId layer) {
    setLayerFlag(drawing, layer, LayerFrozen, true);
}
void turnOff(Drawing& drawing, RecordId layer) {
    switchLayerOff(drawing, layer, true);
}
void lock(Drawing& drawing, RecordId layer) {
    setLayerFlag(drawing, layer, LayerLocked, true);
}
void unlock(Drawing& drawing, RecordId layer) {
    setLayerFlag(drawing, layer, LayerLocked, false);
}

constexpr std::string_view UserRoot = "HKEY_CURRENT_USER";

std::string isolationKey() {
    return RegistryFile::productKey() + "\\Commands\\LAYISO";
}

/// Whether other layers are turned off, or only locked; kept from one start of the host to the next.
bool isolatesByOff(CommandContext& context) {
    return context.host().registry().readString(UserRoot, isolationKey()).value_or("Lock") == "Off";
}

Task<bool> askIsolation(CommandContext& context) {
    auto how = co_await context.keyword("Enter setting for layers not isolated", "Off Lock",
                                        isolatesByOff(context) ? "Off" : "Lock");
    context.host().registry().write(UserRoot, isolationKey(), how.keyword);
    if (how.isKeyword("Off")) {
        co_await context.keyword("In paper space viewport use", "Vpfreeze Off", "Vpfreeze");
    } else {
        co_await context.integer("Enter fade value (0-90)",
                                 {.defaultText = "50", .minimum = 0, .maximum = 90});
    }
    co_return true;
}

}  // namespace

CommandTask layerFreezeCommand(CommandContext& context) {
    return changePicked(
        context, {"Select an object on the layer to be frozen", " has been frozen.", freeze, true, false},
        false);
}

CommandTask layerOffCommand(CommandContext& context) {
    return changePicked(
        context,
        {"Select an object on the layer to be turned off", " has been turned off.", turnOff, false, true},
        false);
}

CommandTask layerLockCommand(CommandContext& context) {
    return changePicked(
        context, {"Select an object on the layer to be locked", " has been locked.", lock, false, false},
        true);
}

CommandTask layerUnlockCommand(CommandContext& context) {
    return changePicked(
        context,
        {"Select an object on the layer to be unlocked", " has been unlocked.", unlock, false, false}, true);
}

CommandTask layerOnCommand(CommandContext& context) {
    changeAll(context, [](Drawing& drawing, RecordId layer) { switchLayerOff(drawing, layer, false); });
    context.printLine("All layers have been turned on.");
    co_return;
}

CommandTask layerThawCommand(CommandContext& context) {
    changeAll(context,
              [](Drawing& drawing, RecordId layer) { setLayerFlag(drawing, layer, LayerFrozen, false); });
    context.printLine("All layers have been thawed.");
    co_return;
}

CommandTask layerIsolateCommand(CommandContext& context) {
    Document& document = context.document();
    std::vector<RecordId> selected;
    std::string word;
    do {
        context.printLine(isolatesByOff(context) ? "Current setting: Hide layers, Viewports=Vpfreeze"
                                                 : "Current setting: Lock layers, Fade=50");
        selected = co_await selectObjects(
            context, 0, "Select objects on the layer(s) to be isolated or [Settings]", "Settings", word);
        if (!word.empty()) {
            co_await askIsolation(context);
        }
    } while (!word.empty());
    if (selected.empty()) {
        co_return;
    }
    LayerWatch before(document);
    ChangeWatch watch(document, TableBits);
    Drawing& drawing = document.drawing();
    document.memory().layersIsolated = {layerSnapshot(drawing)};
    std::set<std::string> kept;
    for (const RecordId id : selected) {
        kept.insert(foldCase(layerOf(drawing, id)));
    }
    std::string last;
    const bool off = isolatesByOff(context);
    for (const RecordId layer : tableEntries(drawing, Table::Layer)) {
        const std::string name = entryName(drawing, layer);
        if (kept.contains(foldCase(name))) {
            switchLayerOff(drawing, layer, false);
            setLayerFlag(drawing, layer, LayerLocked, false);
            last = name;
        } else if (off) {
            switchLayerOff(drawing, layer, true);
        } else {
            setLayerFlag(drawing, layer, LayerLocked, true);
        }
    }
    if (!kept.contains(foldCase(currentLayerName(context))) && !last.empty()) {
        setHeader(drawing, "$CLAYER", 8, last);
    }
    context.printLine(kept.size() == 1 ? "Layer " + inQuotes(last) + " has been isolated."
                                       : std::to_string(kept.size()) + " layers have been isolated.");
}

CommandTask layerUnisolateCommand(CommandContext& context) {
    Document& document = context.document();
    auto& isolated = document.memory().layersIsolated;
    if (isolated.empty()) {
        context.printLine("There are no layers that LAYISO has isolated.");
        co_return;
    }
    LayerWatch before(document);
    ChangeWatch watch(document, TableBits);
    restoreLayers(document.drawing(), isolated.back());
    isolated.clear();
    context.printLine("Layers isolated by LAYISO command have been restored.");
}

CommandTask layerMakeCurrentCommand(CommandContext& context) {
    auto picked = co_await pickObject(context, "Select object whose layer will become current");
    if (picked.entity == NoRecord) {
        co_return;
    }
    const std::string name = layerOf(context.document().drawing(), picked.entity);
    std::string reason;
    if (context.host().variables().set("CLAYER", name, reason) != VariableStatus::Ok) {
        context.complain(reason);
        co_return;
    }
    context.printLine(name + " is now the current layer.");
}

CommandTask layerToCurrentCommand(CommandContext& context) {
    auto selected =
        co_await selectObjects(context, SelectToEdit, "Select objects to be changed to the current layer");
    if (selected.empty()) {
        co_return;
    }
    LookChange change;
    change.kind = LookChange::Kind::Layer;
    change.name = currentLayerName(context);
    ChangeWatch watch(context.document(), ModifiedObjects);
    for (const RecordId id : selected) {
        applyLook(context.document().drawing(), id, change);
    }
    context.printLine(std::to_string(selected.size()) + " objects changed to layer " + inQuotes(change.name) +
                      " (the current layer).");
}

CommandTask layerPreviousCommand(CommandContext& context) {
    Document& document = context.document();
    auto& before = document.memory().layersBefore;
    if (before.empty()) {
        context.printLine("*No previous layer status*");
        co_return;
    }
    ChangeWatch watch(document, TableBits);
    restoreLayers(document.drawing(), before.back());
    before.pop_back();
    context.printLine("Restored previous layer states.");
}

}  // namespace drafthost::commands
