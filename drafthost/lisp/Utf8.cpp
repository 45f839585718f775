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
    static constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (!valid || c < kSmallest[more] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) {
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

namespace {

std::string fromUtf16(std::string_view bytes, bool bigEndian) {
    std::string out;
    const auto unitAt = [&](std::size_t i) -> char32_t {
        const auto a = static_cast<unsigned char>(bytes[i]);
        const auto b = static_cast<unsigned char>(bytes[i + 1]);
        return bigEndian ? (a << 8) | b : (b << 8) | a;
    };
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        char32_t c = unitAt(i);
        if (c >= 0xD800 && c < 0xDC00 && i + 3 < bytes.size()) {
            const char32_t low = unitAt(i + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            }
        }
        appendCharacter(out, c >= 0xD800 && c < 0xE000 ? 0xFFFD : c);
    }
    return out;
}

// The 27 characters that Windows 1252 has where Latin-1 has control codes.
constexpr char16_t kWindows1252[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                       0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

}  // namespace

std::string decodeFile(std::string bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        return bytes.substr(3);
    }
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        return fromUtf16(std::string_view(bytes).substr(2), bytes[0] == '\xFE');
    }
    bool valid = true;
    for (std::size_t pos = 0; valid && pos < bytes.size();) {
        const char32_t c = nextCharacter(bytes, pos);
        valid = c < 0xDC00 || c > 0xDCFF;
    }
    if (valid) {
        return bytes;
    }
    std::string out;
    for (const char byte : bytes) {
        const auto c = static_cast<unsigned char>(byte);
        appendCharacter(out, c >= 0x80 && c < 0xA0 ? kWindows1252[c - 0x80] : c);
    }
    return out;
}

}  // namespace drafthost::lisp
