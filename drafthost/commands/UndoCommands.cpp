// SPDX-License-Identifier: GPL-3.0-or-later
// U, UNDO, REDO: what commands and programs have done to the drawing, taken back.

#include "drafthost/commands/Commands.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/UndoLog.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"

namespace drafthost::commands {

namespace {

/// A drawing that is as its file again counts as unmodified.
void settle(Document& document) {
    if (!document.drawing().modified()) {
        document.clearModified();
    } else {
        document.setModified(ModifiedObjects);
    }
}

void tell(CommandContext& context, const UndoLog::Undone& undone) {
    std::string names;
    for (const std::string& name : undone.names) {
        names += (names.empty() ? "" : " ") + name;
    }
    if (!names.empty()) {
        context.printLine(names);
    }
    if (undone.mark) {
        context.printLine("Mark encountered");
    } else if (undone.forgotten) {
        context.printLine("What was done before is no longer kept; it cannot be undone.");
    } else if (undone.start) {
        context.printLine(names.empty() ? "Nothing to undo" : "Everything has been undone");
    }
}

void undoSteps(CommandContext& context, int count) {
    Document& document = context.document();
    const UndoLog::Undone undone = document.drawing().undo().undo(count);
    tell(context, undone);
    if (!undone.names.empty()) {
        settle(document);
    }
}

CommandTask undoToMark(CommandContext& context) {
    Document& document = context.document();
    if (!document.drawing().undo().hasMark()) {
        bool everything = co_await askYesNo(context, "This will undo everything. OK?", true);
        if (!everything) {
            co_return;
        }
    }
    const UndoLog::Undone undone = document.drawing().undo().undoToMark();
    tell(context, undone);
    if (!undone.names.empty()) {
        settle(document);
    }
}

/// The switches of how much is recorded. Everything is; whoever asks for less loses nothing by it.
CommandTask keepEverything(CommandContext& context, bool control) {
    if (control) {
        auto answer =
            co_await context.keyword("Enter an UNDO control option", "All None One Combine Layer", "All");
        if (!answer.isKeyword("All")) {
            context.printLine("Everything that is done stays recorded here.");
        }
        co_return;
    }
    co_await context.keyword("Enter UNDO Auto mode", "ON OFF", "ON");
}

}  // namespace

CommandTask uCommand(CommandContext& context) {
    undoSteps(context, 1);
    co_return;
}

CommandTask undoCommand(CommandContext& context) {
    context.printLine("Current settings: Auto = On, Control = All, Combine = Yes, Layer = Yes");
    auto answer = co_await context.integer(
        "Enter the number of operations to undo or [Auto/Control/BEgin/End/Mark/Back]",
        {.keywords = "Auto Control BEgin End Mark Back Group",
         .defaultText = "1",
         .minimum = 1,
         .maximum = 32767,
         .bareText = true});
    UndoLog& log = context.document().drawing().undo();
    if (answer.isKeyword("Auto") || answer.isKeyword("Control")) {
        co_await keepEverything(context, answer.isKeyword("Control"));
    } else if (answer.isKeyword("BEgin") || answer.isKeyword("Group")) {
        log.beginGroup();
    } else if (answer.isKeyword("End")) {
        log.endGroup();
    } else if (answer.isKeyword("Mark")) {
        log.setMark();
    } else if (answer.isKeyword("Back")) {
        co_await undoToMark(context);
    } else {
        undoSteps(context, answer.integer);
    }
}

CommandTask redoCommand(CommandContext& context) {
    Document& document = context.document();
    const auto names = document.drawing().undo().redo();
    if (names.empty()) {
        context.printLine("Everything has been redone");
        co_return;
    }
    std::string line;
    for (const std::string& name : names) {
        line += (line.empty() ? "" : " ") + name;
    }
    context.printLine(line);
    settle(document);
}

}  // namespace drafthost::commands
