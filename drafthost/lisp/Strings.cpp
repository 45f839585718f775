// SPDX-License-Identifier: GPL-3.0-or-later
// Strings are counted in characters, not bytes; plain ASCII text, nearly all there is, needs no decoding.

#include <algorithm>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Utf8.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::lisp {
namespace {

Value whole(std::size_t n) {
    return Value::integer(static_cast<std::int32_t>(n));
}

Value concatenate(Evaluator&, Args args) {
    std::size_t size = 0;
    for (const Value& v : args) {
        size += stringArg(v).size();
    }
    Memory::require(size);
    std::string out;
    out.reserve(size);
    for (const Value& v : args) {
        out += v.toString();
    }
    return Value::string(std::move(out));
}

Value lengthOf(Evaluator&, Args args) {
    std::size_t total = 0;
    for (const Value& v : args) {
        const std::string& s = stringArg(v);
        total += isAscii(s) ? s.size() : characterCount(s);
    }
    return whole(total);
}

Value substring(Evaluator&, Args args) {
    const std::string& s = stringArg(args[0]);
    const std::int32_t start = intArg(args[1]);
    if (start < 1) {
        failType("positive integer:", args[1]);
    }
    const std::int32_t length = args.size() == 3 ? intArg(args[2]) : std::numeric_limits<std::int32_t>::max();
    if (length < 0) {
        failType("non-negative integer:", args[2]);
    }
    if (isAscii(s)) {
        const auto from = static_cast<std::size_t>(start - 1);
        return Value::string(from >= s.size() ? std::string() : s.substr(from, length));
    }
    const std::size_t from = characterOffset(s, start - 1);
    const std::string_view rest = std::string_view(s).substr(from);
    return Value::string(std::string(rest.substr(0, characterOffset(rest, length))));
}

Value changeCase(Evaluator&, Args args) {
    const std::string& s = stringArg(args[0]);
    return Value::string(optional(args, 1) ? lowerCase(s) : upperCase(s));
}

Value firstCode(Evaluator&, Args args) {
    const std::string& s = stringArg(args[0]);
    std::size_t pos = 0;
    return Value::integer(s.empty() ? 0 : static_cast<std::int32_t>(nextCharacter(s, pos)));
}

char32_t codeArg(const Value& v) {
    const std::int32_t code = intArg(v);
    if (code < 1 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
        failType("character code:", v);
    }
    return static_cast<char32_t>(code);
}

Value character(Evaluator&, Args args) {
    std::string out;
    if (!(args[0].isInt() && args[0].toInt() == 0)) {
        appendCharacter(out, codeArg(args[0]));
    }
    return Value::string(std::move(out));
}

Value matchWildcard(Evaluator&, Args args) {
    return Value::boolean(wildcardMatch(stringArg(args[0]), stringArg(args[1])));
}

std::size_t startArg(Args args, std::size_t i, const std::string& text) {
    if (!optional(args, i)) {
        return 0;
    }
    const std::int32_t start = intArg(args[i]);
    if (start < 0) {
        failType("non-negative integer:", args[i]);
    }
    return isAscii(text) ? std::min<std::size_t>(start, text.size()) : characterOffset(text, start);
}

Value search(Evaluator&, Args args) {
    const std::string& pattern = stringArg(args[0]);
    const std::string& text = stringArg(args[1]);
    const std::size_t found = text.find(pattern, startArg(args, 2, text));
    return found == std::string::npos ? Value()
                                      : whole(characterCount(std::string_view(text).substr(0, found)));
}

Value substituteFirst(Evaluator&, Args args) {
    const std::string& fresh = stringArg(args[0]);
    const std::string& old = stringArg(args[1]);
    std::string text = stringArg(args[2]);
    const std::size_t found = text.find(old, startArg(args, 3, text));
    if (old.empty() || found == std::string::npos) {
        return args[2];
    }
    text.replace(found, old.size(), fresh);
    return Value::string(std::move(text));
}

Value translate(Evaluator&, Args args) {
    const std::vector<char32_t> from = toCharacters(stringArg(args[0]));
    const std::vector<char32_t> to = toCharacters(stringArg(args[1]));
    std::string out;
    for (const char32_t c : toCharacters(stringArg(args[2]))) {
        const auto found = std::ranges::find(from, c);
        const auto index = static_cast<std::size_t>(found - from.begin());
        appendCharacter(out, found != from.end() && !to.empty() ? to[std::min(index, to.size() - 1)] : c);
    }
    return Value::string(std::move(out));
}

Value trim(Args args, bool left, bool right) {
    const std::vector<char32_t> set = toCharacters(stringArg(args[0]));
    const std::vector<char32_t> text = toCharacters(stringArg(args[1]));
    const auto drops = [&](char32_t c) { return std::ranges::find(set, c) != set.end(); };
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (left && begin < end && drops(text[begin])) {
        ++begin;
    }
    while (right && begin < end && drops(text[end - 1])) {
        --end;
    }
    std::string out;
    for (; begin < end; ++begin) {
        appendCharacter(out, text[begin]);
    }
    return Value::string(std::move(out));
}

Value trimBoth(Evaluator&, Args args) {
    return trim(args, true, true);
}
Value trimLeft(Evaluator&, Args args) {
    return trim(args, true, false);
}
Value trimRight(Evaluator&, Args args) {
    return trim(args, false, true);
}

Value positionOfCode(Evaluator&, Args args) {
    const auto code = static_cast<char32_t>(intArg(args[0]));
    const std::vector<char32_t> text = toCharacters(stringArg(args[1]));
    const std::int32_t start = optional(args, 2) ? intArg(args[2]) : 0;
    if (start < 0) {
        failType("non-negative integer:", args[2]);
    }
    const bool fromEnd = static_cast<bool>(optional(args, 3));
    for (std::size_t k = start; k < text.size(); ++k) {
        const std::size_t i = fromEnd ? text.size() - 1 - (k - start) : k;
        if (text[i] == code) {
            return whole(i);
        }
    }
    return {};
}

Value toCodes(Evaluator&, Args args) {
    ListBuilder result;
    for (const char32_t c : toCharacters(stringArg(args[0]))) {
        result.add(Value::integer(static_cast<std::int32_t>(c)));
    }
    return result.take();
}

Value fromCodes(Evaluator&, Args args) {
    std::string out;
    for (const Value& code : listArg(args[0]).items()) {
        appendCharacter(out, codeArg(code));
    }
    return Value::string(std::move(out));
}

// Positions may be behind the end, which counts as a mismatch of nothing.
Value mismatch(Evaluator&, Args args) {
    const std::vector<char32_t> a = toCharacters(stringArg(args[0]));
    const std::vector<char32_t> b = toCharacters(stringArg(args[1]));
    const auto at = [&](std::size_t i) -> std::size_t {
        const std::int32_t start = optional(args, i) ? intArg(args[i]) : 0;
        if (start < 0) {
            failType("non-negative integer:", args[i]);
        }
        return start;
    };
    const std::size_t i = at(2);
    const std::size_t k = at(3);
    const bool ignoreCase = static_cast<bool>(optional(args, 4));
    const auto folded = [&](char32_t c) {
        std::string s;
        appendCharacter(s, c);
        return ignoreCase ? upperCase(s) : s;
    };
    std::size_t n = 0;
    while (i + n < a.size() && k + n < b.size() && folded(a[i + n]) == folded(b[k + n])) {
        ++n;
    }
    return whole(n);
}

Value princText(Evaluator&, Args args) {
    return Value::string(princ(args[0]));
}
Value prin1Text(Evaluator&, Args args) {
    return Value::string(prin1(args[0]));
}

Value characterAt(Evaluator&, Args args) {
    const std::string& s = stringArg(args[0]);
    const std::int32_t index = intArg(args[1]);
    if (index < 0 || static_cast<std::size_t>(index) >= characterCount(s)) {
        fail("bad argument value: string position out of range " + std::to_string(index));
    }
    std::size_t at = characterOffset(s, static_cast<std::size_t>(index));
    return Value::integer(static_cast<std::int32_t>(nextCharacter(s, at)));
}

constexpr Subr Functions[] = {
    {"STRCAT", 0, Subr::Any, concatenate},
    {"STRLEN", 0, Subr::Any, lengthOf},
    {"SUBSTR", 2, 3, substring},
    {"STRCASE", 1, 2, changeCase},
    {"ASCII", 1, 1, firstCode},
    {"CHR", 1, 1, character},
    {"WCMATCH", 2, 2, matchWildcard},
    {"VL-STRING-ELT", 2, 2, characterAt},
    {"VL-STRING-SEARCH", 2, 3, search},
    {"VL-STRING-SUBST", 3, 4, substituteFirst},
    {"VL-STRING-TRANSLATE", 3, 3, translate},
    {"VL-STRING-TRIM", 2, 2, trimBoth},
    {"VL-STRING-LEFT-TRIM", 2, 2, trimLeft},
    {"VL-STRING-RIGHT-TRIM", 2, 2, trimRight},
    {"VL-STRING-POSITION", 2, 4, positionOfCode},
    {"VL-STRING-MISMATCH", 2, 5, mismatch},
    {"VL-STRING->LIST", 1, 1, toCodes},
    {"VL-LIST->STRING", 1, 1, fromCodes},
    {"VL-PRINC-TO-STRING", 1, 1, princText},
    {"VL-PRIN1-TO-STRING", 1, 1, prin1Text},
};

}  // namespace

std::span<const Subr> stringFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp
