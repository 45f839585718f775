// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/activex/Values.h"

#include <cmath>

#include "drafthost/lisp/Printer.h"

namespace drafthost::activex {
namespace {

constexpr std::int32_t LargestShort = 32767;

Value zeroOf(int type) {
    switch (type) {
        case VbInteger:
        case VbLong:
            return Value::integer(0);
        case VbSingle:
        case VbDouble:
            return Value::real(0);
        case VbString:
            return Value::string("");
        case VbBoolean:
            return falseSymbol();
        case VbVariant:
            return makeVariant(VbEmpty, {});
        default:
            return {};
    }
}

bool isTrue(const Value& v) {
    if (v.isNumber()) {
        return v.toDouble() != 0;
    }
    return v && !v.same(falseSymbol());
}

bool isLogical(const Value& v) {
    return v.isNil() || v.same(Value::truth()) || v.same(trueSymbol()) || v.same(falseSymbol());
}

}  // namespace

std::string Variant::shown() const {
    const std::string held = (type_ & VbArray) != 0 ? "..." : lisp::prin1(value_);
    return "#<variant " + std::to_string(type_) + " " + held + ">";
}

SafeArray::SafeArray(int elementType, std::vector<Bounds> bounds)
    : elementType_(elementType), bounds_(std::move(bounds)) {
    constexpr std::size_t Most = std::size_t{1} << 26;
    std::size_t count = 1;
    for (const Bounds& b : bounds_) {
        count *= static_cast<std::size_t>(std::max(0, b.high - b.low + 1));
        if (count > Most) {
            fail("insufficient memory");
        }
    }
    items_.assign(count, zeroOf(elementType));
}

Value makeVariant(int type, Value value) {
    return Value::adopt(new Variant(type, std::move(value)));
}

Value makeVariant(const Value& v) {
    if (variantOf(v) != nullptr) {
        return v;
    }
    if (const SafeArray* array = arrayOf(v)) {
        return makeVariant(VbArray + array->elementType(), v);
    }
    if (v.isNil()) {
        return makeVariant(VbEmpty, {});
    }
    if (v.same(nullValue())) {
        return makeVariant(VbNull, {});
    }
    if (v.same(trueSymbol()) || v.same(falseSymbol())) {
        return makeVariant(VbBoolean, v);
    }
    if (v.isInt()) {
        return makeVariant(VbLong, v);
    }
    if (v.isReal()) {
        return makeVariant(VbDouble, v);
    }
    if (v.isString()) {
        return makeVariant(VbString, v);
    }
    if (v.isForeign()) {
        return makeVariant(VbObject, v);
    }
    failNoCoercion(v);
}

Value makeArray(int elementType, const std::vector<Value>& items) {
    auto* made = new SafeArray(elementType, {{0, static_cast<int>(items.size()) - 1}});
    Value result = Value::adopt(made);
    for (std::size_t i = 0; i < items.size(); ++i) {
        made->items()[i] = coerce(elementType, items[i]);
    }
    return result;
}

Value makeArrayVariant(int elementType, const std::vector<Value>& items) {
    return makeVariant(VbArray + elementType, makeArray(elementType, items));
}

Variant* variantOf(const Value& value) {
    return value.isForeign() ? dynamic_cast<Variant*>(&value.toForeign()) : nullptr;
}

SafeArray* arrayOf(const Value& value) {
    return value.isForeign() ? dynamic_cast<SafeArray*>(&value.toForeign()) : nullptr;
}

Value trueSymbol() {
    static const Value kTrue = Value::symbol(":VLAX-TRUE");
    return kTrue;
}
Value falseSymbol() {
    static const Value kFalse = Value::symbol(":VLAX-FALSE");
    return kFalse;
}
Value nullValue() {
    static const Value kNull = Value::symbol(":VLAX-NULL");
    return kNull;
}

Value coerce(int type, const Value& given) {
    if (type == VbVariant) {
        return variantOf(given) != nullptr ? given : makeVariant(given);
    }
    const Value& v = unwrapped(given);
    switch (type) {
        case VbEmpty:
        case VbNull:
            return {};
        case VbInteger:
        case VbLong: {
            if (isLogical(v) && !v.isNil()) {
                return Value::integer(isTrue(v) ? -1 : 0);
            }
            if (!v.isNumber()) {
                break;
            }
            const double number = v.isInt() ? v.toInt() : std::nearbyint(v.toReal());
            if (type == VbInteger && std::abs(number) > LargestShort + 1.0) {
                fail("ActiveX Server returned an error: Overflow");
            }
            return v.isInt() ? v : Value::integer(static_cast<std::int32_t>(number));
        }
        case VbSingle:
            if (v.isNumber()) {
                return Value::real(static_cast<double>(static_cast<float>(v.toDouble())));
            }
            break;
        case VbDouble:
            if (v.isNumber()) {
                return Value::real(v.toDouble());
            }
            break;
        case VbString:
            if (v.isString()) {
                return v;
            }
            break;
        case VbBoolean:
            if (v.isNumber() || isLogical(v)) {
                return isTrue(v) ? trueSymbol() : falseSymbol();
            }
            break;
        case VbObject:
            if (v.isForeign() || v.isNil()) {
                return v;
            }
            break;
        default:
            if (type >= VbArray && arrayOf(v) != nullptr) {
                return v;
            }
            break;
    }
    failMismatch();
}

const Value& unwrapped(const Value& value) {
    const Variant* variant = variantOf(value);
    return variant != nullptr ? variant->value() : value;
}

std::vector<Value> itemsOf(const Value& given) {
    const Value& v = unwrapped(given);
    if (const SafeArray* array = arrayOf(v)) {
        return array->items();
    }
    if (v.isList()) {
        return v.items();
    }
    failMismatch();
}

std::vector<double> numbersOf(const Value& given) {
    std::vector<double> numbers;
    for (const Value& item : itemsOf(given)) {
        const Value& v = unwrapped(item);
        if (v.isNumber()) {
            numbers.push_back(v.toDouble());
        } else {
            const std::vector<double> inner = numbersOf(v);
            numbers.insert(numbers.end(), inner.begin(), inner.end());
        }
    }
    return numbers;
}

void failMismatch() {
    fail("ActiveX Server returned an error: Type mismatch");
}
void failAutomation(std::string_view text) {
    fail("Automation Error. " + std::string(text));
}
void failNoCoercion(const Value& value) {
    fail("lisp value has no coercion to VARIANT with this type:  " + lisp::prin1(value));
}

}  // namespace drafthost::activex
