// SPDX-License-Identifier: GPL-3.0-or-later
// -DIMSTYLE.

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/commands/TableQuestions.h"
#include "drafthost/drawing/DimensionVariables.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr unsigned TableBits = ModifiedObjects | ModifiedTables;

void listVariables(CommandContext& context, RecordId style) {
    const Drawing& drawing = context.document().drawing();
    for (const DimensionVariable& variable : dimensionVariables()) {
        context.printLine(std::string(variable.name) + "  " + dimensionText(drawing, style, variable));
    }
}

/// A style by its name, or by a dimension that has it. NoRecord when the command is to end.
Task<RecordId> askDimensionStyle(CommandContext& context) {
    const Drawing& drawing = context.document().drawing();
    for (;;) {
        auto answer = co_await askName(context, "Enter a dimension style name, [?] or <select dimension>");
        std::string name = answer.text;
        if (name == "?") {
            listTable(context, Table::Dimstyle, "*");
            continue;
        }
        if (name.empty()) {
            auto picked = co_await pickObject(context, "Select dimension");
            if (picked.entity == NoRecord) {
                co_return NoRecord;
            }
            name = drawing.record(picked.entity).textOr(3, "Standard");
        }
        const RecordId style = findEntry(drawing, Table::Dimstyle, name);
        if (style != NoRecord) {
            co_return style;
        }
        context.complain("Cannot find dimension style " + inQuotes(name) + ".");
    }
}

Task<bool> saveStyle(CommandContext& context) {
    Document& document = context.document();
    for (;;) {
        auto answer = co_await askName(context, "Enter name for new dimension style or [?]");
        if (answer.text.empty()) {
            co_return false;
        }
        if (answer.text == "?") {
            listTable(context, Table::Dimstyle, "*");
            continue;
        }
        const std::string fault = nameFault(answer.text);
        if (!fault.empty()) {
            context.complain(fault);
            continue;
        }
        if (findEntry(document.drawing(), Table::Dimstyle, answer.text) != NoRecord &&
            context.host().variables().integer("EXPERT", 0) < 5) {
            bool redefine = co_await askYesNo(context, "That name is already in use, redefine it?", false);
            if (!redefine) {
                continue;
            }
        }
        ChangeWatch watch(document, TableBits);
        saveDimensionStyle(document.drawing(), answer.text);
        co_return true;
    }
}

}  // namespace

CommandTask dimstyleCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    context.printLine("Current dimension style: " + headerText(drawing, "$DIMSTYLE", "Standard") +
                      "  Annotative: No");
    auto answer = co_await context.keyword("Enter a dimension style option",
                                           "ANnotative Save Restore STatus Variables Apply ?", "Restore");
    if (answer.isKeyword("Save")) {
        co_await saveStyle(context);
    } else if (answer.isKeyword("Restore") || answer.isKeyword("Variables")) {
        RecordId style = co_await askDimensionStyle(context);
        if (style == NoRecord) {
            co_return;
        }
        if (answer.isKeyword("Variables")) {
            listVariables(context, style);
            co_return;
        }
        ChangeWatch watch(document, ModifiedVariables);
        restoreDimensionStyle(drawing, style);
    } else if (answer.isKeyword("STatus")) {
        const RecordId style =
            findEntry(drawing, Table::Dimstyle, headerText(drawing, "$DIMSTYLE", "Standard"));
        if (style != NoRecord) {
            listVariables(context, style);
        }
    } else if (answer.isKeyword("Apply")) {
        auto selected = co_await selectObjects(context, SelectToEdit);
        ChangeWatch watch(document, ModifiedObjects);
        for (const RecordId id : selected) {
            if (drawing.type(id) == "DIMENSION" || drawing.type(id) == "LEADER" ||
                drawing.type(id) == "TOLERANCE") {
                drawing.put(id, 3, headerText(drawing, "$DIMSTYLE", "Standard"));
            }
        }
    } else if (answer.isKeyword("?")) {
        listTable(context, Table::Dimstyle, "*");
    } else {
        context.complain("Annotative dimension styles are not made here.");
    }
}

}  // namespace drafthost::commands
