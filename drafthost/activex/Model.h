// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The object model: objects that stand for the host, its drawing and everything in it, and the classes that
// say which properties and methods each has. An object of the drawing is no copy but a record and a class;
// whatever is asked of it is read from the record's tags at that moment.

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "drafthost/activex/Values.h"
#include "drafthost/automation/Session.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::activex {

class Object;
struct Class;

/// A drawing that objects belong to: the document's own, or one that a program has opened beside it.
struct Database {
    Drawing* drawing = nullptr;
    /// Holds the drawing when it is not the document's.
    std::unique_ptr<Drawing> own;
    std::string path;  ///< of an own one; empty while it has no file
    bool readOnly = false;
};

/// How a value goes out: through vla- and vlax-get-property as the types of the model, through vlax-get and
/// vlax-invoke as plain lists and numbers.
enum class Shape {
    Plain,     ///< number, string, object or nil
    Boolean,   ///< T or nil
    Point,     ///< list of reals: a variant of doubles
    Reals,     ///< likewise, of any length
    Longs,     ///< list of integers
    Objects,   ///< list of objects
    Strings,   ///< list of strings
    Variants,  ///< list of anything: a variant of variants
    Variant,   ///< number, string or point that the model hands out in a variant
};

struct Result {
    Shape shape = Shape::Plain;
    Value value;

    Result() = default;
    Result(Value v) : value(std::move(v)) {}
    Result(Shape s, Value v) : shape(s), value(std::move(v)) {}

    static Result real(double r) { return Value::real(r); }
    static Result integer(std::int64_t i) { return Value::integer(static_cast<std::int32_t>(i)); }
    static Result text(std::string t) { return Value::string(std::move(t)); }
    static Result boolean(bool b) { return {Shape::Boolean, Value::boolean(b)}; }
    static Result point(const Point& p) { return {Shape::Point, Value::point(p)}; }
    static Result objects(const std::vector<Value>& all) { return {Shape::Objects, Value::list(all)}; }
    static Result reals(const std::vector<double>& all);
    static Result strings(const std::vector<std::string>& all);
};

/// One use of a property or method.
struct Call {
    Evaluator& e;
    Object& self;
    Args args;  ///< the indexes of a property, or the arguments of a method

    automation::Session& session() const { return automation::sessionOf(e); }
    Drawing& drawing() const;
    RecordId id() const;
    Record record() const { return drawing().record(id()); }
    /// Something of the drawing was changed.
    void changed(bool tables = false) const;
    /// An object of the same drawing.
    Value object(RecordId record) const;

    const Value& arg(std::size_t i) const;
    bool has(std::size_t i) const;
    double real(std::size_t i) const;
    std::int32_t integer(std::size_t i) const;
    const std::string& text(std::size_t i) const;
    bool boolean(std::size_t i) const;
    Point point(std::size_t i) const;
    Object& objectArg(std::size_t i) const;
    /// Sets the variable that a quoted symbol names.
    void put(std::size_t i, Value value) const;
};

double realOf(const Value& v);
std::int32_t integerOf(const Value& v);
const std::string& textOf(const Value& v);
bool booleanOf(const Value& v);
Point pointOf(const Value& v);
std::vector<Point> pointsOf(const Value& v, std::size_t width);

/// Where a property's value stands.
enum class Access {
    Custom,
    Real,
    Integer,
    Text,
    Angle,     ///< degrees in the file, radians for programs
    Point,     ///< world coordinates
    OcsPoint,  ///< in the entity's own system in the file, in world coordinates for programs
    Flag,      ///< the bit of a number
    NotFlag,
    Bool,  ///< a number that is 0 or not
};

struct Property {
    const char* name;
    Access access = Access::Custom;
    int code = 0;
    double initial = 0;  ///< what holds where the group is left out; for flags the bit
    Result (*get)(Call&) = nullptr;
    void (*set)(Call&, const Value&) = nullptr;
    bool readOnly = false;
    const char* text = "";      ///< what holds for a text that is left out
    const char* subclass = "";  ///< the marker behind which the group stands, where another has it too
};

struct Method {
    const char* name;
    int least;
    int most;
    Result (*call)(Call&);
};

struct Class {
    const char* interface;   ///< "IAcadLine"
    const char* objectName;  ///< "AcDbLine"; empty for what is no object of a drawing
    std::vector<std::span<const Property>> properties;
    std::vector<std::span<const Method>> methods;
    /// The members of a collection.
    std::vector<Value> (*members)(Call&) = nullptr;
    /// The member of that name, nil when there is none; nullptr: the members are asked for their names.
    Value (*named)(Call&, const std::string&) = nullptr;

    const Property* property(const lisp::Symbol* name) const;
    const Method* method(const lisp::Symbol* name) const;

    /// Made on first use.
    mutable std::unordered_map<const lisp::Symbol*, const Property*> propertyByName{};
    mutable std::unordered_map<const lisp::Symbol*, const Method*> methodByName{};
    mutable bool indexed = false;
};

class Object final : public lisp::Foreign {
  public:
    Object(const Class& c, std::shared_ptr<Database> database, RecordId record)
        : cls(&c), database(std::move(database)), record(record) {}
    const char* typeName() const override { return "VLA-OBJECT"; }
    std::string shown() const override;

    const Class* cls;
    std::shared_ptr<Database> database;
    RecordId record = NoRecord;
    /// What an object that is no record is about: the name of a set, the kind of preferences.
    std::string name;
    /// What such an object keeps: a colour's parts, preferences, the members of a set.
    std::unordered_map<std::string, Value> kept;
    bool released = false;
};

/// The object in a value; fails with "bad argument type: VLA-OBJECT …".
Object& objectOf(const Value& value);
/// The same; nullptr when the value holds none.
Object* findObject(const Value& value);
/// Fails unless the object can be used: not released, not erased.
void checkUsable(const Object& object);
bool isErased(const Object& object);

/// The object for a record of a drawing: always the same one.
Value objectFor(Evaluator& e, const std::shared_ptr<Database>& database, RecordId record);
/// An object that is no record.
Value makeObject(const Class& c, std::shared_ptr<Database> database);
/// One of which a document has only one: found again by its class.
Value singleObject(Evaluator& e, const Class& c);
std::shared_ptr<Database> documentDatabase(Evaluator& e);
/// Forgets an object that was released.
void forgetObject(Evaluator& e, const Object& object);

/// The class of a record.
const Class& classOf(const Drawing& drawing, RecordId record);

/// A property's value, or what a method gives.
Result getProperty(Call& call, const Property& property);
void putProperty(Call& call, const Property& property, const Value& value);
Result callMethod(Call& call, const Method& method);

/// As the types of the model, and as plain lists.
Value modelValue(const Result& result);
Value plainValue(const Result& result);

}  // namespace drafthost::activex
