// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The values of the object model that LISP itself lacks: variants and safe arrays.

#include <cstdint>
#include <vector>

#include "drafthost/automation/Lisp.h"

namespace drafthost::activex {

using automation::Args;
using automation::Evaluator;
using automation::ListBuilder;
using automation::Subr;
using automation::Value;

using automation::fail;
using automation::failType;
using automation::intArg;
using automation::listArg;
using automation::optional;
using automation::realArg;
using automation::stringArg;

/// What a variant or the elements of an array hold, numbered as vlax-vb… are.
enum VariantType {
    VbEmpty = 0,
    VbNull = 1,
    VbInteger = 2,
    VbLong = 3,
    VbSingle = 4,
    VbDouble = 5,
    VbString = 8,
    VbObject = 9,
    VbBoolean = 11,
    VbVariant = 12,
    VbArray = 8192,
};

class Variant final : public lisp::Foreign {
  public:
    Variant(int type, Value value) : type_(type), value_(std::move(value)) {}
    int type() const { return type_; }
    /// An array in it is a SafeArray.
    const Value& value() const { return value_; }

    const char* typeName() const override { return "VARIANT"; }
    std::string shown() const override;

  private:
    int type_;
    Value value_;
};

class SafeArray final : public lisp::Foreign {
  public:
    struct Bounds {
        int low = 0;
        int high = -1;
    };
    SafeArray(int elementType, std::vector<Bounds> bounds);
    int elementType() const { return elementType_; }
    const std::vector<Bounds>& bounds() const { return bounds_; }
    std::vector<Value>& items() { return items_; }
    const std::vector<Value>& items() const { return items_; }

    const char* typeName() const override { return "SAFEARRAY"; }
    std::string shown() const override { return "#<safearray...>"; }

  private:
    int elementType_;
    std::vector<Bounds> bounds_;
    std::vector<Value> items_;  ///< the last index runs fastest
};

Value makeVariant(int type, Value value);
/// A variant of the type that the value has by itself; fails for lists and symbols.
Value makeVariant(const Value& value);
/// An array of one dimension from 0, its elements converted.
Value makeArray(int elementType, const std::vector<Value>& items);
/// The same in a variant.
Value makeArrayVariant(int elementType, const std::vector<Value>& items);

/// The variant or array in a value, nullptr when it is none.
Variant* variantOf(const Value& value);
SafeArray* arrayOf(const Value& value);

/// The symbols that stand for truth and for nothing.
Value trueSymbol();
Value falseSymbol();
Value nullValue();

/// The value converted to what a type holds; fails with a type mismatch.
Value coerce(int type, const Value& value);
/// What is in a variant, or the value itself.
const Value& unwrapped(const Value& value);
/// The items of an array, of an array in a variant, or of a list; nested lists are kept.
std::vector<Value> itemsOf(const Value& value);
/// The same, as numbers, lists in lists laid flat. Fails with a type mismatch for anything else.
std::vector<double> numbersOf(const Value& value);

/// "ActiveX Server returned an error: Type mismatch".
[[noreturn]] void failMismatch();
/// "Automation Error. …".
[[noreturn]] void failAutomation(std::string_view text);
[[noreturn]] void failNoCoercion(const Value& value);

std::span<const Subr> variantFunctions();

}  // namespace drafthost::activex
