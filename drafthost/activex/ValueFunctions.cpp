// SPDX-License-Identifier: GPL-3.0-or-later
// The functions over variants and safe arrays.

#include "drafthost/activex/Values.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::activex {
namespace {

Variant& variantArg(const Value& v) {
    Variant* variant = variantOf(v);
    if (variant == nullptr) {
        failType("variantp", v);
    }
    return *variant;
}

/// An array, or a variant that holds one.
SafeArray& arrayArg(const Value& v) {
    SafeArray* array = arrayOf(unwrapped(v));
    if (array == nullptr) {
        failType("safearrayp", v);
    }
    return *array;
}

Value makeOne(Evaluator&, Args args) {
    const Value given = args.empty() ? Value() : args[0];
    if (args.size() < 2) {
        return makeVariant(given);
    }
    const int type = intArg(args[1]);
    if ((type & VbArray) != 0 && arrayOf(unwrapped(given)) == nullptr) {
        failNoCoercion(given);
    }
    return makeVariant(type, coerce(type, given));
}

Value variantValue(Evaluator&, Args args) {
    return variantArg(args[0]).value();
}

Value variantType(Evaluator&, Args args) {
    return Value::integer(variantArg(args[0]).type());
}

Value changeType(Evaluator&, Args args) {
    const Variant& variant = variantArg(args[0]);
    const int type = intArg(args[1]);
    const Value& v = variant.value();
    if (type == VbString && !v.isString()) {
        return v.isNumber() ? makeVariant(VbString, Value::string(lisp::princ(v))) : Value();
    }
    if (v.isString() && type != VbString) {
        char* end = nullptr;
        const double number = std::strtod(v.toString().c_str(), &end);
        const bool whole = end != v.toString().c_str() && *end == '\0';
        return whole ? makeVariant(type, coerce(type, Value::real(number))) : Value();
    }
    try {
        return makeVariant(type, coerce(type, v));
    } catch (const lisp::Failure&) {
        return {};
    }
}

Value makeSafeArray(Evaluator&, Args args) {
    const int type = intArg(args[0]);
    const bool known = (type >= VbInteger && type <= VbDouble) || type == VbString || type == VbObject ||
                       type == VbBoolean || type == VbVariant;
    if (!known) {
        fail("bad argument value: safe array type " + std::to_string(type));
    }
    constexpr std::size_t MostDimensions = 16;
    if (args.size() - 1 > MostDimensions) {
        fail("too many arguments");
    }
    std::vector<SafeArray::Bounds> bounds;
    for (const Value& pair : args.subspan(1)) {
        if (!pair.isCons()) {
            failType("consp", pair);
        }
        // (0 . 2), and (0 2) as some write it.
        const Value& high = pair.cdr().isCons() ? pair.cdr().car() : pair.cdr();
        bounds.push_back({intArg(pair.car()), intArg(high)});
    }
    return Value::adopt(new SafeArray(type, std::move(bounds)));
}

std::size_t extentOf(const SafeArray& array, std::size_t dimension) {
    const SafeArray::Bounds& b = array.bounds()[dimension];
    return b.high < b.low ? 0 : static_cast<std::size_t>(b.high - b.low) + 1;
}

void fill(SafeArray& array, std::size_t dimension, std::size_t offset, const Value& list) {
    std::size_t stride = 1;
    for (std::size_t d = dimension + 1; d < array.bounds().size(); ++d) {
        stride *= extentOf(array, d);
    }
    std::size_t i = 0;
    for (const Value& item : listArg(list).items()) {
        if (i >= extentOf(array, dimension)) {
            fail("Assertion failed: safearray-fill failed. Too many elements.");
        }
        if (dimension + 1 < array.bounds().size()) {
            fill(array, dimension + 1, offset + i * stride, item);
        } else {
            array.items()[offset + i] = coerce(array.elementType(), item);
        }
        ++i;
    }
}

Value fillArray(Evaluator&, Args args) {
    fill(arrayArg(args[0]), 0, 0, args[1]);
    return args[0];
}

Value listFrom(const SafeArray& array, std::size_t dimension, std::size_t offset) {
    std::size_t stride = 1;
    for (std::size_t d = dimension + 1; d < array.bounds().size(); ++d) {
        stride *= extentOf(array, d);
    }
    ListBuilder list;
    for (std::size_t i = 0; i < extentOf(array, dimension); ++i) {
        list.add(dimension + 1 < array.bounds().size() ? listFrom(array, dimension + 1, offset + i * stride)
                                                       : array.items()[offset + i]);
    }
    return list.take();
}

Value toList(Evaluator&, Args args) {
    const SafeArray& array = arrayArg(args[0]);
    if (array.items().empty()) {
        fail("ActiveX Server returned an error: Invalid index");
    }
    return listFrom(array, 0, 0);
}

Value& element(SafeArray& array, Args indexes) {
    if (indexes.size() != array.bounds().size()) {
        fail("Invalid index value");
    }
    std::size_t place = 0;
    for (std::size_t d = 0; d < indexes.size(); ++d) {
        const SafeArray::Bounds& b = array.bounds()[d];
        const int index = intArg(indexes[d]);
        if (index < b.low || index > b.high) {
            fail("Invalid index value");
        }
        place = place * extentOf(array, d) + static_cast<std::size_t>(index - b.low);
    }
    return array.items()[place];
}

Value getElement(Evaluator&, Args args) {
    return element(arrayArg(args[0]), args.subspan(1));
}

Value putElement(Evaluator&, Args args) {
    SafeArray& array = arrayArg(args[0]);
    element(array, args.subspan(1, args.size() - 2)) = coerce(array.elementType(), args.back());
    return args.back();
}

const SafeArray::Bounds& boundsArg(const SafeArray& array, const Value& dimension) {
    const int d = intArg(dimension);
    if (d < 1 || static_cast<std::size_t>(d) > array.bounds().size()) {
        fail("Invalid index value");
    }
    return array.bounds()[static_cast<std::size_t>(d) - 1];
}

Value lowBound(Evaluator&, Args args) {
    return Value::integer(boundsArg(arrayArg(args[0]), args[1]).low);
}
Value highBound(Evaluator&, Args args) {
    return Value::integer(boundsArg(arrayArg(args[0]), args[1]).high);
}
Value dimensions(Evaluator&, Args args) {
    return Value::integer(static_cast<std::int32_t>(arrayArg(args[0]).bounds().size()));
}
Value elementType(Evaluator&, Args args) {
    return Value::integer(arrayArg(args[0]).elementType());
}

Value point3d(Evaluator&, Args args) {
    std::vector<Value> reals;
    if (args.size() == 1) {
        for (const double number : numbersOf(args[0])) {
            reals.push_back(Value::real(number));
        }
    } else {
        for (const Value& number : args) {
            reals.push_back(Value::real(realArg(number)));
        }
    }
    if (reals.size() < 2 || reals.size() > 3) {
        failType("point", args[0]);
    }
    reals.resize(3, Value::real(0));
    return makeArrayVariant(VbDouble, reals);
}

Value matrix(Evaluator&, Args args) {
    constexpr int Rows = 4;
    auto* array = new SafeArray(VbDouble, {{0, Rows - 1}, {0, Rows - 1}});
    Value result = Value::adopt(array);
    if (listArg(args[0]).items().size() != Rows) {
        failType("matrix", args[0]);
    }
    fill(*array, 0, 0, args[0]);
    return makeVariant(VbArray + VbDouble, result);
}

constexpr Subr Functions[] = {
    {"VLAX-MAKE-VARIANT", 0, 2, makeOne},
    {"VLAX-VARIANT-VALUE", 1, 1, variantValue},
    {"VLAX-VARIANT-TYPE", 1, 1, variantType},
    {"VLAX-VARIANT-CHANGE-TYPE", 2, 2, changeType},
    {"VLAX-MAKE-SAFEARRAY", 2, Subr::Any, makeSafeArray},
    {"VLAX-SAFEARRAY-FILL", 2, 2, fillArray},
    {"VLAX-SAFEARRAY->LIST", 1, 1, toList},
    {"VLAX-SAFEARRAY-GET-ELEMENT", 2, Subr::Any, getElement},
    {"VLAX-SAFEARRAY-PUT-ELEMENT", 3, Subr::Any, putElement},
    {"VLAX-SAFEARRAY-GET-L-BOUND", 2, 2, lowBound},
    {"VLAX-SAFEARRAY-GET-U-BOUND", 2, 2, highBound},
    {"VLAX-SAFEARRAY-GET-DIM", 1, 1, dimensions},
    {"VLAX-SAFEARRAY-TYPE", 1, 1, elementType},
    {"VLAX-3D-POINT", 1, 3, point3d},
    {"VLAX-TMATRIX", 1, 1, matrix},
};

}  // namespace

std::span<const Subr> variantFunctions() {
    return Functions;
}

}  // namespace drafthost::activex
