// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Symbol.h"

#include <unicode/uchar.h>

#include <memory>
#include <unordered_map>
#include <vector>

#include "drafthost/lisp/Utf8.h"

namespace drafthost::lisp {
namespace {

struct Table {
    std::vector<std::unique_ptr<Symbol>> symbols;
    std::unordered_map<std::string_view, const Symbol*> byName;
};

Table& table() {
    static Table instance;
    return instance;
}

template <typename Convert>
std::string convertCase(std::string_view text, Convert convert) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        const char32_t c = nextCharacter(text, pos);
        appendCharacter(out, c >= 0xDC00 && c <= 0xDCFF ? c : convert(c));
    }
    return out;
}

}  // namespace

std::string upperCase(std::string_view utf8) {
    return convertCase(utf8, [](char32_t c) -> char32_t {
        return c < 0x80 ? (c >= 'a' && c <= 'z' ? c - 32 : c) : static_cast<char32_t>(u_toupper(c));
    });
}

std::string lowerCase(std::string_view utf8) {
    return convertCase(utf8, [](char32_t c) -> char32_t {
        return c < 0x80 ? (c >= 'A' && c <= 'Z' ? c + 32 : c) : static_cast<char32_t>(u_tolower(c));
    });
}

const Symbol* Symbol::intern(std::string_view name) {
    Table& t = table();
    std::string upper = upperCase(name);
    if (const auto found = t.byName.find(upper); found != t.byName.end()) {
        return found->second;
    }
    t.symbols.push_back(
        std::make_unique<Symbol>(std::move(upper), static_cast<std::uint32_t>(t.symbols.size())));
    const Symbol* made = t.symbols.back().get();
    t.byName.emplace(made->name(), made);
    return made;
}

std::uint32_t Symbol::count() {
    return static_cast<std::uint32_t>(table().symbols.size());
}

const Symbol* Symbol::at(std::uint32_t index) {
    return table().symbols[index].get();
}

}  // namespace drafthost::lisp
