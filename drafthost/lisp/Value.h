// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A LISP value: sixteen bytes, copied freely. Lists cannot be changed once built, so no cycle can
// arise and counting references is enough; there is no collector and no pause. Lists of any length
// and depth are freed without recursion. Values belong to the main thread.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/base/Point.h"
#include "drafthost/lisp/Memory.h"
#include "drafthost/lisp/Symbol.h"

namespace drafthost::lisp {

/// Names an entity or another object of the drawing within its document; 0 names none.
using EntityName = std::uint64_t;

enum class Type : std::uint8_t {
    Nil,
    Int,
    Real,
    Symbol,
    Ename,
    Subr,
    // From here on the value points at a counted object.
    String,
    Cons,
    Usubr,
    Exsubr,
    Foreign,
    File,
    Error,
};

struct Subr;    // a built-in function (Builtins.h)
struct Usubr;   // a function written in LISP (Evaluator.h)
struct Stream;  // an open file (Stream.h)

struct Counted {
    union {
        std::uint64_t refs = 1;
        Counted* nextToFree;  ///< once the object is dying
    };
    Type type;
    explicit Counted(Type t) : type(t) {}
    static void* operator new(std::size_t size) {
        Memory::take(size);
        return ::operator new(size);
    }
    static void operator delete(void* object, std::size_t size) {
        Memory::give(size);
        ::operator delete(object, size);
    }
};

struct StringObject;
struct Cons;
struct Exsubr;
struct Foreign;
struct ErrorObject;

class Value {
  public:
    Value() = default;
    Value(const Value& other) : type_(other.type_), data_(other.data_) { retain(); }
    Value(Value&& other) noexcept : type_(other.type_), data_(other.data_) { other.type_ = Type::Nil; }
    Value& operator=(const Value& other) {
        Value copy(other);
        swap(copy);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Value() { release(); }

    static Value integer(std::int32_t i);
    static Value real(double r);
    static Value string(std::string text);
    static Value symbol(const Symbol* s);
    static Value symbol(std::string_view name) { return symbol(Symbol::intern(name)); }
    static Value truth();          ///< T
    static Value boolean(bool b);  ///< T or nil
    static Value nullSymbol();     ///< what (princ) returns; shows as nothing
    static Value ename(EntityName name);
    static Value subr(const Subr* s);
    static Value cons(Value car, Value cdr);
    static Value list(std::span<const Value> items);
    static Value list(std::initializer_list<Value> items) {
        return list(std::span<const Value>(items.begin(), items.size()));
    }
    static Value point(const Point& p);        ///< a list of three reals
    static Value point2d(double x, double y);  ///< a list of two reals
    static Value exsubr(std::string name, std::uint64_t module, int code);
    static Value error(std::string text);
    /// Takes over a counted object that was made with new.
    static Value adopt(Counted* object);

    Type type() const { return type_; }
    bool isNil() const { return type_ == Type::Nil; }
    explicit operator bool() const { return type_ != Type::Nil; }
    bool isInt() const { return type_ == Type::Int; }
    bool isReal() const { return type_ == Type::Real; }
    bool isNumber() const { return isInt() || isReal(); }
    bool isString() const { return type_ == Type::String; }
    bool isSymbol() const { return type_ == Type::Symbol; }
    bool isCons() const { return type_ == Type::Cons; }
    bool isList() const { return isNil() || isCons(); }
    bool isEname() const { return type_ == Type::Ename; }
    bool isForeign() const { return type_ == Type::Foreign; }
    bool isError() const { return type_ == Type::Error; }
    bool isFunction() const { return type_ == Type::Subr || type_ == Type::Usubr || type_ == Type::Exsubr; }
    bool isNullSymbol() const;

    // Each of these asks for a value of its type.
    std::int32_t toInt() const { return data_.integer; }
    double toReal() const { return data_.real; }
    /// Also of an integer.
    double toDouble() const { return isInt() ? data_.integer : data_.real; }
    const std::string& toString() const;
    const Symbol* toSymbol() const { return data_.symbol; }
    EntityName toEname() const { return data_.ename; }
    const Subr* toSubr() const { return data_.subr; }
    const Value& car() const;  ///< nil of nil
    const Value& cdr() const;  ///< nil of nil
    Usubr& toUsubr() const;
    const Exsubr& toExsubr() const;
    Foreign& toForeign() const;
    Stream& toStream() const;
    const std::string& errorText() const;

    Cons& cell() const { return *reinterpret_cast<Cons*>(data_.object); }

    /// Same object, or the same number or string.
    bool same(const Value& other) const;

    /// The items of a proper list, or of the list before its dotted end.
    std::vector<Value> items() const;

    void swap(Value& other) noexcept {
        std::swap(type_, other.type_);
        std::swap(data_, other.data_);
    }

  private:
    static void destroy(Counted* object);
    static void dropChild(Value& child, Counted*& waiting);
    void retain() const {
        if (type_ >= Type::String) {
            ++data_.object->refs;
        }
    }
    void release() {
        if (type_ >= Type::String && --data_.object->refs == 0) {
            destroy(data_.object);
        }
    }

    union Data {
        std::int32_t integer;
        double real;
        const lisp::Symbol* symbol;
        EntityName ename;
        const lisp::Subr* subr;
        Counted* object;
    };
    Type type_ = Type::Nil;
    Data data_{};
};

struct StringObject : Counted {
    std::string text;
    explicit StringObject(std::string t) : Counted(Type::String), text(std::move(t)) {
        Memory::take(text.capacity());
    }
    ~StringObject() { Memory::give(text.capacity()); }
};

struct Cons : Counted {
    Value car, cdr;
    Cons(Value a, Value d) : Counted(Type::Cons), car(std::move(a)), cdr(std::move(d)) {}
};

/// A function that a loaded module defined; the code is the module's own number for it.
struct Exsubr : Counted {
    std::string name;
    std::uint64_t module;
    int code;
    Exsubr(std::string n, std::uint64_t m, int c)
        : Counted(Type::Exsubr), name(std::move(n)), module(m), code(c) {}
};

/// An object that programs carry about while the language knows nothing of it: a selection set, say. What
/// its holders can do with it is a matter of the functions that take it.
struct Foreign : Counted {
    Foreign() : Counted(Type::Foreign) {}
    virtual ~Foreign() = default;
    /// The name that (type) gives.
    virtual const char* typeName() const = 0;
    /// The object as it is printed.
    virtual std::string shown() const = 0;
};

struct ErrorObject : Counted {
    std::string text;
    explicit ErrorObject(std::string t) : Counted(Type::Error), text(std::move(t)) {}
};

/// Builds a list from front to back.
class ListBuilder {
  public:
    void add(Value v);
    /// Ends the list with an atom, as a dotted pair does; call once, last.
    void setTail(Value v);
    Value take() { return std::move(head_); }
    bool empty() const { return head_.isNil(); }

  private:
    Value head_;
    Cons* last_ = nullptr;
};

inline Value Value::integer(std::int32_t i) {
    Value v;
    v.type_ = Type::Int;
    v.data_.integer = i;
    return v;
}
inline Value Value::real(double r) {
    Value v;
    v.type_ = Type::Real;
    v.data_.real = r;
    return v;
}
inline Value Value::symbol(const lisp::Symbol* s) {
    Value v;
    v.type_ = Type::Symbol;
    v.data_.symbol = s;
    return v;
}
inline Value Value::ename(EntityName name) {
    Value v;
    v.type_ = Type::Ename;
    v.data_.ename = name;
    return v;
}
inline Value Value::subr(const lisp::Subr* s) {
    Value v;
    v.type_ = Type::Subr;
    v.data_.subr = s;
    return v;
}
inline Value Value::adopt(Counted* object) {
    Value v;
    v.type_ = object->type;
    v.data_.object = object;
    return v;
}
inline Value Value::boolean(bool b) {
    return b ? truth() : Value();
}
inline const std::string& Value::toString() const {
    return static_cast<StringObject*>(data_.object)->text;
}
inline const Exsubr& Value::toExsubr() const {
    return *static_cast<Exsubr*>(data_.object);
}
inline Foreign& Value::toForeign() const {
    return *static_cast<Foreign*>(data_.object);
}
inline const std::string& Value::errorText() const {
    return static_cast<ErrorObject*>(data_.object)->text;
}

}  // namespace drafthost::lisp
