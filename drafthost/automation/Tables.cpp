// SPDX-License-Identifier: GPL-3.0-or-later
// Symbol tables, names and layouts.

#include <algorithm>

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::automation {
namespace {

/// Which table a name means: one of the symbol tables, or the blocks.
std::string tableArg(const Value& v) {
    std::string name = lisp::upperCase(stringArg(v));
    const auto table = tableOf(name);
    if (name != "BLOCK" && (!table || *table == Table::BlockRecord)) {
        fail("bad argument: unknown table " + lisp::prin1(v));
    }
    return name;
}

bool isSpace(const Block& block) {
    const std::string name = lisp::upperCase(block.name);
    return name.starts_with("*MODEL_SPACE") || name.starts_with("*PAPER_SPACE") || name == "$MODEL_SPACE" ||
           name == "$PAPER_SPACE";
}

/// The records that (tblnext) goes through.
std::vector<RecordId> entriesOf(const Drawing& drawing, const std::string& table) {
    if (table != "BLOCK") {
        return tableEntries(drawing, *tableOf(table));
    }
    std::vector<RecordId> result;
    for (const Block& block : blocks(drawing)) {
        if (!isSpace(block)) {
            result.push_back(block.begin);
        }
    }
    return result;
}

RecordId findNamed(const Drawing& drawing, const std::string& table, const std::string& name) {
    if (table != "BLOCK") {
        return findEntry(drawing, *tableOf(table), name);
    }
    const Block* block = findBlock(drawing, name);
    return block == nullptr ? NoRecord : block->begin;
}

Value blockList(const Drawing& drawing, const Block& block) {
    const Record record = drawing.record(block.begin);
    const auto entry = [](int code, Value value) {
        return Value::cons(Value::integer(code), std::move(value));
    };
    ListBuilder list;
    list.add(entry(0, Value::string("BLOCK")));
    list.add(entry(2, Value::string(block.name)));
    list.add(entry(70, Value::integer(static_cast<std::int32_t>(record.integerOr(70, 0)))));
    const Point base = record.pointOr(10, {});
    list.add(entry(10, Value::point({base.x, base.y, base.z})));
    const std::string path = record.textOr(1, "");
    if (!path.empty()) {
        list.add(entry(1, Value::string(path)));
    }
    const RecordId first = firstInBlock(drawing, block);
    if (first != NoRecord) {
        list.add(entry(-2, Value::ename(nameOf(first))));
    }
    return list.take();
}

Value listOf(const Drawing& drawing, const std::string& table, RecordId id) {
    if (table != "BLOCK") {
        return tableList(drawing, id);
    }
    for (const Block& block : blocks(drawing)) {
        if (block.begin == id) {
            return blockList(drawing, block);
        }
    }
    return {};
}

// The place is kept as record and index: when the record was deleted meanwhile, the index is that of
// the one behind it.
Value next(Evaluator& e, Args args) {
    const std::string table = tableArg(args[0]);
    const Drawing& drawing = drawingOf(e);
    const std::vector<RecordId> entries = entriesOf(drawing, table);
    TableCursor& cursor = sessionOf(e).tableCursors[table];
    if (optional(args, 1)) {
        cursor = {};
    }
    std::size_t index = cursor.index;
    if (index > 0 && (index > entries.size() || nameOf(entries[index - 1]) != cursor.last)) {
        index = 0;
        while (index < entries.size() && nameOf(entries[index]) != cursor.last) {
            ++index;
        }
        index = index < entries.size() ? index + 1 : cursor.index - 1;
    }
    if (index >= entries.size()) {
        return {};
    }
    cursor = {nameOf(entries[index]), index + 1};
    return listOf(drawing, table, entries[index]);
}

Value search(Evaluator& e, Args args) {
    const std::string table = tableArg(args[0]);
    const Drawing& drawing = drawingOf(e);
    const RecordId found = findNamed(drawing, table, nameArg(args[1]));
    if (found == NoRecord) {
        return {};
    }
    if (optional(args, 2)) {
        const std::vector<RecordId> entries = entriesOf(drawing, table);
        const auto at = std::find(entries.begin(), entries.end(), found);
        sessionOf(e).tableCursors[table] =
            TableCursor{nameOf(found), static_cast<std::size_t>(at - entries.begin()) + 1};
    }
    return listOf(drawing, table, found);
}

Value objectName(Evaluator& e, Args args) {
    const std::string table = tableArg(args[0]);
    const RecordId found = findNamed(drawingOf(e), table, stringArg(args[1]));
    return found == NoRecord ? Value() : Value::ename(nameOf(found));
}

bool isValidName(std::string_view name, bool allowBar) {
    constexpr std::size_t Longest = 255;
    if (name.empty() || lisp::characterCount(name) > Longest || name.front() == ' ' || name.back() == ' ') {
        return false;
    }
    for (const char c : name) {
        if (static_cast<unsigned char>(c) < 32 ||
            std::string_view("<>/\\\":;?*,=`").find(c) != std::string_view::npos || (c == '|' && !allowBar)) {
            return false;
        }
    }
    return name.front() != '|' && name.back() != '|';
}

Value validName(Evaluator&, Args args) {
    const int flag = optional(args, 1) ? intArg(args[1]) : 0;
    return Value::boolean(isValidName(stringArg(args[0]), (flag & 1) != 0));
}

Value registerApplication(Evaluator& e, Args args) {
    const std::string& name = stringArg(args[0]);
    Drawing& drawing = drawingOf(e);
    if (!isValidName(name, false)) {
        fail("bad argument value: application name " + lisp::prin1(args[0]));
    }
    if (findEntry(drawing, Table::Appid, name) != NoRecord) {
        return {};
    }
    addEntry(drawing, Table::Appid, name);
    sessionOf(e).host.drawingChanged(true);
    return args[0];
}

Value layoutNames(Evaluator& e, Args) {
    ListBuilder result;
    for (const Layout& layout : layouts(drawingOf(e))) {
        if (!layout.model) {
            result.add(Value::string(layout.name));
        }
    }
    return result.take();
}

constexpr Subr Functions[] = {
    {"TBLNEXT", 1, 2, next},      {"TBLSEARCH", 2, 3, search},           {"TBLOBJNAME", 2, 2, objectName},
    {"SNVALID", 1, 2, validName}, {"REGAPP", 1, 1, registerApplication}, {"LAYOUTLIST", 0, 0, layoutNames},
};

}  // namespace

std::span<const Subr> tableFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
