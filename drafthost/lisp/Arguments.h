// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Checks and fetches the arguments of built-in functions, each with the host's own error text.

#include <optional>
#include <string>

#include "drafthost/lisp/Failure.h"
#include "drafthost/lisp/Function.h"

namespace drafthost::lisp {

inline const Value& needNumber(const Value& v) {
    if (!v.isNumber()) {
        failType("numberp:", v);
    }
    return v;
}
inline double realArg(const Value& v) {
    return needNumber(v).toDouble();
}
inline std::int32_t intArg(const Value& v) {
    if (!v.isInt()) {
        failType("fixnump:", v);
    }
    return v.toInt();
}
inline const std::string& stringArg(const Value& v) {
    if (!v.isString()) {
        failType("stringp", v);
    }
    return v.toString();
}
inline const Symbol* symbolArg(const Value& v) {
    if (!v.isSymbol()) {
        failType("symbolp", v);
    }
    return v.toSymbol();
}
inline const Value& listArg(const Value& v) {
    if (!v.isList()) {
        failType("listp", v);
    }
    return v;
}
inline EntityName enameArg(const Value& v) {
    if (!v.isEname()) {
        failType("lentityp", v);
    }
    return v.toEname();
}
/// The argument with that index, nil when it was left out.
inline const Value& optional(Args args, std::size_t i) {
    static const Value kNil;
    return i < args.size() ? args[i] : kNil;
}
/// A list of two or three numbers; a missing height is 0.
std::optional<Point> toPoint(const Value& v);
Point pointArg(const Value& v);
/// Name of a variable, table or the like: a string or a symbol.
std::string nameArg(const Value& v);

}  // namespace drafthost::lisp
