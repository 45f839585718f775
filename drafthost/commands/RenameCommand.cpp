// SPDX-License-Identifier: GPL-3.0-or-later
// -RENAME.

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerTable.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/TableQuestions.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

struct Renamed {
    std::string_view keyword;
    Table table;
    const char* word;
};
constexpr Renamed Kinds[] = {
    {"Block", Table::BlockRecord, "block"}, {"Dimstyle", Table::Dimstyle, "dimension style"},
    {"LAyer", Table::Layer, "layer"},       {"LType", Table::Ltype, "linetype"},
    {"textStyle", Table::Style, "style"},   {"Ucs", Table::Ucs, "UCS"},
    {"VIew", Table::View, "view"},          {"VPort", Table::Vport, "viewport configuration"}};

/// The entry of that name; before R13 blocks have no records, and the definition itself carries the name.
RecordId find(const Drawing& drawing, Table table, const std::string& name) {
    const RecordId entry = findEntry(drawing, table, name);
    if (entry != NoRecord || table != Table::BlockRecord) {
        return entry;
    }
    const Block* block = findBlock(drawing, name);
    return block == nullptr ? NoRecord : block->begin;
}

/// Names that every drawing has and that stay.
bool isFixed(Table table, const std::string& name) {
    const std::string folded = foldCase(name);
    if (name.find('|') != std::string::npos || name.starts_with('*')) {
        return true;
    }
    if (table == Table::Layer) {
        return name == "0";
    }
    return table == Table::Ltype && (folded == foldCase("ByLayer") || folded == foldCase("ByBlock") ||
                                     folded == foldCase("Continuous"));
}

std::string faultOf(const Drawing& drawing, const Renamed& kind, const std::string& name) {
    return kind.table == Table::Layer ? layerNameFault(drawing, name) : nameFault(name);
}

}  // namespace

CommandTask renameCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    auto type = co_await context.keyword(
        "Enter object type to rename",
        "Block Dimstyle LAyer LType Material multileadeRstyle Plotstyle textStyle Tablestyle Ucs VIew VPort");
    if (type.isEnter()) {
        co_return;
    }
    const Renamed* kind = nullptr;
    for (const Renamed& one : Kinds) {
        kind = type.keyword == one.keyword ? &one : kind;
    }
    if (kind == nullptr) {
        context.fail("Objects of the kind " + type.keyword + " cannot be renamed here.");
        co_return;
    }
    const std::string word = kind->word;
    RecordId entry = NoRecord;
    while (entry == NoRecord) {
        auto old = co_await askName(context, "Enter old " + word + " name");
        if (old.text.empty()) {
            co_return;
        }
        entry = find(drawing, kind->table, old.text);
        if (entry == NoRecord) {
            context.complain("Cannot find " + word + " " + inQuotes(old.text) + ".");
        } else if (isFixed(kind->table, old.text)) {
            context.complain("Cannot rename " + word + " " + inQuotes(old.text) + ".");
            entry = NoRecord;
        }
    }
    for (;;) {
        auto name = co_await askName(context, "Enter new " + word + " name");
        if (name.text.empty()) {
            co_return;
        }
        const RecordId taken = find(drawing, kind->table, name.text);
        const std::string fault = faultOf(drawing, *kind, name.text);
        if (!fault.empty()) {
            context.complain(fault);
        } else if (taken != NoRecord && taken != entry) {
            context.complain(word + " " + inQuotes(name.text) + " already exists.");
        } else {
            ChangeWatch watch(document, ModifiedObjects | ModifiedTables);
            renameEntry(drawing, kind->table, entry, name.text);
            co_return;
        }
    }
}

}  // namespace drafthost::commands
