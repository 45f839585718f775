// SPDX-License-Identifier: GPL-3.0-or-later
// -BLOCK, -WBLOCK, EXPLODE, BASE.

#include <filesystem>

#include "drafthost/automation/EntityNames.h"
#include "drafthost/commands/BlockQuestions.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/commands/TableQuestions.h"
#include "drafthost/drawing/BlockEdit.h"
#include "drafthost/drawing/Explode.h"
#include "drafthost/drawing/Purge.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

Task<bool> mayRedefine(CommandContext& context, std::string name) {
    if (findBlock(context.document().drawing(), name) == nullptr ||
        context.host().variables().integer("EXPERT", 0) >= 2) {
        co_return true;
    }
    bool redefine =
        co_await askYesNo(context, "Block " + inQuotes(name) + " already exists.  Redefine it?", false);
    co_return redefine;
}

/// The objects go from the drawing; OOPS brings them back.
void eraseAll(CommandContext& context, const std::vector<RecordId>& entities) {
    context.document().memory().erased = entities;
    for (const RecordId id : entities) {
        eraseEntity(context, id);
    }
}

}  // namespace

CommandTask blockCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    std::string name;
    for (bool asking = true; asking;) {
        auto answer = co_await askName(context, "Enter block name or [?]");
        if (answer.text.empty()) {
            co_return;
        }
        if (answer.text == "?") {
            for (const Block& block : blocks(drawing)) {
                if (!block.name.starts_with('*')) {
                    context.printLine("    " + inQuotes(block.name));
                }
            }
            continue;
        }
        name = answer.text;
        const std::string fault = nameFault(name);
        if (!fault.empty()) {
            context.complain(fault);
            continue;
        }
        asking = !co_await mayRedefine(context, name);
    }
    auto base =
        co_await context.point("Specify insertion base point", {.keywords = "Annotative", .noEmpty = true});
    if (base.isKeyword()) {
        bool wanted = co_await askYesNo(context, "Create annotative block?", false);
        if (wanted) {
            context.complain("Annotative blocks are not made here; the block is a plain one.");
        }
        base = co_await context.point("Specify insertion base point", {.noEmpty = true});
    }
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    if (leadsTo(drawing, selected, name)) {
        context.fail("Block " + inQuotes(name) + " references itself.");
        co_return;
    }
    ChangeWatch watch(document, ModifiedObjects | ModifiedTables);
    // In a UCS of its own the block is what is seen there.
    const Transform ucs = ucsTransform(drawing);
    if (!(ucs == Transform())) {
        transformAll(context, selected, inverseOf(ucs));
    }
    if (!defineBlock(drawing, name, base.point, selected)) {
        context.fail("The drawing has no section for blocks.");
        co_return;
    }
    eraseAll(context, selected);
}

namespace {

bool writeBlockFile(CommandContext& context, Drawing& drawing, const std::string& path) {
    std::string error;
    if (drawing.save(path, error)) {
        return true;
    }
    context.fail(error);
    return false;
}

Task<std::string> askBlockFile(CommandContext& context) {
    auto answer = co_await context.fileName("Enter name of output file");
    if (answer.text.empty()) {
        co_return std::string();
    }
    std::string path = absolutePath(answer.text, ".dxf");
    std::string extension = std::filesystem::path(path).extension().string();
    if (foldCase(extension) == foldCase(".dwg")) {
        context.fail("Cannot write " + path + ": this host writes DXF drawings only, no dwg files.");
        co_return std::string();
    }
    bool replace = co_await mayReplaceFile(context, path);
    if (!replace) {
        context.fail(context.name() + " was given up, " + path + " stays as it is.");
        co_return std::string();
    }
    co_return path;
}

}  // namespace

CommandTask wblockCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    auto path = co_await askBlockFile(context);
    if (path.empty()) {
        co_return;
    }
    for (;;) {
        auto answer = co_await askName(
            context,
            "Enter name of existing block or [= (block=output file)/* (whole drawing)] <define new drawing>");
        std::string name = answer.text;
        if (name.empty()) {
            break;
        }
        if (name == "*") {
            std::string error;
            auto whole = Drawing::parse(drawing.serialise(), path, error);
            if (!whole) {
                context.fail(error);
                co_return;
            }
            purgeAll(*whole);
            writeBlockFile(context, *whole, path);
            co_return;
        }
        if (name == "=") {
            name = std::filesystem::path(path).stem().string();
        }
        const Block* block = findBlock(drawing, name);
        if (block == nullptr) {
            context.complain("Cannot find block " + inQuotes(name) + ".");
            continue;
        }
        if ((drawing.record(block->begin).integerOr(70, 0) & 4) != 0) {
            context.complain(inQuotes(name) + " is an external reference.");
            continue;
        }
        const Point base = drawing.record(block->begin).pointOr(10, {});
        const auto made = drawingOf(drawing, entitiesOf(drawing, *block), base);
        writeBlockFile(context, *made, path);
        co_return;
    }
    auto base = co_await context.point("Specify insertion base point", {.defaultText = "0,0,0"});
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    const auto made = drawingOf(drawing, selected, worldFromUcs(drawing, base.point));
    if (writeBlockFile(context, *made, path)) {
        ChangeWatch watch(document, ModifiedObjects);
        eraseAll(context, selected);
    }
}

CommandTask baseCommand(CommandContext& context) {
    Drawing& drawing = context.document().drawing();
    const Point now = headerPoint(drawing, "$INSBASE", {});
    const std::string shown = formatReal(now.x, 4) + "," + formatReal(now.y, 4) + "," + formatReal(now.z, 4);
    auto base = co_await context.point("Enter base point", {.defaultText = shown});
    ChangeWatch watch(context.document(), ModifiedVariables);
    setHeaderPoint(drawing, "$INSBASE", base.point, 3);
}

namespace {

/// Explodes what can be; the parts become the previous set.
void explodeAll(CommandContext& context, const std::vector<RecordId>& entities) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    std::vector<automation::EntityName> parts;
    std::vector<std::string> causes;
    {
        ChangeWatch watch(document, ModifiedObjects);
        for (const RecordId id : entities) {
            std::string error;
            const Record record = drawing.record(id);
            if (record.type() == "INSERT" && (record.integerOr(70, 1) > 1 || record.integerOr(71, 1) > 1)) {
                causes.push_back("rows and columns of references stay together");
                continue;
            }
            const auto made = explodeEntity(drawing, id, error);
            if (!made) {
                causes.push_back(error);
                continue;
            }
            eraseEntity(context, id);
            for (const RecordId part : *made) {
                parts.push_back(automation::nameOf(part));
            }
        }
    }
    if (!parts.empty()) {
        document.lisp().session().previousSelection = std::move(parts);
    }
    if (causes.empty()) {
        return;
    }
    // Sets from a window hold much that has no parts; only where nothing came of it that is a fault.
    const std::string line = std::to_string(causes.size()) + " could not be exploded: " + causes.front();
    if (causes.size() == entities.size()) {
        context.complain(line);
    } else {
        context.printLine(line);
    }
}

}  // namespace

CommandTask explodeCommand(CommandContext& context) {
    constexpr int TakesSets = 1;
    const bool sets =
        isByHand(context) || (context.host().variables().integer("QAFLAGS", 0) & TakesSets) != 0;
    std::vector<RecordId> selected;
    if (sets) {
        selected = co_await selectObjects(context, SelectToEdit);
    } else {
        auto picked = co_await pickObject(context, "Select object");
        if (picked.entity != NoRecord) {
            selected.push_back(picked.entity);
        }
    }
    if (!selected.empty()) {
        explodeAll(context, selected);
    }
}

}  // namespace drafthost::commands
