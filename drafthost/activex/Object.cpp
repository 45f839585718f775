// SPDX-License-Identifier: GPL-3.0-or-later
#include <charconv>

#include "drafthost/activex/Groups.h"
#include "drafthost/activex/Model.h"
#include "drafthost/activex/ModelState.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/drawing/EmbeddedText.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {

Result Result::reals(const std::vector<double>& all) {
    ListBuilder list;
    for (const double r : all) {
        list.add(Value::real(r));
    }
    return {Shape::Reals, list.take()};
}

Result Result::strings(const std::vector<std::string>& all) {
    ListBuilder list;
    for (const std::string& text : all) {
        list.add(Value::string(text));
    }
    return {Shape::Strings, list.take()};
}

Drawing& Call::drawing() const {
    if (self.database == nullptr || self.database->drawing == nullptr) {
        failAutomation("The document is closed.");
    }
    return *self.database->drawing;
}

RecordId Call::id() const {
    checkUsable(self);
    return self.record;
}

void Call::changed(bool tables) const {
    if (self.database != nullptr && self.database->drawing != nullptr && self.record != NoRecord &&
        self.database->drawing->type(self.record) == "MTEXT") {
        syncEmbeddedText(*self.database->drawing, self.record);
    }
    if (self.database != nullptr && self.database->own == nullptr) {
        session().host.drawingChanged(tables);
    }
}

Value Call::object(RecordId record) const {
    return objectFor(e, self.database, record);
}

const Value& Call::arg(std::size_t i) const {
    if (!has(i)) {
        fail("ActiveX Server returned an error: Parameter not optional");
    }
    return args[i];
}
bool Call::has(std::size_t i) const {
    return i < args.size() && !args[i].same(nullValue());
}
double Call::real(std::size_t i) const {
    return realOf(arg(i));
}
std::int32_t Call::integer(std::size_t i) const {
    return integerOf(arg(i));
}
const std::string& Call::text(std::size_t i) const {
    return textOf(arg(i));
}
bool Call::boolean(std::size_t i) const {
    return booleanOf(arg(i));
}
Point Call::point(std::size_t i) const {
    return pointOf(arg(i));
}
Object& Call::objectArg(std::size_t i) const {
    Object& object = objectOf(unwrapped(arg(i)));
    checkUsable(object);
    return object;
}
void Call::put(std::size_t i, Value value) const {
    if (has(i) && args[i].isSymbol()) {
        e.set(args[i].toSymbol(), std::move(value));
    }
}

double realOf(const Value& v) {
    return coerce(VbDouble, v).toReal();
}
std::int32_t integerOf(const Value& v) {
    const Value& plain = unwrapped(v);
    if (plain.same(trueSymbol()) || plain.same(Value::truth())) {
        return 1;
    }
    return coerce(VbLong, v).toInt();
}
const std::string& textOf(const Value& v) {
    const Value& plain = unwrapped(v);
    if (!plain.isString()) {
        failMismatch();
    }
    return plain.toString();
}
bool booleanOf(const Value& v) {
    return coerce(VbBoolean, v).same(trueSymbol());
}
Point pointOf(const Value& v) {
    const std::vector<double> numbers = numbersOf(v);
    if (numbers.size() < 2 || numbers.size() > 3) {
        failMismatch();
    }
    return {numbers[0], numbers[1], numbers.size() == 3 ? numbers[2] : 0};
}
std::vector<Point> pointsOf(const Value& v, std::size_t width) {
    const std::vector<double> numbers = numbersOf(v);
    if (numbers.empty() || numbers.size() % width != 0) {
        fail("ActiveX Server returned an error: Invalid argument");
    }
    std::vector<Point> points;
    for (std::size_t i = 0; i < numbers.size(); i += width) {
        points.push_back({numbers[i], numbers[i + 1], width == 3 ? numbers[i + 2] : 0});
    }
    return points;
}

std::string Object::shown() const {
    if (released) {
        return "#<VLA-OBJECT 0>";
    }
    constexpr int Hex = 16;
    char digits[16];
    const auto number = record == NoRecord ? reinterpret_cast<std::uintptr_t>(this) & 0xffffffff
                                           : static_cast<std::uintptr_t>(record) * 16 + 0x1000;
    const auto end = std::to_chars(digits, digits + sizeof digits, number, Hex).ptr;
    return "#<VLA-OBJECT " + std::string(cls->interface) + " " + std::string(digits, end) + ">";
}

Object* findObject(const Value& value) {
    return value.isForeign() ? dynamic_cast<Object*>(&value.toForeign()) : nullptr;
}

Object& objectOf(const Value& value) {
    Object* object = findObject(value);
    if (object == nullptr) {
        fail("bad argument type: VLA-OBJECT " + lisp::prin1(value));
    }
    if (object->record != NoRecord && object->database->drawing != nullptr) {
        object->record = object->database->drawing->placeNow(object->record);
    }
    return *object;
}

bool isErased(const Object& object) {
    return object.record != NoRecord && object.database->drawing != nullptr &&
           !object.database->drawing->isAlive(object.record);
}

void checkUsable(const Object& object) {
    if (object.released) {
        fail("null interface pointer: " + object.shown());
    }
    if (isErased(object)) {
        failAutomation("Object was erased");
    }
}

ModelState& modelState(Evaluator& e) {
    automation::Session& session = automation::sessionOf(e);
    if (session.extension == nullptr) {
        auto made = std::make_unique<ModelState>();
        made->database = std::make_shared<Database>();
        session.extension = std::move(made);
    }
    auto& state = static_cast<ModelState&>(*session.extension);
    state.database->drawing = session.host.drawing();
    return state;
}

std::shared_ptr<Database> documentDatabase(Evaluator& e) {
    return modelState(e).database;
}

Value objectFor(Evaluator& e, const std::shared_ptr<Database>& database, RecordId record) {
    if (record == NoRecord) {
        return {};
    }
    Value& known = modelState(e).objects[{database.get(), record}];
    if (!known) {
        known = Value::adopt(new Object(classOf(*database->drawing, record), database, record));
    } else if (Object* object = findObject(known); !database->drawing->isAlive(record)) {
        // An erased record keeps the class that it had.
        return Value::adopt(new Object(*object->cls, database, record));
    }
    return known;
}

Value makeObject(const Class& c, std::shared_ptr<Database> database) {
    return Value::adopt(new Object(c, std::move(database), NoRecord));
}

Value singleObject(Evaluator& e, const Class& c) {
    Value& known = modelState(e).singles[&c];
    if (!known) {
        known = makeObject(c, documentDatabase(e));
    }
    return known;
}

void forgetObject(Evaluator& e, const Object& object) {
    ModelState& state = modelState(e);
    if (object.record != NoRecord) {
        state.objects.erase({object.database.get(), object.record});
        return;
    }
    std::erase_if(state.singles, [&](const auto& entry) { return findObject(entry.second) == &object; });
}

namespace {

void indexClass(const Class& c) {
    if (c.indexed) {
        return;
    }
    c.indexed = true;
    for (const auto& table : c.properties) {
        for (const Property& property : table) {
            c.propertyByName.emplace(lisp::Symbol::intern(lisp::upperCase(property.name)), &property);
        }
    }
    for (const auto& table : c.methods) {
        for (const Method& method : table) {
            c.methodByName.emplace(lisp::Symbol::intern(lisp::upperCase(method.name)), &method);
        }
    }
}

}  // namespace

const Property* Class::property(const lisp::Symbol* name) const {
    indexClass(*this);
    const auto found = propertyByName.find(name);
    return found == propertyByName.end() ? nullptr : found->second;
}

const Method* Class::method(const lisp::Symbol* name) const {
    indexClass(*this);
    const auto found = methodByName.find(name);
    return found == methodByName.end() ? nullptr : found->second;
}

Result getProperty(Call& call, const Property& property) {
    if (call.self.released) {
        checkUsable(call.self);
    }
    return property.get != nullptr ? property.get(call) : getGroup(call, property);
}

void putProperty(Call& call, const Property& property, const Value& value) {
    checkUsable(call.self);
    if (property.set != nullptr) {
        property.set(call, value);
    } else if (property.readOnly || property.access == Access::Custom) {
        fail("ActiveX Server returned the error: unknown name: " + std::string(property.name));
    } else {
        checkUnlocked(call);
        putGroup(call, property, value);
    }
}

Result callMethod(Call& call, const Method& method) {
    checkUsable(call.self);
    const auto count = static_cast<int>(call.args.size());
    if (count < method.least) {
        fail("ActiveX Server returned an error: Parameter not optional");
    }
    if (count > method.most) {
        fail("ActiveX Server returned an error: Invalid number of parameters");
    }
    return method.call(call);
}

Value modelValue(const Result& result) {
    switch (result.shape) {
        case Shape::Plain:
            return result.value;
        case Shape::Boolean:
            return result.value ? trueSymbol() : falseSymbol();
        case Shape::Point:
        case Shape::Reals:
            return makeArrayVariant(VbDouble, result.value.items());
        case Shape::Longs:
            return makeArrayVariant(VbLong, result.value.items());
        case Shape::Objects:
            return makeArrayVariant(VbObject, result.value.items());
        case Shape::Strings:
            return makeArrayVariant(VbString, result.value.items());
        case Shape::Variants: {
            std::vector<Value> items;
            for (const Value& item : result.value.items()) {
                items.push_back(item.isCons() ? makeArrayVariant(VbDouble, item.items()) : makeVariant(item));
            }
            return makeArrayVariant(VbVariant, items);
        }
        case Shape::Variant:
            return result.value.isCons() ? makeArrayVariant(VbDouble, result.value.items())
                                         : makeVariant(result.value);
    }
    return {};
}

Value plainValue(const Result& result) {
    if (result.shape == Shape::Boolean) {
        return Value::integer(result.value ? -1 : 0);
    }
    return result.value;
}

}  // namespace drafthost::activex
