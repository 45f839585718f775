// SPDX-License-Identifier: GPL-3.0-or-later
// VPLAYER: layers in single viewports.

#include <cmath>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/ColorNames.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerTable.h"
#include "drafthost/commands/LayoutSwitch.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/LinetypeFile.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"
#include "drafthost/drawing/ViewportLayers.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

constexpr unsigned Bits = ModifiedObjects | ModifiedTables;
constexpr std::int64_t FrozenInNew = 2;

using Viewports = std::vector<RecordId>;

RecordId currentViewport(const Drawing& drawing) {
    return drawing.activeViewport() != NoRecord ? drawing.activeViewport() : sheetViewport(drawing);
}

Viewports allViewports(const Drawing& drawing) {
    Viewports all = layoutViewports(drawing);
    if (sheetViewport(drawing) != NoRecord) {
        all.insert(all.begin(), sheetViewport(drawing));
    }
    return all;
}

Task<Viewports> askViewports(CommandContext& context) {
    auto which = co_await context.keyword("Enter an option", "All Select Current eXcept", "Current");
    const Drawing& drawing = context.document().drawing();
    Viewports result;
    if (which.isKeyword("Select")) {
        auto selected = co_await selectObjects(context);
        for (const RecordId id : selected) {
            if (drawing.type(id) == "VIEWPORT") {
                result.push_back(id);
            }
        }
        co_return result;
    }
    const RecordId current = currentViewport(drawing);
    if (which.isKeyword("Current")) {
        if (current != NoRecord) {
            result.push_back(current);
        }
        co_return result;
    }
    result = which.isKeyword("All") ? allViewports(drawing) : layoutViewports(drawing);
    if (which.isKeyword("eXcept")) {
        std::erase(result, current);
    }
    co_return result;
}

/// A round of "layers, then viewports", and what is done to each pair.
template <class Change>
Task<bool> forPairs(CommandContext& context, const char* prompt, Change change) {
    auto names = co_await askName(context, prompt);
    if (names.text.empty()) {
        co_return false;
    }
    Viewports viewports = co_await askViewports(context);
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, Bits);
    provideLayerZero(drawing, names.text);
    const auto layers = matchingLayers(drawing, names.text);
    if (layers.empty()) {
        context.printLine("No matching layer names found.");
        co_return false;
    }
    if (viewports.empty()) {
        context.complain("The layout has no viewport for that.");
        co_return false;
    }
    for (const RecordId layer : layers) {
        for (const RecordId viewport : viewports) {
            change(drawing, viewport, layer);
        }
    }
    co_return true;
}

/// Layers that come into being frozen in every viewport.
Task<bool> newFrozen(CommandContext& context) {
    auto names = co_await askName(context, "Enter name(s) of new layers frozen in all viewports");
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, Bits);
    std::string_view list = names.text;
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const std::string name(list.substr(0, comma));
        list.remove_prefix(std::min(list.size(), comma + 1));
        const std::string fault = layerNameFault(drawing, name);
        if (!fault.empty()) {
            context.complain(fault);
            continue;
        }
        RecordId layer = findEntry(drawing, Table::Layer, name);
        layer = layer != NoRecord ? layer : addEntry(drawing, Table::Layer, name);
        drawing.put(layer, 70, drawing.record(layer).integerOr(70, 0) | FrozenInNew, {2});
        for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
            if (drawing.type(id) == "VIEWPORT") {
                setFrozenIn(drawing, id, layer, true);
            }
        }
    }
    co_return true;
}

Task<bool> visibilityDefault(CommandContext& context) {
    auto names = co_await askName(context, "Enter layer name(s) to change viewport visibility");
    if (names.text.empty()) {
        co_return false;
    }
    auto how = co_await context.keyword("Enter a viewport visibility option", "Frozen Thawed", "Thawed");
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, Bits);
    for (const RecordId layer : matchingLayers(drawing, names.text)) {
        const std::int64_t flags = drawing.record(layer).integerOr(70, 0);
        drawing.put(layer, 70, how.isKeyword("Frozen") ? flags | FrozenInNew : flags & ~FrozenInNew, {2});
    }
    co_return true;
}

/// The value of an override as it is stored.
struct Override {
    LayerOverride kind = LayerOverride::Color;
    std::optional<std::uint32_t> value;
    std::string fault;
};

constexpr std::uint32_t TrueColor = 0xC2000000;
constexpr std::uint32_t IndexColor = 0xC3000000;

Override colorOverride(const std::string& text) {
    Override result;
    if (const auto rgb = parseTrueColor(text)) {
        result.value = TrueColor | static_cast<std::uint32_t>(*rgb->rgb);
    } else if (const auto index = parseColorIndex(text)) {
        result.value = IndexColor | static_cast<std::uint32_t>(*index);
    } else {
        result.fault = inQuotes(text) + " is no color.";
    }
    return result;
}

Override numberOverride(const std::string& text, LayerOverride kind) {
    constexpr std::uint32_t Given = 0x02000000;
    Override result;
    result.kind = kind;
    const auto number = automation::readNumber(text);
    if (kind == LayerOverride::Lineweight) {
        const auto weight = number ? nearestLineweight(*number) : std::nullopt;
        if (sameName(text, "Default")) {
            result.value = static_cast<std::uint32_t>(-3);
        } else if (weight) {
            result.value = static_cast<std::uint32_t>(*weight);
        } else {
            result.fault = inQuotes(text) + " is no lineweight: give millimetres from 0 to 2.11.";
        }
        return result;
    }
    if (number && *number >= 0 && *number <= 90) {
        result.value = Given | static_cast<std::uint32_t>(std::lround(255 * (100 - *number) / 100));
    } else {
        result.fault = inQuotes(text) + " is no transparency: give 0 to 90.";
    }
    return result;
}

Override linetypeOverride(Drawing& drawing, const std::string& name) {
    Override result;
    result.kind = LayerOverride::Linetype;
    const RecordId entry = provideLinetype(drawing, name);
    if (entry == NoRecord) {
        result.fault = "Cannot find linetype " + inQuotes(name) + ".";
    } else {
        result.value = static_cast<std::uint32_t>(drawing.handle(entry));
    }
    return result;
}

Task<bool> overrideLayers(CommandContext& context, std::string property) {
    const char* prompt = property == "Color"     ? "New color [Truecolor/COlorbook]"
                         : property == "Ltype"   ? "Enter loaded linetype name"
                         : property == "LWeight" ? "Enter lineweight (0.0mm - 2.11mm)"
                                                 : "Enter transparency value (0-90)";
    for (;;) {
        auto answer = co_await askName(context, prompt);
        std::string text = answer.text;
        if (text.empty()) {
            co_return false;
        }
        if (property == "Color" && (sameName(text, "T") || sameName(text, "Truecolor"))) {
            answer = co_await askName(context, "Red,Green,Blue");
            text = answer.text;
        }
        const Override value =
            property == "Color"   ? colorOverride(text)
            : property == "Ltype" ? linetypeOverride(context.document().drawing(), text)
                                  : numberOverride(text, property == "LWeight" ? LayerOverride::Lineweight
                                                                               : LayerOverride::Transparency);
        if (!value.fault.empty()) {
            context.complain(value.fault);
            continue;
        }
        const auto change = [kind = value.kind, raw = value.value](Drawing& drawing, RecordId viewport,
                                                                   RecordId layer) {
            setOverride(drawing, viewport, layer, kind, raw);
        };
        co_return co_await forPairs(context, "Enter layer name(s)", change);
    }
}

Task<bool> removeOverrides(CommandContext& context) {
    auto which = co_await context.keyword("Enter property to remove",
                                          "Color Ltype LWeight PStyle TRansparency All", "All");
    std::vector<LayerOverride> kinds;
    const std::pair<const char*, LayerOverride> known[] = {{"Color", LayerOverride::Color},
                                                           {"Ltype", LayerOverride::Linetype},
                                                           {"LWeight", LayerOverride::Lineweight},
                                                           {"TRansparency", LayerOverride::Transparency}};
    for (const auto& [word, kind] : known) {
        if (which.isKeyword("All") || which.isKeyword(word)) {
            kinds.push_back(kind);
        }
    }
    const auto change = [kinds](Drawing& drawing, RecordId viewport, RecordId layer) {
        for (const LayerOverride kind : kinds) {
            setOverride(drawing, viewport, layer, kind, std::nullopt);
        }
    };
    co_return co_await forPairs(context, "Enter layer name(s)", change);
}

Task<bool> listFrozen(CommandContext& context) {
    auto picked = co_await pickObject(context, "Select a viewport");
    const Drawing& drawing = context.document().drawing();
    if (picked.entity == NoRecord || drawing.type(picked.entity) != "VIEWPORT") {
        co_return false;
    }
    context.printLine("Layers currently frozen in viewport " +
                      std::to_string(drawing.record(picked.entity).integerOr(69, 0)) + ":");
    for (const RecordId layer : tableEntries(drawing, Table::Layer)) {
        if (isFrozenIn(drawing, picked.entity, layer)) {
            context.printLine(inQuotes(entryName(drawing, layer)));
        }
    }
    co_return true;
}

}  // namespace

CommandTask vplayerCommand(CommandContext& context) {
    const Drawing& drawing = context.document().drawing();
    const bool model = modelIsCurrent(drawing);
    for (;;) {
        auto answer = co_await context.keyword(
            "Enter an option",
            "? Color Ltype LWeight PStyle TRansparency Freeze Thaw Reset Newfrz Vpvisdflt Removeoverrides");
        if (answer.isEnter()) {
            co_return;
        }
        if (answer.isKeyword("Newfrz")) {
            co_await newFrozen(context);
        } else if (answer.isKeyword("Vpvisdflt")) {
            co_await visibilityDefault(context);
        } else if (model) {
            context.complain("** Command not allowed in Model Tab **");
        } else if (answer.isKeyword("Freeze") || answer.isKeyword("Thaw")) {
            const bool frozen = answer.isKeyword("Freeze");
            co_await forPairs(context,
                              frozen ? "Enter layer name(s) to freeze" : "Enter layer name(s) to thaw",
                              [frozen](Drawing& edited, RecordId viewport, RecordId layer) {
                                  setFrozenIn(edited, viewport, layer, frozen);
                              });
        } else if (answer.isKeyword("Reset")) {
            co_await forPairs(context, "Enter layer name(s) to reset",
                              [](Drawing& edited, RecordId viewport, RecordId layer) {
                                  setFrozenIn(edited, viewport, layer,
                                              (edited.record(layer).integerOr(70, 0) & FrozenInNew) != 0);
                              });
        } else if (answer.isKeyword("?")) {
            co_await listFrozen(context);
        } else if (answer.isKeyword("Removeoverrides")) {
            co_await removeOverrides(context);
        } else if (answer.isKeyword("PStyle")) {
            context.complain("Plot styles of layers in viewports are not kept here.");
        } else {
            co_await overrideLayers(context, answer.keyword);
        }
    }
}

}  // namespace drafthost::commands
