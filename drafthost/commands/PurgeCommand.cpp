// SPDX-License-Identifier: GPL-3.0-or-later
// -PURGE: what nothing in the drawing uses is taken out of it.

#include <unordered_set>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Purge.h"
#include "drafthost/editor/Document.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

struct PurgeType {
    std::string_view keyword;
    PurgeKind kind;
    const char* one;
    const char* many;
};

constexpr PurgeType Types[] = {
    {"Blocks", PurgeKind::Block, "block", "blocks"},
    {"Dimstyles", PurgeKind::Dimstyle, "dimension style", "dimension styles"},
    {"Groups", PurgeKind::Group, "group", "groups"},
    {"LAyers", PurgeKind::Layer, "layer", "layers"},
    {"LTypes", PurgeKind::Linetype, "linetype", "linetypes"},
    {"MAterials", PurgeKind::Material, "material", "materials"},
    {"MUltileaderstyles", PurgeKind::MultileaderStyle, "multileader style", "multileader styles"},
    {"Plotstyles", PurgeKind::PlotStyle, "plot style", "plot styles"},
    {"SHapes", PurgeKind::Shape, "shape file", "shape files"},
    {"textSTyles", PurgeKind::TextStyle, "text style", "text styles"},
    {"Mlinestyles", PurgeKind::MlineStyle, "mline style", "mline styles"},
    {"Tablestyles", PurgeKind::TableStyle, "table style", "table styles"},
    {"Visualstyles", PurgeKind::VisualStyle, "visual style", "visual styles"},
    {"Regapps", PurgeKind::Regapp, "registered application", "registered applications"},
};

constexpr const char* Keywords =
    "Blocks DEtailviewstyles Dimstyles Groups LAyers LTypes MAterials MUltileaderstyles Plotstyles SHapes "
    "textSTyles Mlinestyles SEctionviewstyles Tablestyles Visualstyles Regapps Zero-length Empty Orphaned "
    "All";

/// What All covers: not the applications.
bool isInAll(const PurgeType& type) {
    return type.kind != PurgeKind::Regapp;
}

struct PurgeRequest {
    std::string names = "*";
    bool verify = true;
};

bool isWanted(const PurgeRequest& request, const std::string& name) {
    return lisp::wildcardMatch(name, request.names, true);
}

struct PurgeCount {
    std::size_t deleted = 0;
    std::unordered_set<std::string> refused;  ///< kept at the user's wish
};

/// One pass over a type. What another pass finds was held by what this one has taken.
Task<std::size_t> purgePass(CommandContext& context, PurgeType type, PurgeRequest request, PurgeCount& count,
                            bool tellNone) {
    Document& document = context.document();
    std::size_t deleted = 0;
    bool any = false;
    const auto found = purgeable(document.drawing(), type.kind);
    for (const Purgeable& what : found) {
        const std::string key = std::string(type.one) + what.name;
        if (!isWanted(request, what.name) || count.refused.contains(key)) {
            continue;
        }
        any = true;
        if (request.verify) {
            std::string question = "Purge " + std::string(type.one) + " " + inQuotes(what.name) + "?";
            bool wanted = co_await askYesNo(context, question, false);
            if (!wanted) {
                count.refused.insert(key);
                continue;
            }
        }
        context.printLine("Deleting " + std::string(type.one) + " " + inQuotes(what.name) + ".");
        ChangeWatch watch(document, ModifiedObjects | ModifiedTables);
        purge(document.drawing(), type.kind, what);
        ++deleted;
    }
    if (!any && tellNone) {
        context.printLine("No unreferenced " + std::string(type.many) + " found.");
    }
    co_return deleted;
}

Task<bool> purgeTypes(CommandContext& context, std::vector<PurgeType> types) {
    PurgeRequest request;
    auto names = co_await askName(context, "Enter name(s) to purge", "*");
    request.names = names.text;
    request.verify = co_await askYesNo(context, "Verify each name to be purged?", true);
    PurgeCount count;
    bool first = true;
    std::size_t deleted = 0;
    do {
        deleted = 0;
        for (const PurgeType& type : types) {
            deleted += co_await purgePass(context, type, request, count, first);
        }
        count.deleted += deleted;
        first = false;
    } while (deleted != 0);
    co_return count.deleted != 0;
}

void purgeGeometry(CommandContext& context, PurgeKind kind, const char* what) {
    Document& document = context.document();
    ChangeWatch watch(document, ModifiedObjects);
    const auto found = purgeable(document.drawing(), kind);
    for (const Purgeable& one : found) {
        purge(document.drawing(), kind, one);
    }
    context.printLine(found.empty() ? "No " + std::string(what) + " found."
                                    : "Deleted " + std::to_string(found.size()) + " " + what + ".");
}

}  // namespace

CommandTask purgeCommand(CommandContext& context) {
    context.printLine("Nested items = On    Orphaned data = Off");
    auto answer = co_await context.keyword("Enter type of unused objects to purge", Keywords);
    if (answer.isEnter()) {
        co_return;
    }
    if (answer.isKeyword("Zero-length")) {
        purgeGeometry(context, PurgeKind::ZeroLength, "zero-length objects");
        co_return;
    }
    if (answer.isKeyword("Empty")) {
        purgeGeometry(context, PurgeKind::EmptyText, "empty text objects");
        co_return;
    }
    if (answer.isKeyword("Orphaned")) {
        context.printLine("No orphaned data found.");
        co_return;
    }
    if (answer.isKeyword("DEtailviewstyles") || answer.isKeyword("SEctionviewstyles")) {
        context.printLine("View styles are not purged here.");
        co_return;
    }
    std::vector<PurgeType> types;
    for (const PurgeType& type : Types) {
        if (answer.keyword == type.keyword || (answer.isKeyword("All") && isInAll(type))) {
            types.push_back(type);
        }
    }
    co_await purgeTypes(context, types);
}

}  // namespace drafthost::commands
