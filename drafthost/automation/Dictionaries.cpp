// SPDX-License-Identifier: GPL-3.0-or-later
// Dictionaries of the drawing's objects.

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Objects.h"

namespace drafthost::automation {
namespace {

RecordId dictionaryArg(const Drawing& drawing, const Value& v) {
    const auto id = aliveRecord(drawing, enameArg(v));
    if (!id || (drawing.type(*id) != "DICTIONARY" && drawing.type(*id) != "ACDBDICTIONARYWDFLT")) {
        failType("dictionary:", v);
    }
    return *id;
}

Value entryList(const Drawing& drawing, const DictionaryEntry& entry) {
    const RecordId object = drawing.findHandle(entry.handle);
    return object == NoRecord ? Value() : recordList(drawing, object, {});
}

std::optional<std::size_t> indexOf(const std::vector<DictionaryEntry>& entries, const std::string& name) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (foldCase(entries[i].name) == foldCase(name)) {
            return i;
        }
    }
    return std::nullopt;
}

Value root(Evaluator& e, Args) {
    const RecordId id = rootDictionary(drawingOf(e));
    return id == NoRecord ? Value() : Value::ename(nameOf(id));
}

Value search(Evaluator& e, Args args) {
    const Drawing& drawing = drawingOf(e);
    const auto entries = dictionaryEntries(drawing, dictionaryArg(drawing, args[0]));
    const auto index = indexOf(entries, stringArg(args[1]));
    if (!index) {
        return {};
    }
    if (optional(args, 2)) {
        // The walk goes on behind what was found.
        sessionOf(e).dictionaryCursors[args[0].toEname()] = *index + 1;
    }
    return entryList(drawing, entries[*index]);
}

Value next(Evaluator& e, Args args) {
    const Drawing& drawing = drawingOf(e);
    const auto entries = dictionaryEntries(drawing, dictionaryArg(drawing, args[0]));
    std::size_t& cursor = sessionOf(e).dictionaryCursors[args[0].toEname()];
    if (optional(args, 1)) {
        cursor = 0;
    }
    return cursor < entries.size() ? entryList(drawing, entries[cursor++]) : Value();
}

Value add(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const RecordId dictionary = dictionaryArg(drawing, args[0]);
    const std::string& name = stringArg(args[1]);
    const auto object = aliveRecord(drawing, enameArg(args[2]));
    if (!object || drawing.handle(*object) == 0 || indexOf(dictionaryEntries(drawing, dictionary), name)) {
        return {};
    }
    const std::size_t end = drawing.record(dictionary).xdata();
    drawing.insertTag(dictionary, end, 3, name);
    drawing.insertTag(dictionary, end + 1, 350, formatHandle(drawing.handle(*object)));
    drawing.put(*object, 330, formatHandle(drawing.handle(dictionary)), {5});
    sessionOf(e).host.drawingChanged(false);
    return args[2];
}

Value removeEntry(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const RecordId dictionary = dictionaryArg(drawing, args[0]);
    const auto entries = dictionaryEntries(drawing, dictionary);
    const auto index = indexOf(entries, stringArg(args[1]));
    if (!index) {
        return {};
    }
    const RecordId object = drawing.findHandle(entries[*index].handle);
    const std::size_t tag = entries[*index].tag;
    drawing.removeTag(dictionary, tag + 1);
    drawing.removeTag(dictionary, tag);
    sessionOf(e).host.drawingChanged(false);
    return object == NoRecord ? Value() : Value::ename(nameOf(object));
}

Value renameEntry(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const RecordId dictionary = dictionaryArg(drawing, args[0]);
    const auto entries = dictionaryEntries(drawing, dictionary);
    const auto index = indexOf(entries, stringArg(args[1]));
    if (!index || indexOf(entries, stringArg(args[2]))) {
        return {};
    }
    drawing.setTag(dictionary, entries[*index].tag, args[2].toString());
    sessionOf(e).host.drawingChanged(false);
    return args[2];
}

constexpr Subr Functions[] = {
    {"NAMEDOBJDICT", 0, 0, root}, {"DICTSEARCH", 2, 3, search},      {"DICTNEXT", 1, 2, next},
    {"DICTADD", 3, 3, add},       {"DICTREMOVE", 2, 2, removeEntry}, {"DICTRENAME", 3, 3, renameEntry},
};

}  // namespace

std::span<const Subr> dictionaryFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
