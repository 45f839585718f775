// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Arguments.h"

#include "drafthost/lisp/Printer.h"

namespace drafthost::lisp {

void fail(std::string text) {
    throw Failure{.text = std::move(text)};
}

void failType(std::string_view expected, const Value& got) {
    fail("bad argument type: " + std::string(expected) + " " + prin1(got));
}

std::optional<Point> toPoint(const Value& v) {
    Point p{0, 0, 0};
    std::size_t count = 0;
    const Value* rest = &v;
    for (; rest->isCons(); rest = &rest->cdr()) {
        if (count == 3 || !rest->car().isNumber()) {
            return std::nullopt;
        }
        p[count++] = rest->car().toDouble();
    }
    if (count < 2 || !rest->isNil()) {
        return std::nullopt;
    }
    return p;
}

Point pointArg(const Value& v) {
    const auto p = toPoint(v);
    if (!p) {
        failType("2D/3D point:", v);
    }
    return *p;
}

std::string nameArg(const Value& v) {
    return v.isSymbol() ? v.toSymbol()->name() : stringArg(v);
}

}  // namespace drafthost::lisp
