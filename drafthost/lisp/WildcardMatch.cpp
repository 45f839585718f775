// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/WildcardMatch.h"

#include <unicode/uchar.h>

#include <vector>

#include "drafthost/lisp/Utf8.h"

namespace drafthost::lisp {
namespace {

// The rules promise no more than about the first 500 characters; longer ones are simply matched too.
struct Element {
    enum class Kind { Literal, Digit, Letter, Other, One, Run, Set } kind;
    char32_t literal = 0;
    bool negated = false;
    std::vector<std::pair<char32_t, char32_t>> ranges = {};
};

struct Alternative {
    bool negated = false;
    std::vector<Element> elements = {};
};

bool isBrokenByte(char32_t c) {
    return c >= 0xDC80 && c <= 0xDCFF;
}

char32_t fold(char32_t c) {
    return isBrokenByte(c) ? c
                           : static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

// A set that is never closed is no set: its "[" stands for itself.
bool readSet(const std::vector<char32_t>& p, std::size_t& i, Element& out) {
    std::size_t k = i + 1;
    out.negated = k < p.size() && p[k] == '~';
    k += out.negated ? 1 : 0;
    std::vector<char32_t> body;
    while (k < p.size() && (p[k] != ']' || body.empty())) {
        body.push_back(p[k++]);
    }
    if (k >= p.size() || body.empty()) {
        return false;
    }
    for (std::size_t b = 0; b < body.size();) {
        if (b + 2 < body.size() && body[b + 1] == '-') {
            out.ranges.emplace_back(body[b], body[b + 2]);
            b += 3;
        } else {
            out.ranges.emplace_back(body[b], body[b]);
            ++b;
        }
    }
    out.kind = Element::Kind::Set;
    i = k + 1;
    return true;
}

std::vector<Alternative> compile(std::string_view pattern) {
    using Kind = Element::Kind;
    const std::vector<char32_t> p = toCharacters(pattern);
    std::vector<Alternative> result(1);
    bool first = true;
    for (std::size_t i = 0; i < p.size();) {
        std::vector<Element>& elements = result.back().elements;
        const char32_t c = p[i];
        if (c == ',') {
            result.emplace_back();
            first = true;
            ++i;
            continue;
        }
        if (c == '~' && first) {
            result.back().negated = true;
            first = false;
            ++i;
            continue;
        }
        first = false;
        if (c == '[') {
            Element set{Kind::Set};
            if (readSet(p, i, set)) {
                elements.push_back(std::move(set));
                continue;
            }
        }
        ++i;
        switch (c) {
            case '#':
                elements.push_back({Kind::Digit});
                break;
            case '@':
                elements.push_back({Kind::Letter});
                break;
            case '.':
                elements.push_back({Kind::Other});
                break;
            case '?':
                elements.push_back({Kind::One});
                break;
            case '*':
                if (elements.empty() || elements.back().kind != Kind::Run) {
                    elements.push_back({Kind::Run});
                }
                break;
            case '`':
                elements.push_back({Kind::Literal, i < p.size() ? p[i++] : U'`'});
                break;
            default:
                elements.push_back({Kind::Literal, c});
        }
    }
    return result;
}

bool matches(const Element& e, char32_t c, bool ignoreCase) {
    using Kind = Element::Kind;
    const bool known = !isBrokenByte(c);
    switch (e.kind) {
        case Kind::Literal:
            return e.literal == c || (ignoreCase && fold(e.literal) == fold(c));
        case Kind::Digit:
            return c >= '0' && c <= '9';
        case Kind::Letter:
            return known && u_isalpha(static_cast<UChar32>(c));
        case Kind::Other:
            return !known || !u_isalnum(static_cast<UChar32>(c));
        case Kind::Set:
            for (const auto& [low, high] : e.ranges) {
                if ((c >= low && c <= high) ||
                    (ignoreCase &&
                     ((fold(c) >= fold(low) && fold(c) <= fold(high)) ||
                      (known && u_toupper(static_cast<UChar32>(c)) >= static_cast<UChar32>(low) &&
                       u_toupper(static_cast<UChar32>(c)) <= static_cast<UChar32>(high))))) {
                    return !e.negated;
                }
            }
            return e.negated;
        default:
            return true;
    }
}

// Going back only to the last "*" is enough, so the time is at most text times pattern.
bool matchesAll(const std::vector<Element>& elements, const std::vector<char32_t>& text, bool ignoreCase) {
    std::size_t e = 0;
    std::size_t t = 0;
    std::size_t retryElement = elements.size() + 1;
    std::size_t retryText = 0;
    while (t < text.size()) {
        if (e < elements.size() && elements[e].kind == Element::Kind::Run) {
            retryElement = ++e;
            retryText = t;
        } else if (e < elements.size() && matches(elements[e], text[t], ignoreCase)) {
            ++e;
            ++t;
        } else if (retryElement <= elements.size()) {
            e = retryElement;
            t = ++retryText;
        } else {
            return false;
        }
    }
    while (e < elements.size() && elements[e].kind == Element::Kind::Run) {
        ++e;
    }
    return e == elements.size();
}

}  // namespace

bool wildcardMatch(std::string_view text, std::string_view pattern, bool ignoreCase) {
    if (pattern == "*") {
        return true;
    }
    const std::vector<char32_t> characters = toCharacters(text);
    for (const Alternative& a : compile(pattern)) {
        if (matchesAll(a.elements, characters, ignoreCase) != a.negated) {
            return true;
        }
    }
    return false;
}

bool hasWildcards(std::string_view pattern) {
    return pattern.find_first_of("#@.*?~[],`") != std::string_view::npos;
}

}  // namespace drafthost::lisp
