// SPDX-License-Identifier: GPL-3.0-or-later
// Selection sets of the model. They select as (ssget) does.

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/activex/ModelState.h"
#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/automation/PickSet.h"
#include "drafthost/drawing/Blocks.h"

namespace drafthost::activex {
namespace {

constexpr const char* Members = "members";

automation::PickSet& setOf(Object& object) {
    Value& held = object.kept[Members];
    if (!held) {
        held = automation::makePickSet({});
    }
    return automation::pickSetArg(held);
}

Value newSet(Evaluator& e, const std::string& name) {
    Value made = makeObject(selectionSetClass(), documentDatabase(e));
    objectOf(made).name = name;
    return made;
}

std::vector<Value> allSets(Call& call) {
    std::vector<Value> all;
    for (const auto& [name, set] : modelState(call.e).selectionSets) {
        all.push_back(set);
    }
    return all;
}

Value setNamed(Call& call, const std::string& name) {
    auto& sets = modelState(call.e).selectionSets;
    if (name == "ACTIVE" || name == "PICKFIRST") {
        Value set = newSet(call.e, name == "ACTIVE" ? "CURRENT" : name);
        const auto& names = name == "ACTIVE" ? call.session().previousSelection : call.session().pickFirst;
        for (const automation::EntityName one : names) {
            if (automation::aliveRecord(*modelState(call.e).database->drawing, one)) {
                setOf(objectOf(set)).add(one);
            }
        }
        return set;
    }
    // Names of sets alone are told apart by case.
    const auto found = sets.find(name);
    return found == sets.end() ? Value() : found->second;
}

Result addSet(Call& call) {
    constexpr std::size_t Most = 128;
    auto& sets = modelState(call.e).selectionSets;
    const std::string& name = call.text(0);
    if (sets.contains(name)) {
        failAutomation("The named selection set exists");
    }
    if (sets.size() >= Most || name.empty()) {
        failAutomation("Invalid input");
    }
    return sets[name] = newSet(call.e, name);
}

std::vector<Value> membersOf(Call& call) {
    std::vector<Value> all;
    for (const automation::EntityName one : setOf(call.self).members()) {
        if (const auto id = automation::aliveRecord(call.drawing(), one)) {
            all.push_back(call.object(*id));
        }
    }
    return all;
}

/// The filter of (ssget) that two arrays describe, as a list; nil without.
Value filterOf(Call& call, std::size_t at) {
    if (!call.has(at) || !call.has(at + 1)) {
        return {};
    }
    const std::vector<Value> types = itemsOf(call.arg(at));
    const std::vector<Value> data = itemsOf(call.arg(at + 1));
    if (types.size() != data.size()) {
        fail("ActiveX Server returned an error: Invalid argument");
    }
    ListBuilder list;
    for (std::size_t i = 0; i < types.size(); ++i) {
        const Value& value = unwrapped(data[i]);
        list.add(Value::cons(Value::integer(integerOf(types[i])),
                             arrayOf(value) != nullptr ? Value::point(pointOf(value)) : value));
    }
    return list.take();
}

void select(Call& call, std::vector<Value> args, const Value& filter) {
    if (filter) {
        args.push_back(filter);
    }
    const auto before = call.session().previousSelection;
    const Value found = call.e.apply(Value::symbol("SSGET"), args);
    if (automation::PickSet* set = automation::pickSetOf(found)) {
        for (const automation::EntityName one : set->members()) {
            setOf(call.self).add(one);
        }
    } else {
        call.session().previousSelection = before;
    }
}

Result selectByMode(Call& call) {
    static constexpr const char* Modes[] = {"_W", "_C", "_F", "_P", "_L", "_X"};
    const int mode = call.integer(0);
    if (mode < 0 || mode > 5) {
        failAutomation("Invalid input");
    }
    std::vector<Value> args{Value::string(Modes[mode])};
    if (mode < 2) {
        args.push_back(Value::point(call.point(1)));
        args.push_back(Value::point(call.point(2)));
    }
    select(call, std::move(args), filterOf(call, 3));
    return {};
}
Result selectOnScreen(Call& call) {
    select(call, {}, filterOf(call, 0));
    return {};
}
Result selectByPolygon(Call& call) {
    const int mode = call.integer(0);
    ListBuilder points;
    for (const Point& p : pointsOf(call.arg(1), 3)) {
        points.add(Value::point(p));
    }
    const char* name = mode == 2 ? "_F" : mode == 6 ? "_WP" : "_CP";
    select(call, {Value::string(name), points.take()}, filterOf(call, 2));
    return {};
}
Result selectAtPoint(Call& call) {
    select(call, {Value::point(call.point(0))}, filterOf(call, 1));
    return {};
}
Result addItems(Call& call) {
    for (const Value& item : itemsOf(call.arg(0))) {
        setOf(call.self).add(automation::nameOf(objectOf(unwrapped(item)).record));
    }
    return {};
}
Result removeItems(Call& call) {
    for (const Value& item : itemsOf(call.arg(0))) {
        setOf(call.self).remove(automation::nameOf(objectOf(unwrapped(item)).record));
    }
    return {};
}
Result clear(Call& call) {
    call.self.kept.erase(Members);
    return {};
}
Result erase(Call& call) {
    for (const Value& member : membersOf(call)) {
        Object& object = objectOf(member);
        Call ask{call.e, object, {}};
        callMethod(ask, *object.cls->method(lisp::Symbol::intern("DELETE")));
    }
    call.self.kept.erase(Members);
    return {};
}
Result forget(Call& call) {
    modelState(call.e).selectionSets.erase(call.self.name);
    return {};
}
Result name(Call& call) {
    return Result::text(call.self.name);
}
Result nothing(Call&) {
    return {};
}

}  // namespace

const Class& selectionSetsClass() {
    static constexpr Method Own[] = {{"Add", 1, 1, addSet}};
    static const Class kClass = [] {
        Class c{"IAcadSelectionSets", "", {collectionProperties()}, {Own, collectionMethods()}};
        c.members = allSets;
        c.named = setNamed;
        return c;
    }();
    return kClass;
}

const Class& selectionSetClass() {
    static constexpr Property OwnProperties[] = {{"Name", Access::Custom, 0, 0, name}};
    static constexpr Method Own[] = {
        {"Select", 1, 5, selectByMode},
        {"SelectOnScreen", 0, 2, selectOnScreen},
        {"SelectByPolygon", 2, 4, selectByPolygon},
        {"SelectAtPoint", 1, 3, selectAtPoint},
        {"AddItems", 1, 1, addItems},
        {"RemoveItems", 1, 1, removeItems},
        {"Clear", 0, 0, clear},
        {"Erase", 0, 0, erase},
        {"Delete", 0, 0, forget},
        {"Highlight", 1, 1, nothing},
        {"Update", 0, 0, nothing},
    };
    static const Class kClass = [] {
        Class c{"IAcadSelectionSet", "", {OwnProperties, collectionProperties()}, {Own, collectionMethods()}};
        c.members = membersOf;
        return c;
    }();
    return kClass;
}

}  // namespace drafthost::activex
