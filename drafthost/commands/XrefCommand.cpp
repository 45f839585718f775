// SPDX-License-Identifier: GPL-3.0-or-later
// -XREF.

#include <filesystem>

#include "drafthost/commands/BlockQuestions.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Xref.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

constexpr unsigned Bits = ModifiedObjects | ModifiedTables;

std::string folderOf(const Document& document) {
    return document.hasName() ? std::filesystem::path(document.path()).parent_path().string()
                              : std::filesystem::current_path().string();
}

void list(CommandContext& context, const std::string& names) {
    context.printLine("Xref name        Path                             Xref type");
    std::size_t total = 0;
    for (const Xref& xref : xrefs(context.document().drawing())) {
        if (lisp::wildcardMatch(xref.name, names, true)) {
            ++total;
            context.printLine(inQuotes(xref.name) + "  " + inQuotes(xref.path) + "  " +
                              (xref.overlay ? "Overlay" : "Attach"));
        }
    }
    context.printLine("Total Xref(s): " + std::to_string(total));
}

/// The references that the names mean; told when there are none.
Task<std::vector<Xref>> askXrefs(CommandContext& context, const char* prompt) {
    auto names = co_await askName(context, prompt);
    std::vector<Xref> found;
    if (names.text.empty()) {
        co_return found;
    }
    for (const Xref& xref : xrefs(context.document().drawing())) {
        if (lisp::wildcardMatch(xref.name, names.text, true)) {
            found.push_back(xref);
        }
    }
    if (found.empty()) {
        context.printLine("No matching xref names found.");
    }
    co_return found;
}

Task<bool> bindXrefs(CommandContext& context) {
    Document& document = context.document();
    const bool merge = context.host().variables().integer("BINDTYPE", 0) == 1;
    auto found = co_await askXrefs(context, "Enter xref name(s) to bind");
    for (const Xref& xref : found) {
        const std::string file = xrefFile(xref.path, folderOf(document));
        if (file.empty()) {
            context.complain("Xref " + inQuotes(xref.name) + " is unresolved: cannot find " + xref.path +
                             ".");
            continue;
        }
        ChangeWatch watch(document, Bits);
        std::string error;
        if (bindXref(document.drawing(), xref.name, file, merge, error)) {
            context.printLine("Xref " + inQuotes(xref.name) + " bound.");
        } else {
            context.complain(error);
        }
    }
    co_return true;
}

Task<bool> detachXrefs(CommandContext& context) {
    Document& document = context.document();
    auto found = co_await askXrefs(context, "Enter xref name(s) to detach");
    ChangeWatch watch(document, Bits);
    for (const Xref& xref : found) {
        // One that came with another goes with it, not alone.
        if (xref.name.find('|') == std::string::npos) {
            detachXref(document.drawing(), xref.name);
            context.printLine("Xref " + inQuotes(xref.name) + " detached.");
        }
    }
    co_return true;
}

Task<bool> loadXrefs(CommandContext& context, bool loaded) {
    Document& document = context.document();
    auto found =
        co_await askXrefs(context, loaded ? "Enter xref name(s) to reload" : "Enter xref name(s) to unload");
    // One that is not found undoes the whole of it, so nothing is touched before all are.
    for (const Xref& xref : found) {
        if (loaded && xrefFile(xref.path, folderOf(document)).empty()) {
            context.complain("Xref " + inQuotes(xref.name) + ": " + inQuotes(xref.path) +
                             " cannot be found; nothing was reloaded.");
            co_return false;
        }
    }
    ChangeWatch watch(document, Bits);
    for (const Xref& xref : found) {
        setXrefLoaded(document.drawing(), xref, loaded);
        context.printLine(loaded ? inQuotes(xref.name) + " loaded."
                                 : "Xref " + inQuotes(xref.name) + " unloaded.");
    }
    co_return true;
}

Task<bool> changePaths(CommandContext& context) {
    Document& document = context.document();
    auto found = co_await askXrefs(context, "Enter xref name(s) for new path");
    for (const Xref& xref : found) {
        context.printLine("Xref name: " + xref.name);
        context.printLine("Old path: " + xref.path);
        auto path = co_await context.text("Enter new path", xref.path);
        std::string text = path.text;
        if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
            text = text.substr(1, text.size() - 2);
        }
        ChangeWatch watch(document, Bits);
        setXrefPath(document.drawing(), xref, text);
        const bool there = !xrefFile(text, folderOf(document)).empty();
        setXrefLoaded(document.drawing(), xref, there);
        context.printLine(there
                              ? inQuotes(xref.name) + " loaded."
                              : "Xref " + inQuotes(xref.name) + ": " + inQuotes(text) + " cannot be found.");
    }
    co_return true;
}

Task<bool> changePathTypes(CommandContext& context) {
    Document& document = context.document();
    auto found = co_await askXrefs(context, "Enter xref name(s)");
    auto type = co_await context.keyword("Enter path type", "Full Relative None", "Relative");
    ChangeWatch watch(document, Bits);
    for (const Xref& xref : found) {
        namespace fs = std::filesystem;
        const std::string file = xrefFile(xref.path, folderOf(document));
        if (file.empty()) {
            context.complain("Xref " + inQuotes(xref.name) + ": " + inQuotes(xref.path) +
                             " cannot be found.");
            continue;
        }
        std::string path = fs::absolute(file).string();
        if (type.isKeyword("Relative")) {
            path = fs::path(path).lexically_relative(folderOf(document)).string();
            if (!path.starts_with("..")) {
                path.insert(0, "./");
            }
        } else if (type.isKeyword("None")) {
            path = fs::path(path).filename().string();
        }
        setXrefPath(document.drawing(), xref, path);
    }
    co_return true;
}

struct Factors {
    double x = 1;
    double y = 1;
    double rotation = 0;
};

Task<Factors> askFactors(CommandContext& context, Point place) {
    Factors factors;
    auto x = co_await context.real("Enter X scale factor", {.defaultText = "1"});
    auto y = co_await context.real("Enter Y scale factor <use X scale factor>");
    auto rotation = co_await context.angle("Specify rotation angle", {.defaultText = "0", .base = place});
    factors.x = x.real;
    factors.y = y.isEnter() ? x.real : y.real;
    factors.rotation = rotation.real;
    co_return factors;
}

/// A reference that is new to the drawing, or one more insertion of one that is there.
Task<std::string> askReference(CommandContext& context, bool overlay) {
    Document& document = context.document();
    auto answer =
        co_await context.fileName(overlay ? "Enter name of file to overlay" : "Enter name of file to attach");
    if (answer.text.empty()) {
        co_return std::string();
    }
    const std::string path = findDrawingFile(context, answer.text);
    if (path.empty()) {
        co_return std::string();
    }
    const std::string name = std::filesystem::path(path).stem().string();
    std::error_code code;
    if (document.hasName() && std::filesystem::equivalent(path, document.path(), code)) {
        context.fail("A drawing cannot refer to itself.");
        co_return std::string();
    }
    for (const Xref& xref : xrefs(document.drawing())) {
        if (sameName(xref.name, name)) {
            context.printLine("Xref " + inQuotes(name) +
                              " has already been defined. Using existing definition.");
            co_return xref.name;
        }
    }
    if (findBlock(document.drawing(), name) != nullptr) {
        context.fail("The drawing has a block " + inQuotes(name) + " of its own.");
        co_return std::string();
    }
    std::string stored = answer.text;
    if (std::filesystem::path(stored).is_relative() && std::filesystem::path(stored).extension().empty()) {
        stored = std::filesystem::path(path).filename().string();
    }
    ChangeWatch watch(document, Bits);
    if (!addXref(document.drawing(), name, stored, overlay)) {
        context.fail("The drawing has no section for blocks.");
        co_return std::string();
    }
    context.printLine((overlay ? "Overlay" : "Attach") + std::string(" Xref ") + inQuotes(name) + ": " +
                      path);
    context.printLine(inQuotes(name) + " loaded.");
    co_return name;
}

Task<bool> attachXref(CommandContext& context, bool overlay) {
    auto name = co_await askReference(context, overlay);
    if (name.empty()) {
        co_return false;
    }
    std::optional<double> scale;
    std::optional<double> rotation;
    Point place;
    for (bool asking = true; asking;) {
        auto answer = co_await context.point(
            "Specify insertion point or [Scale/X/Y/Z/Rotate/PScale/PX/PY/PZ/PRotate]",
            {.keywords = "Scale X Y Z Rotate PScale PX PY PZ PRotate", .noEmpty = true, .bareText = true});
        if (answer.hasValue()) {
            place = answer.point;
            asking = false;
        } else if (answer.isKeyword("Rotate") || answer.isKeyword("PRotate")) {
            auto angle =
                co_await context.angle("Specify rotation angle", {.defaultText = "0", .base = Point{}});
            rotation = answer.isKeyword("Rotate") ? std::optional(angle.real) : rotation;
        } else {
            auto factor = co_await context.real("Specify scale factor", {.defaultText = "1"});
            scale = answer.keyword.starts_with('P') ? scale : std::optional(factor.real);
        }
    }
    Factors factors;
    if (!scale && !rotation) {
        factors = co_await askFactors(context, place);
    } else {
        factors.x = scale.value_or(1);
        factors.y = factors.x;
        factors.rotation = rotation.value_or(0);
    }
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    ChangeWatch watch(document, ModifiedObjects);
    InsertRequest request;
    request.target = currentTarget(drawing);
    request.block = name;
    request.place = place;
    request.scale = {factors.x, factors.y, factors.x};
    request.rotation = factors.rotation;
    const RecordId insert = insertBlockReference(drawing, request, {});
    const Transform ucs = ucsTransform(drawing);
    if (!(ucs == Transform())) {
        transformAll(context, {insert}, ucs);
    }
    co_return true;
}

}  // namespace

CommandTask xrefCommand(CommandContext& context) {
    auto option = co_await context.keyword(
        "Enter an option", "? Bind Detach Path pathType Unload Reload Overlay Attach", "Attach");
    if (option.isKeyword("?")) {
        auto names = co_await askName(context, "Enter xref name(s) to list", "*");
        list(context, names.text);
    } else if (option.isKeyword("Bind")) {
        co_await bindXrefs(context);
    } else if (option.isKeyword("Detach")) {
        co_await detachXrefs(context);
    } else if (option.isKeyword("Path")) {
        co_await changePaths(context);
    } else if (option.isKeyword("pathType")) {
        co_await changePathTypes(context);
    } else if (option.isKeyword("Unload") || option.isKeyword("Reload")) {
        co_await loadXrefs(context, option.isKeyword("Reload"));
    } else {
        co_await attachXref(context, option.isKeyword("Overlay"));
    }
}

}  // namespace drafthost::commands
