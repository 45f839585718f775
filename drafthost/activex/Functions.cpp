// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/activex/Functions.h"

#include <algorithm>
#include <map>

#include "drafthost/activex/Application.h"
#include "drafthost/activex/Classes.h"
#include "drafthost/activex/ModelState.h"
#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityEdit.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {
namespace {

/// Names of properties and methods are strings or symbols, in any case.
const lisp::Symbol* memberName(const Value& v) {
    if (v.isSymbol()) {
        return v.toSymbol();
    }
    return lisp::Symbol::intern(stringArg(v));
}

[[noreturn]] void failUnknown(const std::string& name) {
    fail("ActiveX Server returned the error: unknown name: " + name);
}

Result get(Evaluator& e, Object& object, const lisp::Symbol* name, Args indexes, const std::string& shown) {
    Call call{e, object, indexes};
    if (object.cls == &preferencesClass()) {
        return getPreference(call, name->name());
    }
    const Property* property = object.cls->property(name);
    if (property == nullptr) {
        failUnknown(shown);
    }
    return getProperty(call, *property);
}

void put(Evaluator& e, Object& object, const lisp::Symbol* name, Args args, const std::string& shown) {
    if (args.empty()) {
        fail("too few arguments");
    }
    Call call{e, object, args.first(args.size() - 1)};
    if (object.cls == &preferencesClass()) {
        putPreference(call, name->name(), args.back());
        return;
    }
    const Property* property = object.cls->property(name);
    if (property == nullptr) {
        failUnknown(shown);
    }
    putProperty(call, *property, args.back());
}

Result invoke(Evaluator& e, Object& object, const lisp::Symbol* name, Args args, const std::string& shown) {
    Call call{e, object, args};
    const Method* method = object.cls->method(name);
    if (method == nullptr) {
        failUnknown(shown);
    }
    return callMethod(call, *method);
}

// --- names that begin with "vla-" ---

std::string shownName(const lisp::Subr& f, std::size_t prefix) {
    return std::string(f.name).substr(prefix);
}

/// A function of that family with its member's symbol at hand.
struct Wrapper {
    std::string name;
    lisp::Subr subr{};
    const lisp::Symbol* member = nullptr;
    std::size_t prefix = 0;
};

const Wrapper& wrapperOf(const lisp::Subr& f);

Value vlaGet(Evaluator& e, const lisp::Subr& f, Args args) {
    const Wrapper& wrapper = wrapperOf(f);
    return modelValue(
        get(e, objectOf(args[0]), wrapper.member, args.subspan(1), shownName(f, wrapper.prefix)));
}
Value vlaPut(Evaluator& e, const lisp::Subr& f, Args args) {
    const Wrapper& wrapper = wrapperOf(f);
    put(e, objectOf(args[0]), wrapper.member, args.subspan(1), shownName(f, wrapper.prefix));
    return {};
}
Value vlaCall(Evaluator& e, const lisp::Subr& f, Args args) {
    const Wrapper& wrapper = wrapperOf(f);
    return modelValue(
        invoke(e, objectOf(args[0]), wrapper.member, args.subspan(1), shownName(f, wrapper.prefix)));
}

std::map<const lisp::Symbol*, std::unique_ptr<Wrapper>>& wrappers() {
    static std::map<const lisp::Symbol*, std::unique_ptr<Wrapper>> kWrappers;
    return kWrappers;
}

const Wrapper& wrapperOf(const lisp::Subr& f) {
    // The subr is part of its wrapper.
    const auto offset = offsetof(Wrapper, subr);
    return *reinterpret_cast<const Wrapper*>(reinterpret_cast<const char*>(&f) - offset);
}

Value findFunction(const lisp::Symbol& symbol) {
    const std::string& name = symbol.name();
    if (!name.starts_with("VLA-") || name.size() == 4) {
        return {};
    }
    std::unique_ptr<Wrapper>& known = wrappers()[&symbol];
    if (known == nullptr) {
        known = std::make_unique<Wrapper>();
        const bool isGet = name.starts_with("VLA-GET-") && name.size() > 8;
        const bool isPut = name.starts_with("VLA-PUT-") && name.size() > 8;
        known->name = name;
        known->prefix = isGet || isPut ? 8 : 4;
        known->member = lisp::Symbol::intern(name.substr(known->prefix));
        known->subr.name = known->name.c_str();
        known->subr.minArgs = isPut ? 2 : 1;
        known->subr.maxArgs = Subr::Any;
        known->subr.named = isGet ? vlaGet : isPut ? vlaPut : vlaCall;
    }
    return Value::subr(&known->subr);
}

// --- the same by name ---

Value getNamed(Evaluator& e, Args args) {
    const lisp::Symbol* name = memberName(args[1]);
    return modelValue(get(e, objectOf(args[0]), name, args.subspan(2), name->name()));
}
Value putNamed(Evaluator& e, Args args) {
    const lisp::Symbol* name = memberName(args[1]);
    put(e, objectOf(args[0]), name, args.subspan(2), name->name());
    return {};
}
Value invokeNamed(Evaluator& e, Args args) {
    const lisp::Symbol* name = memberName(args[1]);
    return modelValue(invoke(e, objectOf(args[0]), name, args.subspan(2), name->name()));
}
Value getPlain(Evaluator& e, Args args) {
    const lisp::Symbol* name = memberName(args[1]);
    return plainValue(get(e, objectOf(args[0]), name, args.subspan(2), name->name()));
}
Value putPlain(Evaluator& e, Args args) {
    return putNamed(e, args);
}
Value invokePlain(Evaluator& e, Args args) {
    const lisp::Symbol* name = memberName(args[1]);
    return plainValue(invoke(e, objectOf(args[0]), name, args.subspan(2), name->name()));
}

// --- objects ---

Value application(Evaluator& e, Args) {
    defineConstants(e);
    return singleObject(e, applicationClass());
}

Value loadModel(Evaluator& e, Args) {
    defineConstants(e);
    return {};
}

Value createNamed(Evaluator& e, Args args) {
    Value made = createObject(e, stringArg(args[0]));
    if (!made) {
        automation::sessionOf(e).host.print("\n" + args[0].toString() +
                                            ": there is no such program on this system.\n");
    }
    return made;
}
Value findNamed(Evaluator& e, Args args) {
    const bool own = lisp::upperCase(stringArg(args[0])).starts_with("AUTOCAD.APPLICATION");
    return own ? singleObject(e, applicationClass()) : Value();
}

Value fromName(Evaluator& e, Args args) {
    const lisp::EntityName name = automation::enameArg(args[0]);
    const auto database = documentDatabase(e);
    auto id = automation::aliveRecord(*database->drawing, name);
    if (!id) {
        failAutomation("Object was erased");
    }
    if (database->drawing->type(*id) == "BLOCK") {
        id = blockObject(*database->drawing, database->drawing->record(*id).textOr(2, ""));
    }
    return objectFor(e, database, *id);
}
Value toName(Evaluator&, Args args) {
    const Object& object = objectOf(args[0]);
    if (object.record == NoRecord || object.database->own != nullptr || object.released) {
        fail("unable to get ObjectID: " + object.shown());
    }
    return Value::ename(automation::nameOf(object.record));
}

Value isErasedObject(Evaluator&, Args args) {
    return Value::boolean(isErased(objectOf(args[0])));
}
Value release(Evaluator& e, Args args) {
    Object& object = objectOf(args[0]);
    // Single objects and those of the drawing are found anew by whoever asks again.
    forgetObject(e, object);
    object.released = true;
    return Value::integer(1);
}
Value isReleased(Evaluator&, Args args) {
    return Value::boolean(objectOf(args[0]).released);
}

const Object* usable(Evaluator& e, const Value& v, Value& held) {
    if (v.isEname()) {
        const auto database = documentDatabase(e);
        const auto id = automation::aliveRecord(*database->drawing, v.toEname());
        held = id ? objectFor(e, database, *id) : Value();
        return findObject(held);
    }
    const Object& object = objectOf(v);
    return object.released || isErased(object) ? nullptr : &object;
}
Value canRead(Evaluator& e, Args args) {
    Value held;
    return Value::boolean(usable(e, args[0], held) != nullptr);
}
Value canWrite(Evaluator& e, Args args) {
    Value held;
    const Object* object = usable(e, args[0], held);
    return Value::boolean(
        object != nullptr &&
        (object->record == NoRecord || !automation::isLocked(*object->database->drawing, object->record)));
}

Value hasProperty(Evaluator&, Args args) {
    const Object& object = objectOf(args[0]);
    const Property* property = object.cls->property(memberName(args[1]));
    const bool writable = property != nullptr && !property->readOnly &&
                          (property->set != nullptr || property->access != Access::Custom);
    return Value::boolean(property != nullptr && (!optional(args, 2) || writable));
}
Value hasMethod(Evaluator&, Args args) {
    return Value::boolean(objectOf(args[0]).cls->method(memberName(args[1])) != nullptr);
}

// --- walks ---

std::vector<Value> membersOf(Evaluator& e, const Value& v) {
    Object& object = objectOf(v);
    checkUsable(object);
    if (object.cls->members == nullptr) {
        failUnknown("_NewEnum");
    }
    Call call{e, object, {}};
    return object.cls->members(call);
}

Value forEach(Evaluator& e, const Value& forms) {
    if (!forms.isCons() || !forms.car().isSymbol()) {
        fail("bad argument type: symbolp " + lisp::prin1(forms.car()));
    }
    const lisp::Symbol* variable = forms.car().toSymbol();
    const Value collection = e.eval(forms.cdr().car());
    const Value& body = forms.cdr().cdr();
    Value result;
    const Evaluator::Binding binding(e, variable, {});
    // What is added or erased on the way changes nothing in the walk, but what is gone is passed over.
    for (const Value& member : membersOf(e, collection)) {
        if (!isErased(objectOf(member))) {
            e.set(variable, member);
            result = e.evalBody(body);
            e.step();
        }
    }
    return result;
}

Value mapCollection(Evaluator& e, Args args) {
    const Value function = e.function(args[1]);
    for (const Value& member : membersOf(e, args[0])) {
        if (!isErased(objectOf(member))) {
            Value one = member;
            e.apply(function, Args(&one, 1));
        }
    }
    return args[0];
}

// --- (vlax-dump-object) ---

std::string dumpedValue(const Result& result) {
    if (result.shape == Shape::Boolean) {
        return result.value ? "-1" : "0";
    }
    constexpr std::size_t Longest = 6;
    if (result.value.isCons()) {
        std::string text = "(";
        std::size_t count = 0;
        for (const Value& item : result.value.items()) {
            if (++count > Longest) {
                return text + " ... )";
            }
            text += (text.size() > 1 ? " " : "") + lisp::princ(item);
        }
        return text + ")";
    }
    return lisp::prin1(result.value);
}

Value dump(Evaluator& e, Args args) {
    Object& object = objectOf(args[0]);
    checkUsable(object);
    std::map<std::string, std::string> lines;
    for (const auto& table : object.cls->properties) {
        for (const Property& property : table) {
            const bool readOnly =
                property.readOnly || (property.set == nullptr && property.access == Access::Custom);
            std::string shown;
            if (std::string_view(property.name) == "Coordinate") {
                shown = "...Indexed contents not shown...";
            } else {
                try {
                    Call call{e, object, {}};
                    shown = dumpedValue(getProperty(call, property));
                } catch (const lisp::Failure& failure) {
                    if (failure.kind != lisp::Failure::Kind::Error) {
                        throw;
                    }
                    shown = "<" + failure.text + ">";
                }
            }
            lines.emplace(property.name, std::string(readOnly ? " (RO)" : "") + " = " + shown);
        }
    }
    auto& host = automation::sessionOf(e).host;
    host.print("; " + std::string(object.cls->interface) + "\n; Property values:\n");
    for (const auto& [name, rest] : lines) {
        host.print(";   ");
        host.print(name);
        host.print(rest);
        host.print("\n");
    }
    if (optional(args, 1)) {
        std::map<std::string, int> methods;
        for (const auto& table : object.cls->methods) {
            for (const Method& method : table) {
                methods.emplace(method.name, method.most);
            }
        }
        host.print("; Methods supported:\n");
        for (const auto& [name, count] : methods) {
            host.print(";   " + name + " (" + std::to_string(count) + ")\n");
        }
    }
    return Value::truth();
}

Value productKey(Evaluator&, Args) {
    return Value::string("Software\\Drafthost\\R19.0");
}
Value typeInfo(Evaluator&, Args args) {
    objectOf(args[0]);
    return Value::truth();
}
Value nothing(Evaluator&, Args) {
    return {};
}

constexpr Subr Functions[] = {
    {"VL-LOAD-COM", 0, 0, loadModel},
    {"VL-LOAD-REACTORS", 0, 0, loadModel},
    {"VLAX-GET-ACAD-OBJECT", 0, 0, application},
    {"VLAX-CREATE-OBJECT", 1, 1, createNamed},
    {"VLAX-GET-OBJECT", 1, 1, findNamed},
    {"VLAX-GET-OR-CREATE-OBJECT", 1, 1, createNamed},
    {"VLAX-ENAME->VLA-OBJECT", 1, 1, fromName},
    {"VLAX-VLA-OBJECT->ENAME", 1, 1, toName},
    {"VLAX-ERASED-P", 1, 1, isErasedObject},
    {"VLAX-RELEASE-OBJECT", 1, 1, release},
    {"VLAX-OBJECT-RELEASED-P", 1, 1, isReleased},
    {"VLAX-READ-ENABLED-P", 1, 1, canRead},
    {"VLAX-WRITE-ENABLED-P", 1, 1, canWrite},
    {"VLAX-PROPERTY-AVAILABLE-P", 2, 3, hasProperty},
    {"VLAX-METHOD-APPLICABLE-P", 2, 2, hasMethod},
    {"VLAX-GET-PROPERTY", 2, Subr::Any, getNamed},
    {"VLAX-PUT-PROPERTY", 3, Subr::Any, putNamed},
    {"VLAX-INVOKE-METHOD", 2, Subr::Any, invokeNamed},
    {"VLAX-GET", 2, Subr::Any, getPlain},
    {"VLAX-PUT", 3, Subr::Any, putPlain},
    {"VLAX-INVOKE", 2, Subr::Any, invokePlain},
    {"VLAX-FOR", 2, Subr::Any, nullptr, forEach},
    {"VLAX-MAP-COLLECTION", 2, 2, mapCollection},
    {"VLAX-DUMP-OBJECT", 1, 2, dump},
    {"VLAX-PRODUCT-KEY", 0, 0, productKey},
    {"VLAX-USER-PRODUCT-KEY", 0, 0, productKey},
    {"VLAX-MACHINE-PRODUCT-KEY", 0, 0, productKey},
    {"VLAX-TYPEINFO-AVAILABLE-P", 1, 1, typeInfo},
    {"VLAX-IMPORT-TYPE-LIBRARY", 0, Subr::Any, nothing},
};

}  // namespace

std::span<const Subr> objectFunctions() {
    return Functions;
}

void install(automation::Session& session) {
    session.findLibraryFunction = findFunction;
    lisp::World& world = session.world();
    for (const auto family : {variantFunctions, objectFunctions, curveFunctions, namedPropertyFunctions}) {
        world.define(family());
    }
    for (const Value& self : {trueSymbol(), falseSymbol(), nullValue()}) {
        world.evaluator().set(self.toSymbol(), self);
    }
}

}  // namespace drafthost::activex
