// SPDX-License-Identifier: GPL-3.0-or-later
// -LAYER, stAte: how layers look, kept under names and in files.

#include <filesystem>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/LayerStateFile.h"
#include "drafthost/drawing/LayerStates.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr unsigned TableBits = ModifiedObjects | ModifiedTables;

struct StateWord {
    std::string_view keyword;
    int mask;
};
constexpr StateWord Words[] = {
    {"On", RestoreOn},
    {"Frozen", RestoreFrozen},
    {"Lock", RestoreLocked},
    {"Plot", RestorePlot},
    {"Newvpfreeze", RestoreNewViewport},
    {"Color", RestoreColor},
    {"lineType", RestoreLinetype},
    {"lineWeight", RestoreLineweight},
    {"TRansparency", RestoreTransparency},
    {"plotStyle", RestorePlotStyle},
};

void listStates(CommandContext& context) {
    const auto names = layerStateNames(context.document().drawing());
    for (const std::string& name : names) {
        context.printLine(name);
    }
    if (names.empty()) {
        context.printLine("The drawing has no layer states.");
    }
}

/// A name; "?" lists the states.
Task<std::string> askStateName(CommandContext& context, const char* prompt) {
    for (;;) {
        auto name = co_await askName(context, prompt);
        if (name.text != "?") {
            co_return name.text;
        }
        listStates(context);
    }
}

/// A state that is there; nothing when the option ends, which has been told.
Task<std::optional<LayerState>> askState(CommandContext& context, const char* prompt) {
    auto name = co_await askStateName(context, prompt);
    if (name.empty()) {
        co_return std::nullopt;
    }
    auto state = findLayerState(context.document().drawing(), name);
    if (!state) {
        context.complain("Cannot find layer state " + inQuotes(name) + ".");
    }
    co_return state;
}

/// Each word takes a property out of the mask or puts it in, up to Enter.
Task<int> askMask(CommandContext& context, int mask) {
    std::string keywords;
    for (const StateWord& word : Words) {
        keywords += (keywords.empty() ? "" : " ") + std::string(word.keyword);
    }
    for (;;) {
        auto answer = co_await context.keyword("Enter states to change", keywords);
        if (answer.isEnter()) {
            co_return mask;
        }
        for (const StateWord& word : Words) {
            if (answer.keyword == word.keyword) {
                mask ^= word.mask;
                context.printLine(std::string(word.keyword) +
                                  ((mask & word.mask) != 0 ? " is restored." : " is not restored."));
            }
        }
    }
}

Task<bool> saveState(CommandContext& context) {
    Document& document = context.document();
    auto name = co_await askStateName(context, "Enter new layer state name or [?]");
    if (name.empty()) {
        co_return false;
    }
    if (!isLayerStateName(name)) {
        context.complain("Invalid layer state name " + inQuotes(name) + ".");
        co_return false;
    }
    if (findLayerState(document.drawing(), name)) {
        bool replace = co_await askYesNo(
            context, "Layer state " + inQuotes(name) + " already exists. Overwrite it?", true);
        if (!replace) {
            co_return false;
        }
    }
    int mask = co_await askMask(context, RestoreAll);
    ChangeWatch watch(document, TableBits);
    LayerState state = currentLayerState(document.drawing(), name);
    state.mask = mask;
    if (!putLayerState(document.drawing(), state)) {
        context.complain("A drawing of version " + document.drawing().version() + " keeps no layer states.");
        co_return false;
    }
    co_return true;
}

Task<bool> restoreState(CommandContext& context) {
    Document& document = context.document();
    const auto state = co_await askState(context, "Enter name of layer state to restore or [?]");
    if (!state) {
        co_return false;
    }
    ChangeWatch watch(document, TableBits | ModifiedVariables);
    restoreLayerState(document.drawing(), *state);
    document.lisp().session().lastLayerState = state->name;
    co_return true;
}

Task<bool> editState(CommandContext& context) {
    Document& document = context.document();
    auto state = co_await askState(context, "Enter name of layer state to edit or [?]");
    if (!state) {
        co_return false;
    }
    state->mask = co_await askMask(context, state->mask);
    ChangeWatch watch(document, TableBits);
    putLayerState(document.drawing(), *state);
    co_return true;
}

Task<bool> renameState(CommandContext& context) {
    Document& document = context.document();
    const auto state = co_await askState(context, "Enter name of layer state to rename or [?]");
    if (!state) {
        co_return false;
    }
    auto name = co_await askName(context, "Enter new layer state name");
    if (!isLayerStateName(name.text) || findLayerState(document.drawing(), name.text)) {
        context.complain(isLayerStateName(name.text)
                             ? "Layer state " + inQuotes(name.text) + " already exists."
                             : "Invalid layer state name " + inQuotes(name.text) + ".");
        co_return false;
    }
    ChangeWatch watch(document, TableBits);
    co_return renameLayerState(document.drawing(), state->name, name.text);
}

Task<bool> deleteState(CommandContext& context) {
    Document& document = context.document();
    const auto state = co_await askState(context, "Enter name of layer state to delete or [?]");
    if (!state) {
        co_return false;
    }
    ChangeWatch watch(document, TableBits);
    co_return removeLayerState(document.drawing(), state->name);
}

Task<bool> importStates(CommandContext& context) {
    Document& document = context.document();
    auto typed = co_await askName(context, "Enter name of layer state file to import");
    if (typed.text.empty()) {
        co_return false;
    }
    std::string name = typed.text;
    if (std::filesystem::path(name).extension().empty()) {
        name += ".las";
    }
    const std::string path = context.host().findFile(name);
    if (path.empty()) {
        context.complain("Cannot find the layer state file " + inQuotes(name) + ".");
        co_return false;
    }
    ChangeWatch watch(document, TableBits);
    std::string error;
    const auto names = importLayerStates(document.drawing(), path, "*", error);
    for (const std::string& taken : names) {
        context.printLine("Layer state " + inQuotes(taken) + " imported.");
    }
    if (names.empty()) {
        context.complain(error);
    }
    co_return !names.empty();
}

Task<bool> exportState(CommandContext& context) {
    const auto state = co_await askState(context, "Enter name of layer state to export or [?]");
    if (!state) {
        co_return false;
    }
    auto typed = co_await askName(context, "Enter name of layer state file to export", state->name + ".las");
    const std::string path = absolutePath(typed.text, ".las");
    bool may = co_await mayReplaceFile(context, path);
    if (!may) {
        co_return false;
    }
    std::string error;
    if (!exportLayerState(context.document().drawing(), state->name, path, error)) {
        context.complain(error);
        co_return false;
    }
    co_return true;
}

}  // namespace

Task<bool> layerStates(CommandContext& context) {
    for (;;) {
        auto option =
            co_await context.keyword("Enter an option", "? Save Restore Edit Name Delete Import EXport");
        if (option.isEnter()) {
            co_return true;
        }
        if (option.isKeyword("?")) {
            listStates(context);
        } else if (option.isKeyword("Save")) {
            co_await saveState(context);
        } else if (option.isKeyword("Restore")) {
            co_await restoreState(context);
        } else if (option.isKeyword("Edit")) {
            co_await editState(context);
        } else if (option.isKeyword("Name")) {
            co_await renameState(context);
        } else if (option.isKeyword("Delete")) {
            co_await deleteState(context);
        } else if (option.isKeyword("Import")) {
            co_await importStates(context);
        } else {
            co_await exportState(context);
        }
    }
}

}  // namespace drafthost::commands
