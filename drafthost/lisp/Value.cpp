// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Value.h"

#include "drafthost/lisp/Function.h"
#include "drafthost/lisp/Stream.h"

namespace drafthost::lisp {

Value Value::string(std::string text) {
    return adopt(new StringObject(std::move(text)));
}

Value Value::truth() {
    static const lisp::Symbol* const kTruth = lisp::Symbol::intern("T");
    return symbol(kTruth);
}

Value Value::nullSymbol() {
    static const lisp::Symbol* const kNull = lisp::Symbol::intern("");
    return symbol(kNull);
}

bool Value::isNullSymbol() const {
    return isSymbol() && toSymbol()->name().empty();
}

Value Value::cons(Value car, Value cdr) {
    return adopt(new Cons(std::move(car), std::move(cdr)));
}

Value Value::list(std::span<const Value> items) {
    Value result;
    for (std::size_t i = items.size(); i-- > 0;) {
        result = cons(items[i], std::move(result));
    }
    return result;
}

Value Value::point(const Point& p) {
    return list({real(p[0]), real(p[1]), real(p[2])});
}

Value Value::point2d(double x, double y) {
    return list({real(x), real(y)});
}

Value Value::exsubr(std::string name, std::uint64_t module, int code) {
    return adopt(new Exsubr(std::move(name), module, code));
}

Value Value::error(std::string text) {
    return adopt(new ErrorObject(std::move(text)));
}

namespace {
const Value Nil;
}

const Value& Value::car() const {
    return isCons() ? static_cast<Cons*>(data_.object)->car : Nil;
}

const Value& Value::cdr() const {
    return isCons() ? static_cast<Cons*>(data_.object)->cdr : Nil;
}

Usubr& Value::toUsubr() const {
    return *static_cast<Usubr*>(data_.object);
}

Stream& Value::toStream() const {
    return *static_cast<Stream*>(data_.object);
}

bool Value::same(const Value& other) const {
    if (type_ != other.type_) {
        return false;
    }
    switch (type_) {
        case Type::Nil:
            return true;
        case Type::Int:
            return data_.integer == other.data_.integer;
        case Type::Real:
            return data_.real == other.data_.real;
        case Type::Symbol:
            return data_.symbol == other.data_.symbol;
        case Type::Ename:
            return data_.ename == other.data_.ename;
        case Type::Subr:
            return data_.subr == other.data_.subr;
        case Type::String:
            return data_.object == other.data_.object || toString() == other.toString();
        default:
            return data_.object == other.data_.object;
    }
}

std::vector<Value> Value::items() const {
    std::vector<Value> result;
    for (const Value* v = this; v->isCons(); v = &v->cdr()) {
        result.push_back(v->car());
    }
    return result;
}

void Value::dropChild(Value& child, Counted*& waiting) {
    if (child.type_ < Type::String) {
        return;
    }
    Counted* object = child.data_.object;
    child.type_ = Type::Nil;
    if (--object->refs == 0) {
        object->nextToFree = waiting;
        waiting = object;
    }
}

// Objects that die through this one are queued instead of being freed by recursion: a list a million
// deep must not end the process. The link takes the place of the dead object's count.
void Value::destroy(Counted* object) {
    Counted* waiting = object;
    object->nextToFree = nullptr;
    while (waiting != nullptr) {
        Counted* dead = waiting;
        waiting = dead->nextToFree;
        switch (dead->type) {
            case Type::Cons: {
                auto* cell = static_cast<Cons*>(dead);
                dropChild(cell->car, waiting);
                dropChild(cell->cdr, waiting);
                delete cell;
                break;
            }
            case Type::Usubr: {
                auto* function = static_cast<Usubr*>(dead);
                dropChild(function->body, waiting);
                delete function;
                break;
            }
            case Type::String:
                delete static_cast<StringObject*>(dead);
                break;
            case Type::Exsubr:
                delete static_cast<Exsubr*>(dead);
                break;
            case Type::Foreign:
                delete static_cast<Foreign*>(dead);
                break;
            case Type::File:
                delete static_cast<Stream*>(dead);
                break;
            default:
                delete static_cast<ErrorObject*>(dead);
                break;
        }
    }
}

void ListBuilder::add(Value v) {
    Value cell = Value::cons(std::move(v), Value());
    Cons* raw = &cell.cell();
    if (last_ == nullptr) {
        head_ = std::move(cell);
    } else {
        last_->cdr = std::move(cell);
    }
    last_ = raw;
}

void ListBuilder::setTail(Value v) {
    if (last_ == nullptr) {
        head_ = std::move(v);
    } else {
        last_->cdr = std::move(v);
    }
}

}  // namespace drafthost::lisp
