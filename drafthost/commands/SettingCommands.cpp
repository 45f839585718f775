// SPDX-License-Identifier: GPL-3.0-or-later
// Commands that only set a variable: ORTHO, FILL, QTEXT, GRID, SNAP, UCSICON, OSNAP, COLOR; and SELECT.

#include <algorithm>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/ColorNames.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

void set(CommandContext& context, const char* variable, const VariableValue& value) {
    std::string reason;
    if (context.host().variables().set(variable, value, reason) != VariableStatus::Ok) {
        context.complain(reason);
    }
}

/// ON or OFF.
CommandTask switchVariable(CommandContext& context, const char* variable) {
    const bool now = context.host().variables().integer(variable, 0) != 0;
    auto answer = co_await context.keyword("Enter mode", "ON OFF", now ? "ON" : "OFF");
    set(context, variable, answer.isKeyword("ON") ? 1 : 0);
}

/// A spacing, which is kept, or the switch itself.
CommandTask switchGrid(CommandContext& context, const char* prompt, const char* variable) {
    auto answer = co_await context.distance(
        prompt, {.keywords = "ON OFF Snap Aspect Legacy Style Type", .defaultText = "10"});
    if (answer.isKeyword("ON") || answer.isKeyword("OFF")) {
        set(context, variable, answer.isKeyword("ON") ? 1 : 0);
    } else if (answer.isKeyword()) {
        context.complain("The option " + answer.keyword + " is a matter of the screen and is not kept.");
    } else {
        set(context, "SNAPUNIT", Point2{answer.real, answer.real});
    }
}

/// Bits of OSMODE by the words of OSNAP.
constexpr std::pair<std::string_view, int> Snaps[] = {
    {"end", 1},    {"mid", 2},    {"cen", 4},   {"nod", 8},   {"qua", 16},   {"int", 32},
    {"ins", 64},   {"per", 128},  {"tan", 256}, {"nea", 512}, {"gce", 1024}, {"app", 2048},
    {"ext", 4096}, {"par", 8192}, {"non", 0},   {"off", 0},   {"qui", 0}};

std::optional<int> snapBits(std::string text) {
    int bits = 0;
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        std::string word = text.substr(0, comma);
        text.erase(0, std::min(text.size(), comma + 1));
        word.erase(0, word.find_first_not_of(" _"));
        word = foldCase(word);
        const auto found = std::find_if(std::begin(Snaps), std::end(Snaps), [&](const auto& snap) {
            return word.starts_with(foldCase(snap.first));
        });
        if (found == std::end(Snaps)) {
            return std::nullopt;
        }
        bits |= found->second;
    }
    return bits;
}

}  // namespace

CommandTask orthoCommand(CommandContext& context) {
    return switchVariable(context, "ORTHOMODE");
}
CommandTask fillCommand(CommandContext& context) {
    return switchVariable(context, "FILLMODE");
}
CommandTask qtextCommand(CommandContext& context) {
    return switchVariable(context, "QTEXTMODE");
}
CommandTask gridCommand(CommandContext& context) {
    return switchGrid(context, "Specify grid spacing(X)", "GRIDMODE");
}
CommandTask snapCommand(CommandContext& context) {
    return switchGrid(context, "Specify snap spacing", "SNAPMODE");
}

CommandTask ucsIconCommand(CommandContext& context) {
    constexpr int Shown = 1;
    constexpr int AtOrigin = 2;
    const int now = context.host().variables().integer("UCSICON", 3);
    auto answer =
        co_await context.keyword("Enter an option", "ON OFF All Noorigin ORigin Selectable Properties", "ON");
    if (answer.isKeyword("ON") || answer.isKeyword("OFF")) {
        set(context, "UCSICON", answer.isKeyword("ON") ? now | Shown : now & ~Shown);
    } else if (answer.isKeyword("Noorigin") || answer.isKeyword("ORigin")) {
        set(context, "UCSICON", answer.isKeyword("ORigin") ? now | AtOrigin : now & ~AtOrigin);
    } else {
        context.printLine("That is a matter of the screen and is not kept.");
    }
}

CommandTask osnapCommand(CommandContext& context) {
    auto answer = co_await askName(context, "Enter list of object snap modes", "NONE");
    const auto bits = snapBits(answer.text);
    if (!bits) {
        context.complain(inQuotes(answer.text) + " is no list of object snap modes.");
        co_return;
    }
    set(context, "OSMODE", *bits);
}

CommandTask colorCommand(CommandContext& context) {
    auto answer = co_await askName(context, "Enter default object color [Truecolor/COlorbook]", "BYLAYER");
    const auto index = parseColorIndex(answer.text, 1);
    const bool standing = sameName(answer.text, "BYLAYER") || sameName(answer.text, "BYBLOCK");
    if (!index && !standing) {
        context.complain(inQuotes(answer.text) + " is no color that new objects can get here.");
        co_return;
    }
    set(context, "CECOLOR", standing ? answer.text : std::to_string(*index));
}

CommandTask selectCommand(CommandContext& context) {
    co_await selectObjects(context, SelectNoPickFirst);
}

}  // namespace drafthost::commands
