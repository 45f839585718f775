// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Utf8.h"

#include <algorithm>

namespace drafthost::lisp {

char32_t nextCharacter(std::string_view text, std::size_t& pos) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byteAt(pos);
    if (first < 0x80) {
        ++pos;
        return first;
    }
    const int more = first >= 0xF0 && first < 0xF5 ? 3 : first >= 0xE0 ? 2 : 1;
    char32_t c = first & (0x3F >> more);
    bool valid = first >= 0xC2 && first < 0xF5 && text.size() - pos > static_cast<std::size_t>(more);
    for (int i = 1; valid && i <= more; ++i) {
        const unsigned char next = byteAt(pos + i);
        valid = (next & 0xC0) == 0x80;
        c = (c << 6) | (next & 0x3F);
    }
    static constexpr char32_t Smallest[] = {0, 0x80, 0x800, 0x10000};
    if (!valid || c < Smallest[more] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) {
        ++pos;
        return 0xDC00 + first;
    }
    pos += more + 1;
    return c;
}

void appendCharacter(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c >= 0xDC80 && c <= 0xDCFF) {
        out += static_cast<char>(c - 0xDC00);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | ((c >> 18) & 0x07));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

bool isAscii(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t pos = 0; pos < text.size(); ++count) {
        nextCharacter(text, pos);
    }
    return count;
}

std::size_t characterOffset(std::string_view text, std::size_t index) {
    std::size_t pos = 0;
    while (index > 0 && pos < text.size()) {
        nextCharacter(text, pos);
        --index;
    }
    return pos;
}

std::vector<char32_t> toCharacters(std::string_view text) {
    std::vector<char32_t> result;
    result.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        result.push_back(nextCharacter(text, pos));
    }
    return result;
}

}  // namespace drafthost::lisp
