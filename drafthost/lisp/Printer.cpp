// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Printer.h"

#include <cmath>
#include <cstdio>

#include "drafthost/lisp/Function.h"
#include "drafthost/lisp/Stream.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::lisp {
namespace {

std::string hex(std::uint64_t n) {
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "%llx", static_cast<unsigned long long>(n));
    return buffer;
}

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (std::size_t pos = 0; pos < text.size();) {
        const char32_t c = nextCharacter(text, pos);
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            case 27:
                out += "\\e";
                break;
            default:
                if (c < 32 || c == 127) {
                    char buffer[8];
                    std::snprintf(buffer, sizeof buffer, "\\%03o", static_cast<unsigned>(c));
                    out += buffer;
                } else {
                    appendCharacter(out, c);
                }
        }
    }
    return out + '"';
}

void appendAtom(std::string& out, const Value& v, bool quote) {
    switch (v.type()) {
        case Type::Nil:
            out += "nil";
            break;
        case Type::Int:
            out += std::to_string(v.toInt());
            break;
        case Type::Real:
            out += formatReal(v.toReal());
            break;
        case Type::Symbol:
            out += v.toSymbol()->name();
            break;
        case Type::String:
            out += quote ? quoted(v.toString()) : v.toString();
            break;
        case Type::Ename:
            out += "<Entity name: " + hex(v.toEname()) + ">";
            break;
        case Type::Subr:
            out +=
                "#<SUBR @" + hex(reinterpret_cast<std::uintptr_t>(v.toSubr())) + " " + v.toSubr()->name + ">";
            break;
        case Type::Usubr: {
            const Usubr& f = v.toUsubr();
            out += "#<USUBR @" + hex(reinterpret_cast<std::uintptr_t>(&f)) + " " +
                   (f.name.empty() ? "-lambda-" : f.name) + ">";
            break;
        }
        case Type::Exsubr:
            out += "#<EXRXSUBR @" + hex(reinterpret_cast<std::uintptr_t>(&v.toExsubr())) + " " +
                   v.toExsubr().name + ">";
            break;
        case Type::Foreign:
            out += v.toForeign().shown();
            break;
        case Type::File:
            out += "#<file \"" + v.toStream().path + "\">";
            break;
        case Type::Error:
            out += "#<%catch-all-apply-error%>";
            break;
        case Type::Cons:
            break;
    }
}

// Lists are walked with a stack of our own: depth is the user's to choose.
std::string show(const Value& value, bool quote) {
    std::string out;
    std::vector<const Value*> rest;
    const Value* current = &value;
    std::size_t checkAt = std::size_t{1} << 20;
    for (;;) {
        if (out.size() >= checkAt) {
            Memory::require(out.size());
            checkAt = 2 * out.size();
        }
        while (current->isCons()) {
            out += '(';
            rest.push_back(&current->cdr());
            current = &current->car();
        }
        appendAtom(out, *current, quote);
        for (;;) {
            if (rest.empty()) {
                return out;
            }
            const Value* tail = rest.back();
            if (tail->isCons()) {
                out += ' ';
                rest.back() = &tail->cdr();
                current = &tail->car();
                break;
            }
            if (!tail->isNil()) {
                out += " . ";
                appendAtom(out, *tail, quote);
            }
            out += ')';
            rest.pop_back();
        }
    }
}

}  // namespace

std::string prin1(const Value& value) {
    return show(value, true);
}

std::string princ(const Value& value) {
    return show(value, false);
}

std::string formatReal(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.6g", value);
    std::string text = buffer;
    const std::size_t exponent = text.find('e');
    if (text.find('.') == std::string::npos) {
        text.insert(exponent == std::string::npos ? text.size() : exponent, ".0");
    }
    return text == "-0.0" ? "0.0" : text;
}

}  // namespace drafthost::lisp
