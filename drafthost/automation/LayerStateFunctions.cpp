// SPDX-License-Identifier: GPL-3.0-or-later
// (layerstate-…): how the layers of the drawing look, kept under names.

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/LayerStateFile.h"
#include "drafthost/drawing/LayerStates.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::automation {
namespace {

/// T, with the drawing marked as changed, when it was.
Value changed(Evaluator& e, bool yes) {
    if (yes) {
        sessionOf(e).host.drawingChanged(true);
    }
    return Value::boolean(yes);
}
Value listOf(const std::vector<std::string>& names) {
    ListBuilder list;
    for (const std::string& name : names) {
        list.add(Value::string(name));
    }
    return list.take();
}
/// A failure with a file is told in one line, since the value only says that there was one.
Value told(Evaluator& e, const std::string& error) {
    sessionOf(e).print(error + "\n");
    return {};
}

Value getNames(Evaluator& e, Args) {
    return listOf(layerStateNames(drawingOf(e)));
}
Value has(Evaluator& e, Args args) {
    return Value::boolean(findLayerState(drawingOf(e), stringArg(args[0])).has_value());
}
Value getLayers(Evaluator& e, Args args) {
    const Drawing& drawing = drawingOf(e);
    auto state = findLayerState(drawing, stringArg(args[0]));
    if (!state) {
        return {};
    }
    std::vector<std::string> names;
    if (optional(args, 1)) {
        for (const RecordId layer : tableEntries(drawing, Table::Layer)) {
            const std::string name = entryName(drawing, layer);
            if (state->find(name) == nullptr) {
                names.push_back(name);
            }
        }
    } else {
        for (const LayerLook& look : state->layers) {
            names.push_back(look.layer);
        }
    }
    return listOf(names);
}
Value save(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    LayerState state = currentLayerState(drawing, stringArg(args[0]));
    state.mask = optional(args, 1) ? intArg(args[1]) : RestoreAll;
    return changed(e, isLayerStateName(state.name) && putLayerState(drawing, state));
}
Value restore(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const auto state = findLayerState(drawing, stringArg(args[0]));
    if (!state) {
        return {};
    }
    const auto names = restoreLayerState(drawing, *state, optional(args, 2) ? intArg(args[2]) : OthersStay);
    sessionOf(e).lastLayerState = state->name;
    changed(e, true);
    return listOf(names);
}
Value getLastRestored(Evaluator& e, Args) {
    const std::string& name = sessionOf(e).lastLayerState;
    return name.empty() ? Value() : Value::string(name);
}
Value rename(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const std::string to = stringArg(args[1]);
    return changed(e, isLayerStateName(to) && !findLayerState(drawing, to) &&
                          renameLayerState(drawing, stringArg(args[0]), to));
}
Value remove(Evaluator& e, Args args) {
    return changed(e, removeLayerState(drawingOf(e), stringArg(args[0])));
}
Value compare(Evaluator& e, Args args) {
    const auto state = findLayerState(drawingOf(e), stringArg(args[0]));
    return Value::boolean(state && agreesWith(drawingOf(e), *state));
}

void takeColor(const Value& pair, LayerLook& look) {
    if (!pair.isCons() || !pair.car().isInt() || !pair.cdr().isInt()) {
        return;
    }
    if (pair.car().toInt() == 62) {
        look.color = pair.cdr().toInt();
        look.rgb.reset();
    } else if (pair.car().toInt() == 420) {
        look.rgb = pair.cdr().toInt() & 0xFFFFFF;
    }
}
/// (name flags color linetype lineweight plotstyle); there the bit 8 says that the layer is not plotted.
LayerLook lookFrom(Value list) {
    const auto next = [&list] {
        Value item = list.isCons() ? list.car() : Value();
        list = list.isCons() ? list.cdr() : Value();
        return item;
    };
    LayerLook look;
    look.layer = stringArg(next());
    if (const Value flags = next()) {
        look.flags = intArg(flags) ^ LayerLook::Plots;
    }
    takeColor(next(), look);
    if (const Value linetype = next()) {
        look.linetype = stringArg(linetype);
    }
    if (const Value weight = next()) {
        look.lineweight = intArg(weight);
    }
    if (const Value style = next()) {
        look.plotStyle = stringArg(style);
    }
    return look;
}
Value addLayers(Evaluator& e, Args args) {
    auto state = findLayerState(drawingOf(e), stringArg(args[0]));
    if (!state) {
        return {};
    }
    for (std::size_t i = 1; i < args.size(); ++i) {
        const LayerLook look = lookFrom(listArg(args[i]));
        if (LayerLook* known = state->find(look.layer)) {
            *known = look;
        } else {
            state->layers.push_back(look);
        }
    }
    return changed(e, putLayerState(drawingOf(e), *state));
}
Value removeLayers(Evaluator& e, Args args) {
    auto state = findLayerState(drawingOf(e), stringArg(args[0]));
    if (!state) {
        return {};
    }
    const std::size_t before = state->layers.size();
    for (Value rest = listArg(args[1]); rest.isCons(); rest = rest.cdr()) {
        const std::string name = foldCase(stringArg(rest.car()));
        std::erase_if(state->layers, [&](const LayerLook& look) { return foldCase(look.layer) == name; });
    }
    return changed(e, state->layers.size() < before && putLayerState(drawingOf(e), *state));
}

Value bring(Evaluator& e, const std::string& file, const std::string& name) {
    const auto path = sessionOf(e).host.findFile(file);
    if (!path) {
        return told(e, "Cannot find the layer state file \"" + file + "\".");
    }
    std::string error;
    if (importLayerStates(drawingOf(e), *path, name, error).empty()) {
        return told(e, error);
    }
    return changed(e, true);
}
Value importFile(Evaluator& e, Args args) {
    return bring(e, stringArg(args[0]), "*");
}
Value importFromDrawing(Evaluator& e, Args args) {
    return bring(e, stringArg(args[1]), stringArg(args[0]));
}
Value exportFile(Evaluator& e, Args args) {
    std::string error;
    if (!exportLayerState(drawingOf(e), stringArg(args[0]), stringArg(args[1]), error)) {
        return told(e, error);
    }
    return Value::truth();
}

constexpr Subr Functions[] = {
    {"LAYERSTATE-ADDLAYERS", 2, Subr::Any, addLayers},
    {"LAYERSTATE-COMPARE", 1, 2, compare},
    {"LAYERSTATE-DELETE", 1, 1, remove},
    {"LAYERSTATE-EXPORT", 2, 2, exportFile},
    {"LAYERSTATE-GETLASTRESTORED", 0, 0, getLastRestored},
    {"LAYERSTATE-GETLAYERS", 1, 2, getLayers},
    {"LAYERSTATE-GETNAMES", 0, 2, getNames},
    {"LAYERSTATE-HAS", 1, 1, has},
    {"LAYERSTATE-IMPORT", 1, 1, importFile},
    {"LAYERSTATE-IMPORTFROMDB", 2, 2, importFromDrawing},
    {"LAYERSTATE-REMOVELAYERS", 2, 2, removeLayers},
    {"LAYERSTATE-RENAME", 2, 2, rename},
    {"LAYERSTATE-RESTORE", 1, 3, restore},
    {"LAYERSTATE-SAVE", 1, 3, save},
};

}  // namespace

std::span<const Subr> layerStateFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
