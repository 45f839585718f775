// SPDX-License-Identifier: GPL-3.0-or-later
// -LINETYPE.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/TableQuestions.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/LinetypeFile.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

constexpr unsigned TableBits = ModifiedObjects | ModifiedTables;

/// The definitions of a linetype file, or of the set that is built in under the usual names.
std::optional<std::vector<LinetypeDefinition>> readFile(CommandContext& context, const std::string& typed) {
    std::string name = typed;
    if (std::filesystem::path(name).extension().empty()) {
        name += ".lin";
    }
    const std::string path = context.host().findFile(name);
    if (path.empty()) {
        const std::string stem = foldCase(std::filesystem::path(name).stem().string());
        if (stem == foldCase("acad") || stem == foldCase("acadiso")) {
            return standardLinetypes(stem == foldCase("acadiso"));
        }
        context.complain("Cannot find the linetype file " + inQuotes(name) + ".");
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) {
        context.complain("Cannot read " + path + ".");
        return std::nullopt;
    }
    return readLinetypes(text);
}

std::string standardFile(const Drawing& drawing) {
    return headerInteger(drawing, "$MEASUREMENT", 0) == 1 ? "acadiso.lin" : "acad.lin";
}

Task<bool> loadLinetypes(CommandContext& context) {
    Document& document = context.document();
    auto names = co_await askName(context, "Enter linetype(s) to load");
    if (names.text.empty()) {
        co_return false;
    }
    const std::string standard = standardFile(document.drawing());
    auto file = co_await askName(context, "Enter name of linetype file to search", standard);
    const auto definitions = readFile(context, file.text);
    if (!definitions) {
        co_return false;
    }
    bool any = false;
    for (const LinetypeDefinition& definition : *definitions) {
        if (!lisp::wildcardMatch(definition.name, names.text, true)) {
            continue;
        }
        any = true;
        if (!definition.fault.empty()) {
            context.printLine("Linetype " + inQuotes(definition.name) +
                              " is not loaded: " + definition.fault + ".");
            continue;
        }
        if (findEntry(document.drawing(), Table::Ltype, definition.name) != NoRecord) {
            bool reload = context.host().variables().integer("EXPERT", 0) >= 3;
            if (!reload) {
                reload = co_await askYesNo(
                    context, "Linetype " + inQuotes(definition.name) + " is already loaded. Reload it?",
                    true);
            }
            if (!reload) {
                continue;
            }
        }
        ChangeWatch watch(document, TableBits);
        loadLinetype(document.drawing(), definition);
        context.printLine("Linetype " + inQuotes(definition.name) + " loaded.");
    }
    if (!any) {
        context.complain("Linetype " + inQuotes(names.text) + " not found.");
    }
    co_return any;
}

Task<bool> setLinetype(CommandContext& context) {
    Document& document = context.document();
    for (;;) {
        const std::string now = headerText(document.drawing(), "$CELTYPE", "ByLayer");
        auto answer = co_await askName(context, "Specify linetype name or [?]", now);
        if (answer.text == "?") {
            listTable(context, Table::Ltype, "*");
            continue;
        }
        ChangeWatch watch(document, ModifiedVariables);
        std::string name;
        for (const char* standing : {"ByLayer", "ByBlock", "Continuous"}) {
            name = sameName(answer.text, standing) ? standing : name;
        }
        const RecordId entry = name.empty() ? provideLinetype(document.drawing(), answer.text) : NoRecord;
        if (name.empty() && entry == NoRecord) {
            context.complain("Cannot find linetype " + inQuotes(answer.text) + ". Use LINETYPE to load it.");
            co_return false;
        }
        setHeader(document.drawing(), "$CELTYPE", 6,
                  entry == NoRecord ? name : entryName(document.drawing(), entry));
        co_return true;
    }
}

/// A new pattern, written behind those of a file and loaded.
Task<bool> createLinetype(CommandContext& context) {
    Document& document = context.document();
    auto name = co_await askName(context, "Enter name of linetype to create");
    if (name.text.empty()) {
        co_return false;
    }
    auto file = co_await askName(context, "Enter name of linetype file", "new.lin");
    auto description = co_await context.text("Descriptive text");
    auto pattern = co_await context.text("Enter linetype pattern (on next line): A,");
    const std::string body = pattern.text.starts_with("A,") ? pattern.text : "A," + pattern.text;
    const std::string text = "*" + name.text + "," + description.text + "\n" + body + "\n";
    const auto definitions = readLinetypes(text);
    if (definitions.size() != 1 || !definitions[0].fault.empty()) {
        context.complain("Linetype " + inQuotes(name.text) + " cannot be made: " +
                         (definitions.empty() ? std::string("it has no name") : definitions[0].fault) + ".");
        co_return false;
    }
    const std::string path = absolutePath(file.text, ".lin");
    std::ofstream out(path, std::ios::app | std::ios::binary);
    out << text;
    out.flush();
    if (!out) {
        context.complain("Cannot write " + path + ".");
        co_return false;
    }
    ChangeWatch watch(document, TableBits);
    loadLinetype(document.drawing(), definitions[0]);
    co_return true;
}

}  // namespace

CommandTask linetypeCommand(CommandContext& context) {
    for (;;) {
        context.printLine("Current line type:  " +
                          inQuotes(headerText(context.document().drawing(), "$CELTYPE", "ByLayer")));
        auto answer = co_await context.keyword("Enter an option", "? Create Load Set");
        if (answer.isEnter()) {
            co_return;
        }
        if (answer.isKeyword("?")) {
            const std::string standard = standardFile(context.document().drawing());
            auto file = co_await askName(context, "Enter name of linetype file to list", standard);
            if (const auto definitions = readFile(context, file.text)) {
                for (const LinetypeDefinition& definition : *definitions) {
                    context.printLine(inQuotes(definition.name) + "  " + definition.description);
                }
            }
        } else if (answer.isKeyword("Load")) {
            co_await loadLinetypes(context);
        } else if (answer.isKeyword("Set")) {
            co_await setLinetype(context);
        } else {
            co_await createLinetype(context);
        }
    }
}

}  // namespace drafthost::commands
