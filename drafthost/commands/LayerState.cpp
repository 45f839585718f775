// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerTable.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/LayerLook.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr unsigned TableBits = ModifiedObjects | ModifiedTables;

bool fromXref(std::string_view name) {
    return name.find('|') != std::string_view::npos;
}

/// Makes an existing layer current, switched on; tells a refusal.
bool makeCurrent(CommandContext& context, RecordId layer, const std::string& name) {
    Document& document = context.document();
    std::string reason;
    if (context.host().variables().set("CLAYER", name, reason) != VariableStatus::Ok) {
        context.complain(reason);
        return false;
    }
    if (layer != NoRecord) {
        ChangeWatch watch(document, TableBits);
        switchLayerOff(document.drawing(), layer, false);
    }
    return true;
}

bool addLayer(CommandContext& context, const std::string& name) {
    Document& document = context.document();
    std::string fault = layerNameFault(document.drawing(), name);
    if (!fault.empty()) {
        context.complain(fault);
        return false;
    }
    ChangeWatch watch(document, TableBits);
    addEntry(document.drawing(), Table::Layer, name);
    return true;
}

std::vector<RecordId> layersNamed(Document& document, std::string_view list) {
    ChangeWatch watch(document, TableBits);
    provideLayerZero(document.drawing(), list);
    return matchingLayers(document.drawing(), list);
}

std::string stateText(const Drawing& drawing, RecordId layer) {
    std::string text = layerIsOff(drawing, layer) ? "off" : "on";
    if (layerHas(drawing, layer, LayerFrozen)) {
        text += " frozen";
    }
    if (layerHas(drawing, layer, LayerLocked)) {
        text += " locked";
    }
    if (drawing.record(layer).integerOr(290, 1) == 0) {
        text += " no-plot";
    }
    return text;
}

std::string padded(std::string text, size_t width) {
    text.append(text.size() < width ? width - text.size() : 1, ' ');
    return text;
}

}  // namespace

bool sameName(std::string_view a, std::string_view b) {
    return foldCase(a) == foldCase(b);
}

std::string currentLayerName(CommandContext& context) {
    return context.host().variables().string("CLAYER", "0");
}

Ask askName(CommandContext& context, std::string prompt, const std::string& standard) {
    return {context, Ask::Type::FileName, std::move(prompt), {.defaultText = standard}};
}

bool versionHolds(CommandContext& context, int version, std::string_view property) {
    const Drawing& drawing = context.document().drawing();
    if (drawing.versionNumber() >= version) {
        return true;
    }
    context.complain("A drawing of version " + drawing.version() + " cannot hold " + std::string(property) +
                     " for layers.");
    return false;
}

Task<bool> forLayers(CommandContext& context, std::string prompt, bool currentAsDefault,
                     std::function<void(Drawing&, RecordId)> change) {
    std::string standard = currentAsDefault ? currentLayerName(context) : std::string();
    auto answer = co_await askName(context, std::move(prompt), standard);
    if (answer.text.empty()) {
        co_return false;
    }
    Document& document = context.document();
    auto layers = layersNamed(document, answer.text);
    if (layers.empty()) {
        context.complain("No layer matches " + inQuotes(answer.text) + ".");
        co_return false;
    }
    ChangeWatch watch(document, TableBits);
    for (RecordId layer : layers) {
        change(document.drawing(), layer);
    }
    co_return true;
}

Task<bool> listLayers(CommandContext& context) {
    auto answer = co_await askName(context, "Enter layer name(s) to list", "*");
    const Drawing& drawing = context.document().drawing();
    auto layers = matchingLayers(drawing, answer.text);
    context.printLine(padded("Layer name", 28) + padded("State", 24) + padded("Color", 14) +
                      padded("Linetype", 16) + "Lineweight");
    for (RecordId layer : layers) {
        Record record = drawing.record(layer);
        context.printLine(
            padded(inQuotes(entryName(drawing, layer)), 28) + padded(stateText(drawing, layer), 24) +
            padded(colorText(layerColor(drawing, layer)), 14) + padded(record.textOr(6, "Continuous"), 16) +
            lineweightText(static_cast<int>(record.integerOr(370, -3))));
    }
    context.printLine("Current layer: " + inQuotes(currentLayerName(context)) + ", " +
                      std::to_string(layers.size()) + " layers listed of " +
                      std::to_string(tableEntries(drawing, Table::Layer).size()));
    co_return true;
}

Task<bool> makeLayer(CommandContext& context) {
    auto answer = co_await askName(context, "Enter name for new layer (becomes the current layer)",
                                   currentLayerName(context));
    const Drawing& drawing = context.document().drawing();
    RecordId layer = findEntry(drawing, Table::Layer, answer.text);
    if (layer == NoRecord) {
        if (!addLayer(context, answer.text)) {
            co_return false;
        }
        layer = findEntry(drawing, Table::Layer, answer.text);
    }
    co_return makeCurrent(context, layer, answer.text);
}

Task<bool> setLayer(CommandContext& context) {
    auto answer = co_await askName(context, "Enter layer name to make current", currentLayerName(context));
    RecordId layer = findEntry(context.document().drawing(), Table::Layer, answer.text);
    co_return makeCurrent(context, layer, answer.text);
}

Task<bool> newLayers(CommandContext& context) {
    auto answer = co_await askName(context, "Enter name list for new layer(s)");
    std::string_view list = answer.text;
    bool added = false;
    while (!list.empty()) {
        size_t comma = std::min(list.find(','), list.size());
        std::string name(list.substr(0, comma));
        list.remove_prefix(std::min(list.size(), comma + 1));
        if (findEntry(context.document().drawing(), Table::Layer, name) != NoRecord) {
            context.printLine("Layer " + inQuotes(name) + " exists already.");
        } else {
            added = addLayer(context, name) || added;
        }
    }
    co_return added;
}

Task<bool> renameLayer(CommandContext& context) {
    Document& document = context.document();
    auto old = co_await askName(context, "Enter old layer name");
    if (old.text.empty()) {
        co_return false;
    }
    auto renamed = co_await askName(context, "Enter new layer name");
    if (renamed.text.empty()) {
        co_return false;
    }
    Drawing& drawing = document.drawing();
    RecordId layer = findEntry(drawing, Table::Layer, old.text);
    RecordId taken = findEntry(drawing, Table::Layer, renamed.text);
    std::string fault = layerNameFault(drawing, renamed.text);
    if (layer == NoRecord) {
        fault = "There is no layer " + inQuotes(old.text) + " in the drawing.";
    } else if (old.text == "0" || fromXref(old.text)) {
        fault = "Layer " + inQuotes(old.text) + " cannot be renamed.";
    } else if (taken != NoRecord && taken != layer) {
        fault = "Layer " + inQuotes(renamed.text) + " exists already.";
    }
    if (!fault.empty()) {
        context.complain(fault);
        co_return false;
    }
    ChangeWatch watch(document, TableBits);
    renameEntry(drawing, Table::Layer, layer, renamed.text);
    co_return true;
}

Task<bool> layersOn(CommandContext& context) {
    return forLayers(context, "Enter name list of layer(s) to turn on", false,
                     [](Drawing& drawing, RecordId layer) { switchLayerOff(drawing, layer, false); });
}

Task<bool> layersOff(CommandContext& context) {
    auto answer = co_await askName(context, "Enter name list of layer(s) to turn off");
    if (answer.text.empty()) {
        co_return false;
    }
    Document& document = context.document();
    auto layers = layersNamed(document, answer.text);
    if (layers.empty()) {
        context.complain("No layer matches " + inQuotes(answer.text) + ".");
        co_return false;
    }
    RecordId current = findEntry(document.drawing(), Table::Layer, currentLayerName(context));
    bool withCurrent = std::find(layers.begin(), layers.end(), current) != layers.end();
    if (withCurrent && context.host().variables().integer("EXPERT", 0) < 1) {
        bool offToo = co_await askYesNo(
            context, "Really want layer " + inQuotes(currentLayerName(context)) + " (the current layer) off?",
            false);
        if (!offToo) {
            std::erase(layers, current);
        }
    }
    ChangeWatch watch(document, TableBits);
    for (RecordId layer : layers) {
        switchLayerOff(document.drawing(), layer, true);
    }
    co_return true;
}

Task<bool> freezeLayers(CommandContext& context) {
    auto answer = co_await askName(context, "Enter name list of layer(s) to freeze");
    if (answer.text.empty()) {
        co_return false;
    }
    Document& document = context.document();
    auto layers = layersNamed(document, answer.text);
    if (layers.empty()) {
        context.complain("No layer matches " + inQuotes(answer.text) + ".");
        co_return false;
    }
    RecordId current = findEntry(document.drawing(), Table::Layer, currentLayerName(context));
    if (std::erase(layers, current) > 0) {
        std::string refusal =
            "Layer " + inQuotes(currentLayerName(context)) + " is current and cannot be frozen.";
        // A pattern that takes in the current layer among others is no mistake: the others are frozen.
        if (layers.empty()) {
            context.complain(refusal);
            co_return false;
        }
        context.printLine(refusal);
    }
    ChangeWatch watch(document, TableBits);
    for (RecordId layer : layers) {
        setLayerFlag(document.drawing(), layer, LayerFrozen, true);
    }
    co_return true;
}

Task<bool> thawLayers(CommandContext& context) {
    return forLayers(
        context, "Enter name list of layer(s) to thaw", false,
        [](Drawing& drawing, RecordId layer) { setLayerFlag(drawing, layer, LayerFrozen, false); });
}

Task<bool> lockLayers(CommandContext& context) {
    return forLayers(
        context, "Enter name list of layer(s) to lock", false,
        [](Drawing& drawing, RecordId layer) { setLayerFlag(drawing, layer, LayerLocked, true); });
}

Task<bool> unlockLayers(CommandContext& context) {
    return forLayers(
        context, "Enter name list of layer(s) to unlock", false,
        [](Drawing& drawing, RecordId layer) { setLayerFlag(drawing, layer, LayerLocked, false); });
}

Task<bool> reconcileLayers(CommandContext& context) {
    size_t count = 0;
    bool done = co_await forLayers(
        context, "Enter name list of layer(s) to reconcile", false,
        [&count](Drawing& drawing, RecordId layer) { count += reconcileLayer(drawing, layer) ? 1 : 0; });
    if (done) {
        context.printLine(count == 0 ? "These layers are reconciled already."
                                     : std::to_string(count) + " layer(s) reconciled.");
    }
    co_return done;
}

Task<bool> xrefLayers(CommandContext& context) {
    // What can be decided without loading references is whether their layers keep the settings made here.
    bool kept = context.host().variables().integer("VISRETAIN", 1) != 0;
    bool keep = co_await askYesNo(context, "Keep changes to the layers of external references?", kept);
    std::string reason;
    if (context.host().variables().set("VISRETAIN", keep ? 1 : 0, reason) != VariableStatus::Ok) {
        context.complain(reason);
        co_return false;
    }
    co_return true;
}

}  // namespace drafthost::commands
