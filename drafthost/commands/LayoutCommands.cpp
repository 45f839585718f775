// SPDX-License-Identifier: GPL-3.0-or-later
// -LAYOUT, MODEL, MSPACE, PSPACE, CHSPACE.

#include <algorithm>

#include "drafthost/commands/BlockQuestions.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayoutSwitch.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/commands/ViewportGeometry.h"
#include "drafthost/drawing/Import.h"
#include "drafthost/drawing/NewLayout.h"
#include "drafthost/drawing/View.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr unsigned LayoutBits = ModifiedObjects | ModifiedTables;

std::optional<Layout> layoutNamed(const Drawing& drawing, const std::string& name) {
    for (const Layout& layout : layouts(drawing)) {
        if (sameName(layout.name, name)) {
            return layout;
        }
    }
    return std::nullopt;
}

bool switchTo(CommandContext& context, const std::string& name) {
    std::string reason;
    if (context.host().variables().set("CTAB", name, reason) == VariableStatus::Ok) {
        return true;
    }
    context.complain(reason);
    return false;
}

std::string nameFault(const Drawing& drawing, const std::string& name) {
    if (name.empty() || name.find_first_of("<>/\\\":;?*|,=`") != std::string::npos) {
        return "Invalid layout name " + inQuotes(name) + ".";
    }
    return layoutNamed(drawing, name) ? "Layout " + inQuotes(name) + " already exists." : std::string();
}

std::string freeName(const Drawing& drawing, const std::string& head, const std::string& tail, int from) {
    for (int number = from;; ++number) {
        std::string name = head;
        name.append(std::to_string(number)).append(tail);
        if (!layoutNamed(drawing, name)) {
            return name;
        }
    }
}

/// A layout that is there; nothing when the command ends, which has been told.
Task<std::optional<Layout>> askLayout(CommandContext& context, const char* prompt) {
    const std::string now = currentLayoutName(context.document().drawing());
    auto answer = co_await askName(context, prompt, now);
    auto found = layoutNamed(context.document().drawing(), answer.text);
    if (!found) {
        context.complain("Cannot find layout " + inQuotes(answer.text) + ".");
    } else if (found->model) {
        context.complain("The Model layout stays as it is.");
        found.reset();
    }
    co_return found;
}

Task<bool> copyLayout(CommandContext& context) {
    auto source = co_await askLayout(context, "Enter layout to copy");
    if (!source) {
        co_return false;
    }
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    const std::string standard = freeName(drawing, source->name + " (", ")", 2);
    auto name = co_await askName(context, "Enter layout name for copy", standard);
    const std::string fault = nameFault(drawing, name.text);
    if (!fault.empty()) {
        context.complain(fault);
        co_return false;
    }
    ChangeWatch watch(document, LayoutBits);
    const RecordId made =
        source->object == NoRecord ? NoRecord : makeLayout(drawing, name.text, drawing, source->object);
    if (made == NoRecord) {
        context.complain("The drawing keeps no layouts.");
        co_return false;
    }
    const std::string target = layoutNamed(drawing, name.text)->blockName;
    if (const Block* block = findBlock(drawing, source->blockName)) {
        const std::vector<RecordId> contents = entitiesOf(drawing, *block);
        for (const RecordId id : contents) {
            copyEntity(drawing, id, {target});
        }
    }
    context.printLine("Layout " + inQuotes(source->name) + " copied to " + inQuotes(name.text) + ".");
    co_return true;
}

Task<bool> deleteLayout(CommandContext& context) {
    auto layout = co_await askLayout(context, "Enter name of layout to delete");
    if (!layout) {
        co_return false;
    }
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    const auto all = layouts(drawing);
    const auto other = std::find_if(all.begin(), all.end(), [&](const Layout& one) {
        return !one.model && !sameName(one.name, layout->name);
    });
    if (other == all.end() || layout->object == NoRecord) {
        context.complain("The last layout stays in the drawing.");
        co_return false;
    }
    const RecordId object = layout->object;
    if (isActivePaper(*layout)) {
        const bool model = modelIsCurrent(drawing);
        switchTo(context, other->name);
        if (model) {
            switchTo(context, "Model");
        }
    }
    ChangeWatch watch(document, LayoutBits);
    removeLayout(drawing, object);
    context.printLine("Layout " + inQuotes(layout->name) + " deleted.");
    co_return true;
}

Task<bool> newLayout(CommandContext& context) {
    Drawing& drawing = context.document().drawing();
    const std::string standard = freeName(drawing, "Layout", "", 1);
    auto name = co_await askName(context, "Enter new Layout name", standard);
    const std::string fault = nameFault(drawing, name.text);
    ChangeWatch watch(context.document(), LayoutBits);
    if (!fault.empty()) {
        context.complain(fault);
    } else if (makeLayout(drawing, name.text) == NoRecord) {
        context.complain("The drawing keeps no layouts.");
    }
    co_return true;
}

Task<bool> renamedLayout(CommandContext& context) {
    auto layout = co_await askLayout(context, "Enter layout to rename");
    if (!layout || layout->object == NoRecord) {
        co_return false;
    }
    Drawing& drawing = context.document().drawing();
    auto name = co_await askName(context, "Enter new layout name");
    const std::string fault =
        sameName(name.text, layout->name) ? std::string() : nameFault(drawing, name.text);
    if (!fault.empty()) {
        context.complain(fault);
        co_return false;
    }
    ChangeWatch watch(context.document(), LayoutBits);
    renameLayout(drawing, layout->object, name.text);
    context.printLine("Layout " + inQuotes(layout->name) + " renamed to " + inQuotes(name.text) + ".");
    co_return true;
}

/// Layouts of another drawing, with what is on them.
Task<bool> layoutsFromFile(CommandContext& context) {
    auto file = co_await askName(context, "Enter name of template file");
    if (file.text.empty()) {
        co_return false;
    }
    const std::string path = findDrawingFile(context, file.text);
    if (path.empty()) {
        co_return false;
    }
    std::string error;
    const auto other = Drawing::open(path, error);
    if (!other) {
        context.fail(error);
        co_return false;
    }
    auto names = co_await askName(context, "Enter layout name(s) or [?]");
    while (names.text == "?") {
        for (const Layout& layout : layouts(*other)) {
            context.printLine(layout.name);
        }
        names = co_await askName(context, "Enter layout name(s) or [?]");
    }
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, LayoutBits);
    bool any = false;
    for (const Layout& layout : layouts(*other)) {
        if (layout.model || layout.object == NoRecord ||
            (names.text != "*" && !sameName(names.text, layout.name))) {
            continue;
        }
        any = true;
        const std::string name =
            layoutNamed(drawing, layout.name) ? freeName(drawing, layout.name + " - ", "", 1) : layout.name;
        const RecordId made = makeLayout(drawing, name, *other, layout.object);
        const Block* block = findBlock(*other, layout.blockName);
        if (made == NoRecord || block == nullptr) {
            context.complain("The drawing keeps no layouts.");
            co_return false;
        }
        Importer importer(*other, drawing);
        for (const RecordId id : entitiesOf(*other, *block)) {
            importer.entity(id, {layoutNamed(drawing, name)->blockName});
        }
        if (importer.left() != 0) {
            context.printLine(std::to_string(importer.left()) +
                              " objects of the layout could not be brought along.");
        }
    }
    if (!any) {
        context.complain("Cannot find layout " + inQuotes(names.text) + " in " + path + ".");
    }
    co_return any;
}

}  // namespace

CommandTask layoutCommand(CommandContext& context) {
    auto option = co_await context.keyword("Enter layout option",
                                           "Copy Delete New Template Rename SAveas Set ?", "Set");
    if (option.isKeyword("Copy")) {
        co_await copyLayout(context);
    } else if (option.isKeyword("Delete")) {
        co_await deleteLayout(context);
    } else if (option.isKeyword("New")) {
        co_await newLayout(context);
    } else if (option.isKeyword("Template")) {
        co_await layoutsFromFile(context);
    } else if (option.isKeyword("Rename")) {
        co_await renamedLayout(context);
    } else if (option.isKeyword("SAveas")) {
        context.fail("A layout cannot be saved as a template of its own here; use SAVEAS or WBLOCK.");
    } else if (option.isKeyword("?")) {
        for (const Layout& layout : layouts(context.document().drawing())) {
            context.printLine(layout.name + "  Block name: " + layout.blockName);
        }
    } else {
        const std::string now = currentLayoutName(context.document().drawing());
        auto name = co_await askName(context, "Enter layout to make current", now);
        switchTo(context, name.text);
    }
}

CommandTask modelCommand(CommandContext& context) {
    switchTo(context, "Model");
    co_return;
}

CommandTask mspaceCommand(CommandContext& context) {
    Drawing& drawing = context.document().drawing();
    if (modelIsCurrent(drawing)) {
        context.complain("** Command not allowed in Model Tab **");
        co_return;
    }
    if (drawing.activeViewport() != NoRecord) {
        context.printLine("Already in model space.");
        co_return;
    }
    for (const RecordId id : layoutViewports(drawing)) {
        // Group 68: 0 is off, the highest number was worked in last.
        if (drawing.record(id).integerOr(68, 1) != 0) {
            drawing.setActiveViewport(id);
            co_return;
        }
    }
    context.complain("There are no active Model space viewports.");
}

CommandTask pspaceCommand(CommandContext& context) {
    Drawing& drawing = context.document().drawing();
    if (modelIsCurrent(drawing)) {
        context.complain("** Command not allowed in Model Tab **");
    } else if (drawing.activeViewport() == NoRecord) {
        context.printLine("Already in paper space.");
    }
    drawing.setActiveViewport(NoRecord);
    co_return;
}

CommandTask chspaceCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    if (modelIsCurrent(drawing)) {
        context.complain("** Command not allowed in Model Tab **");
        co_return;
    }
    auto selected = co_await selectObjects(context, SelectToEdit);
    if (selected.empty()) {
        co_return;
    }
    const bool toPaper = drawing.activeViewport() != NoRecord;
    const auto viewports = layoutViewports(drawing);
    RecordId through = drawing.activeViewport();
    if (!toPaper && !viewports.empty()) {
        through = viewports.front();
        if (viewports.size() > 1) {
            co_await context.word("Set the TARGET viewport active and press ENTER to continue");
            through = drawing.activeViewport() != NoRecord ? drawing.activeViewport() : through;
        }
    }
    const auto map = through == NoRecord ? std::nullopt : paperFromModel(drawing, through);
    if (!map) {
        context.fail("There is no viewport seen straight from above to bring the objects through.");
        co_return;
    }
    ChangeWatch watch(document, ModifiedObjects);
    const BlockTarget target{toPaper ? "*Paper_Space" : "*Model_Space"};
    std::vector<RecordId> copies;
    for (const RecordId id : selected) {
        const RecordId copy = copyEntity(drawing, id, target);
        if (copy != NoRecord) {
            copies.push_back(copy);
            eraseEntity(context, id);
        }
    }
    transformAll(context, copies, toPaper ? *map : inverseScaled(*map));
    const double factor = toPaper ? length(map->x) : 1 / length(map->x);
    context.printLine(std::to_string(copies.size()) + " object(s) changed from " +
                      (toPaper ? "MODEL space to PAPER" : "PAPER space to MODEL") + " space.");
    context.printLine("Objects were scaled by a factor of " + formatReal(factor, 6) +
                      " to maintain visual appearance.");
}

}  // namespace drafthost::commands
