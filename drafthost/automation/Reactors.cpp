// SPDX-License-Identifier: GPL-3.0-or-later
// Reactors: kept with their data and their functions, which are never called. Programs that only tidy up with
// them run; what they would do at an event does not happen.

#include <utility>

#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"

namespace drafthost::automation {
namespace {

class Reactor final : public lisp::Foreign {
  public:
    Reactor(std::string kind, Value given, Value functions)
        : data(std::move(given)), reactions(std::move(functions)), kind_(std::move(kind)) {}
    const std::string& kind() const { return kind_; }
    const char* typeName() const override { return kind_.c_str(); }
    std::string shown() const override { return "#<" + kind_ + ">"; }

    Value data;
    Value reactions;  ///< pairs of an event and the function for it
    Value owners;     ///< objects that an object reactor watches
    bool added = true;
    bool persistent = false;

  private:
    std::string kind_;
};

Reactor& reactorArg(const Value& value) {
    auto* reactor = value.isForeign() ? dynamic_cast<Reactor*>(&value.toForeign()) : nullptr;
    if (reactor == nullptr) {
        failType("VLR object", value);
    }
    return *reactor;
}

Value made(Evaluator& e, const Subr& subr, Args args) {
    const bool watchesObjects = std::string_view(subr.name) == "VLR-OBJECT-REACTOR";
    const std::size_t first = watchesObjects ? 1 : 0;
    if (args.size() < first + 2) {
        fail("too few arguments");
    }
    auto* reactor = new Reactor(subr.name, args[first], listArg(args[first + 1]));
    if (watchesObjects) {
        reactor->owners = args[0];
    }
    Value value = Value::adopt(reactor);
    sessionOf(e).reactors.push_back(value);
    return value;
}

Value data(Evaluator&, Args args) {
    return reactorArg(args[0]).data;
}
Value setData(Evaluator&, Args args) {
    return reactorArg(args[0]).data = args[1];
}
Value kindOf(Evaluator&, Args args) {
    return Value::symbol(":" + reactorArg(args[0]).kind());
}
Value reactions(Evaluator&, Args args) {
    return reactorArg(args[0]).reactions;
}
Value owners(Evaluator&, Args args) {
    return reactorArg(args[0]).owners;
}

Value setReaction(Evaluator&, Args args) {
    Reactor& reactor = reactorArg(args[0]);
    ListBuilder kept;
    for (const Value& pair : reactor.reactions.items()) {
        if (!(pair.isCons() && pair.car().isSymbol() && args[1].isSymbol() &&
              pair.car().toSymbol() == args[1].toSymbol())) {
            kept.add(pair);
        }
    }
    kept.add(Value::cons(args[1], args[2]));
    reactor.reactions = kept.take();
    return args[2];
}

Value add(Evaluator&, Args args) {
    reactorArg(args[0]).added = true;
    return args[0];
}
Value isAdded(Evaluator&, Args args) {
    return Value::boolean(reactorArg(args[0]).added);
}
Value remove(Evaluator&, Args args) {
    Reactor& reactor = reactorArg(args[0]);
    return std::exchange(reactor.added, false) ? Value(args[0]) : Value();
}

bool isOfKind(const Value& reactor, const Value& kind) {
    return !kind || (kind.isSymbol() && kind.toSymbol()->name() == ":" + reactorArg(reactor).kind());
}

Value removeAll(Evaluator& e, Args args) {
    for (const Value& reactor : sessionOf(e).reactors) {
        if (isOfKind(reactor, optional(args, 0))) {
            reactorArg(reactor).added = false;
        }
    }
    return {};
}

/// Those that are at work, by their kinds.
Value all(Evaluator& e, Args args) {
    ListBuilder result;
    for (const Value& reactor : sessionOf(e).reactors) {
        if (reactorArg(reactor).added && isOfKind(reactor, optional(args, 0))) {
            result.add(Value::list({Value::symbol(":" + reactorArg(reactor).kind()), reactor}));
        }
    }
    return result.take();
}

Value persist(Evaluator&, Args args) {
    reactorArg(args[0]).persistent = true;
    return args[0];
}
Value release(Evaluator&, Args args) {
    reactorArg(args[0]).persistent = false;
    return args[0];
}
Value isPersistent(Evaluator&, Args args) {
    return reactorArg(args[0]).persistent ? Value(args[0]) : Value();
}

constexpr Subr Functions[] = {
    {"VLR-ACDB-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-COMMAND-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-DEEPCLONE-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-DOCMANAGER-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-DWG-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-DXF-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-EDITOR-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-INSERT-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-LINKER-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-LISP-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-MISCELLANEOUS-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-MOUSE-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-OBJECT-REACTOR", 3, 3, nullptr, nullptr, made},
    {"VLR-SYSVAR-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-TOOLBAR-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-UNDO-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-WBLOCK-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-WINDOW-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-XREF-REACTOR", 2, 2, nullptr, nullptr, made},
    {"VLR-DATA", 1, 1, data},
    {"VLR-DATA-SET", 2, 2, setData},
    {"VLR-TYPE", 1, 1, kindOf},
    {"VLR-REACTIONS", 1, 1, reactions},
    {"VLR-REACTION-SET", 3, 3, setReaction},
    {"VLR-OWNERS", 1, 1, owners},
    {"VLR-ADD", 1, 1, add},
    {"VLR-ADDED-P", 1, 1, isAdded},
    {"VLR-REMOVE", 1, 1, remove},
    {"VLR-REMOVE-ALL", 0, 1, removeAll},
    {"VLR-REACTORS", 0, 1, all},
    {"VLR-PERS", 1, 1, persist},
    {"VLR-PERS-RELEASE", 1, 1, release},
    {"VLR-PERS-P", 1, 1, isPersistent},
};

}  // namespace

std::span<const Subr> reactorFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
