// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/BlockQuestions.h"

#include <algorithm>
#include <filesystem>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/TableQuestions.h"
#include "drafthost/drawing/BlockEdit.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/InsertBlock.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t External = 4;

std::string folded(const std::string& text) {
    std::string result = text;
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return result;
}

bool isDrawingName(const std::string& name) {
    const std::string extension = folded(fs::path(name).extension().string());
    return extension == ".dxf" || extension == ".dwg" || extension == ".dwt";
}

std::string stem(const std::string& path) {
    const std::string name = fs::path(path).filename().string();
    return isDrawingName(name) ? fs::path(name).stem().string() : name;
}

/// A file of the name as it stands, or with the extension of drawings in its place.
std::string existing(Host& host, const std::string& name) {
    std::error_code code;
    const std::string path = host.findFile(name);
    return !path.empty() && fs::is_regular_file(path, code) ? path : std::string();
}

bool loadFile(CommandContext& context, const std::string& file, const std::string& name) {
    Document& document = context.document();
    const std::string path = findDrawingFile(context, file);
    if (path.empty()) {
        return false;
    }
    std::error_code code;
    if (document.hasName() && fs::equivalent(path, document.path(), code)) {
        context.fail("Block " + inQuotes(name) + " references itself: " + path +
                     " is the drawing it would go into.");
        return false;
    }
    ChangeWatch watch(document, ModifiedObjects | ModifiedTables);
    std::string error;
    if (!loadBlock(document.drawing(), path, name, error)) {
        context.fail(error);
        return false;
    }
    return true;
}

Task<bool> listBlocks(CommandContext& context) {
    auto names = co_await askName(context, "Enter block(s) to list", "*");
    std::size_t user = 0;
    std::size_t external = 0;
    std::size_t unnamed = 0;
    context.printLine("Defined blocks.");
    const Drawing& drawing = context.document().drawing();
    for (const Block& block : blocks(drawing)) {
        const bool xref = (drawing.record(block.begin).integerOr(70, 0) & External) != 0;
        if (block.name.starts_with('*') || block.name.starts_with('$')) {
            ++unnamed;
        } else {
            ++(xref ? external : user);
            if (lisp::wildcardMatch(block.name, names.text, true)) {
                context.printLine("    " + inQuotes(block.name) + (xref ? "  xref" : ""));
            }
        }
    }
    context.printLine("User blocks " + std::to_string(user) + ", external references " +
                      std::to_string(external) + ", dependent blocks 0, unnamed blocks " +
                      std::to_string(unnamed));
    co_return true;
}

/// "name=file": the file under another name; over a block that is there only when that is wanted.
Task<BlockChoice> chooseRedefined(CommandContext& context, std::string name, std::string file) {
    BlockChoice choice;
    if (findBlock(context.document().drawing(), name) != nullptr) {
        bool redefine = context.host().variables().integer("EXPERT", 0) >= 2;
        if (!redefine) {
            redefine = co_await askYesNo(context, "Block " + inQuotes(name) + " already exists. Redefine it?",
                                         false);
        }
        if (!redefine) {
            choice.block = name;
            co_return choice;
        }
    }
    const std::string fault = nameFault(name);
    if (!fault.empty()) {
        context.fail(fault);
        co_return choice;
    }
    const bool was = findBlock(context.document().drawing(), name) != nullptr;
    if (loadFile(context, file.empty() ? name : file, name)) {
        choice.block = name;
        if (was) {
            context.printLine("Block " + inQuotes(name) + " redefined");
        }
    }
    co_return choice;
}

}  // namespace

std::string findDrawingFile(CommandContext& context, const std::string& typed) {
    std::string name = typed;
    std::replace(name.begin(), name.end(), '\\', '/');
    Host& host = context.host();
    std::vector<std::string> candidates{name};
    if (isDrawingName(name)) {
        // Drawings come here as DXF, whatever the script calls them.
        candidates.push_back(fs::path(name).replace_extension(".dxf").string());
        candidates.push_back(fs::path(name).filename().string());
        candidates.push_back(fs::path(name).filename().replace_extension(".dxf").string());
    } else {
        candidates = {name + ".dxf", name + ".DXF", name + ".dwg", name};
    }
    for (const std::string& candidate : candidates) {
        std::string path = existing(host, candidate);
        if (!path.empty()) {
            return path;
        }
    }
    context.printLine(inQuotes(isDrawingName(name) ? name : name + ".dxf") +
                      ": Can't find file in search path.");
    context.fail("*Invalid*");
    return {};
}

Task<BlockChoice> askBlockToInsert(CommandContext& context) {
    for (;;) {
        const std::string last = context.document().memory().insertedBlock;
        auto answer = co_await askName(context, "Enter block name or [?]", last);
        BlockChoice choice;
        std::string name = answer.text;
        if (name.empty()) {
            co_return choice;
        }
        if (name == "?") {
            co_await listBlocks(context);
            continue;
        }
        if (name == "~") {
            context.fail("A file dialog needs a person; give the name of the block or of its file.");
            co_return choice;
        }
        choice.explode = name.starts_with('*') && findBlock(context.document().drawing(), name) == nullptr;
        if (choice.explode) {
            name.erase(0, 1);
        }
        const std::size_t equals = name.find('=');
        if (equals != std::string::npos) {
            const bool explode = choice.explode;
            choice = co_await chooseRedefined(context, name.substr(0, equals), name.substr(equals + 1));
            choice.explode = explode;
            co_return choice;
        }
        std::replace(name.begin(), name.end(), '\\', '/');
        const Drawing& drawing = context.document().drawing();
        const Block* there = findBlock(drawing, name);
        there = there != nullptr ? there : findBlock(drawing, stem(name));
        if (there != nullptr && name != there->name &&
            (name.find('/') != std::string::npos || isDrawingName(name))) {
            context.printLine("Duplicate definition of block " + inQuotes(there->name) + " ignored.");
        }
        if (there != nullptr && (drawing.record(there->begin).integerOr(70, 0) & External) != 0) {
            context.complain(inQuotes(there->name) + " is an external reference; use XREF.");
            continue;
        }
        if (there != nullptr) {
            choice.block = there->name;
            co_return choice;
        }
        const std::string made = stem(name);
        if (loadFile(context, name, made)) {
            choice.block = made;
        }
        co_return choice;
    }
}

}  // namespace drafthost::commands
