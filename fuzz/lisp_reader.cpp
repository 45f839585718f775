// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as LISP text: they must read or fail cleanly, what was read must show and read again as the
// same, and the scanner that gathers lines must agree with the reader about what is complete.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "drafthost/lisp/Compare.h"
#include "drafthost/lisp/Failure.h"
#include "drafthost/lisp/FileText.h"
#include "drafthost/lisp/FormScanner.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Reader.h"

using namespace drafthost::lisp;

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// Reals are shown rounded and symbols may be spelled like nothing that reads back, so only what holds
/// strings, integers and lists is compared.
bool isExact(const Value& value) {
    for (const Value* rest = &value; !rest->isNil(); rest = &rest->cdr()) {
        const Value& item = rest->isCons() ? rest->car() : *rest;
        if (!item.isNil() && !item.isInt() && !item.isString()) {
            return false;
        }
        if (!rest->isCons()) {
            return true;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = decodeFile(std::string(reinterpret_cast<const char*>(data), size));
    try {
        Reader reader(text);
        while (const auto form = reader.next()) {
            const std::string shown = prin1(*form);
            if (isExact(*form)) {
                Reader again(shown);
                const auto copy = again.next();
                require(copy.has_value() && equalValues(*form, *copy));
                require(!form->isCons() || FormScanner().feed(shown) == shown.size());
            }
        }
    } catch (const Failure& failure) {
        require(!failure.text.empty());
    }
    FormScanner whole;
    FormScanner pieces;
    const auto end = whole.feed(text);
    std::size_t pos = 0;
    while (pos < text.size()) {
        const auto stop = pieces.feed(std::string_view(text).substr(pos, 1));
        if (stop) {
            pos += *stop;
            break;
        }
        ++pos;
    }
    require(!end || *end == pos);
    return 0;
}
