// SPDX-License-Identifier: GPL-3.0-or-later
// Access to entities and other records by name.

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityEdit.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::automation {
namespace {

Value nameOrNil(RecordId id) {
    return id == NoRecord ? Value() : Value::ename(nameOf(id));
}

Value get(Evaluator& e, Args args) {
    const Drawing& drawing = drawingOf(e);
    const auto id = aliveRecord(drawing, enameArg(args[0]));
    if (!id) {
        return {};
    }
    Applications applications;
    for (const Value& name : listArg(optional(args, 1)).items()) {
        applications.push_back(stringArg(name));
    }
    return recordList(drawing, *id, applications);
}

Value modify(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    checkGroups(args[0]);
    const Value* name = groupOf(args[0], -1);
    const auto id = name == nullptr ? std::nullopt : aliveRecord(drawing, name->toEname());
    if (!id) {
        return {};
    }
    bool tables = false;
    const bool done = modifyRecord(drawing, *id, args[0], tables);
    if (done || tables) {
        sessionOf(e).host.drawingChanged(tables);
    }
    return done ? args[0] : Value();
}

std::optional<Made> make(Evaluator& e, const Value& list) {
    Drawing& drawing = drawingOf(e);
    checkGroups(list);
    bool tables = false;
    auto made = makeRecord(drawing, list, sessionOf(e).making, tables);
    if (made || tables) {
        sessionOf(e).host.drawingChanged(tables);
    }
    return made;
}

Value makeEntity(Evaluator& e, Args args) {
    const auto made = make(e, args[0]);
    return !made ? Value() : made->block.empty() ? args[0] : Value::string(made->block);
}

Value makeNamed(Evaluator& e, Args args) {
    const auto made = make(e, args[0]);
    return !made ? Value() : made->block.empty() ? nameOrNil(made->record) : Value::string(made->block);
}

// Deletes an entity, or gives back one that was deleted in this session.
Value toggleDeleted(Evaluator& e, Args args) {
    Drawing& drawing = drawingOf(e);
    const EntityName name = enameArg(args[0]);
    if (const auto gone = sessionOf(e).deleted.find(name); gone != sessionOf(e).deleted.end()) {
        for (const RecordId id : gone->second) {
            drawing.restoreRecord(id);
        }
        sessionOf(e).deleted.erase(gone);
        sessionOf(e).host.drawingChanged(false);
        return args[0];
    }
    const auto id = aliveRecord(drawing, name);
    if (!id || !drawing.record(*id).find(8) || isSubEntity(drawing, *id) || isLocked(drawing, *id)) {
        return {};
    }
    sessionOf(e).deleted[name] = deleteEntity(drawing, *id);
    sessionOf(e).host.drawingChanged(false);
    return args[0];
}

Value last(Evaluator& e, Args) {
    return nameOrNil(lastEntity(drawingOf(e)));
}

Value next(Evaluator& e, Args args) {
    const Drawing& drawing = drawingOf(e);
    if (args.empty()) {
        return nameOrNil(firstEntity(drawing));
    }
    const auto id = aliveRecord(drawing, enameArg(args[0]));
    return id ? nameOrNil(nextEntity(drawing, *id, true)) : Value();
}

Value update(Evaluator& e, Args args) {
    const bool there = aliveRecord(drawingOf(e), enameArg(args[0])).has_value();
    sessionOf(e).host.refreshView();
    return there ? args[0] : Value();
}

Value byHandle(Evaluator& e, Args args) {
    const std::uint64_t handle = parseHandle(stringArg(args[0]));
    return handle == 0 ? Value() : nameOrNil(drawingOf(e).findHandle(handle));
}

constexpr Subr Functions[] = {
    {"ENTGET", 1, 2, get},         {"ENTMOD", 1, 1, modify},        {"ENTMAKE", 1, 1, makeEntity},
    {"ENTMAKEX", 1, 1, makeNamed}, {"ENTDEL", 1, 1, toggleDeleted}, {"ENTLAST", 0, 0, last},
    {"ENTNEXT", 0, 1, next},       {"ENTUPD", 1, 1, update},        {"HANDENT", 1, 1, byHandle},
};

}  // namespace

std::span<const Subr> entityFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
