// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Reader.h"

#include <charconv>
#include <vector>

#include "drafthost/lisp/Failure.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::lisp {
namespace {

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool endsAtom(char c) {
    return isBlank(c) || c == '(' || c == ')' || c == '\'' || c == '"' || c == ';';
}

int hexDigit(char c) {
    if (isDigit(c)) {
        return c - '0';
    }
    const char small = static_cast<char>(c | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

/// A list being read, or a quote that waits for its expression.
struct Level {
    bool quote = false;
    ListBuilder list;
    enum class Dot { None, Seen, Done } dot = Dot::None;
};

Value quoted(Value v) {
    static const Symbol* const kQuote = Symbol::intern("QUOTE");
    return Value::list({Value::symbol(kQuote), std::move(v)});
}

}  // namespace

std::optional<Value> parseNumber(std::string_view text) {
    std::size_t i = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    const std::size_t digits = i;
    while (i < text.size() && isDigit(text[i])) {
        ++i;
    }
    if (i == digits) {
        return std::nullopt;
    }
    const char* begin = text.data() + (text[0] == '+' ? 1 : 0);
    const char* end = text.data() + text.size();
    if (i == text.size()) {
        std::int32_t whole = 0;
        if (std::from_chars(begin, end, whole).ec == std::errc()) {
            return Value::integer(whole);
        }
    } else {
        if (text[i] == '.') {
            ++i;
            while (i < text.size() && isDigit(text[i])) {
                ++i;
            }
        }
        if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
            ++i;
            i += i < text.size() && (text[i] == '+' || text[i] == '-') ? 1 : 0;
            const std::size_t exponent = i;
            while (i < text.size() && isDigit(text[i])) {
                ++i;
            }
            if (i == exponent) {
                return std::nullopt;
            }
        }
        if (i != text.size()) {
            return std::nullopt;
        }
    }
    double real = 0;
    if (std::from_chars(begin, end, real).ec != std::errc()) {
        return std::nullopt;
    }
    return Value::real(real);
}

void Reader::skipBlanks() {
    while (pos_ < text_.size()) {
        if (isBlank(text_[pos_])) {
            ++pos_;
        } else if (text_[pos_] != ';') {
            return;
        } else if (text_.substr(pos_, 2) == ";|") {
            const std::size_t end = text_.find("|;", pos_ + 2);
            pos_ = end == std::string_view::npos ? text_.size() : end + 2;
        } else {
            const std::size_t end = text_.find_first_of("\r\n", pos_);
            pos_ = end == std::string_view::npos ? text_.size() : end;
        }
    }
}

char32_t Reader::readEscape() {
    const char c = text_[pos_];
    if (isDigit(c)) {
        char32_t code = 0;
        for (int i = 0; i < 3 && pos_ < text_.size() && isDigit(text_[pos_]); ++i, ++pos_) {
            if (text_[pos_] > '7') {
                fail("bad character in octal");
            }
            code = code * 8 + (text_[pos_] - '0');
        }
        return code & 0xFF;
    }
    if (c == 'U' && text_.substr(pos_, 2) == "U+" && pos_ + 6 <= text_.size()) {
        char32_t code = 0;
        for (int i = 2; i < 6; ++i) {
            const int digit = hexDigit(text_[pos_ + i]);
            if (digit < 0) {
                ++pos_;
                return 'U';
            }
            code = code * 16 + digit;
        }
        pos_ += 6;
        return code >= 0xD800 && code < 0xE000 ? 0xFFFD : code;
    }
    const char32_t raw = nextCharacter(text_, pos_);
    switch (raw) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'e':
            return 27;
        default:
            return raw;
    }
}

Value Reader::readString() {
    std::string out;
    ++pos_;
    for (;;) {
        const std::size_t stop = text_.find_first_of("\"\\", pos_);
        if (stop == std::string_view::npos) {
            fail("malformed string on input");
        }
        out.append(text_, pos_, stop - pos_);
        pos_ = stop + 1;
        if (text_[stop] == '"') {
            return Value::string(std::move(out));
        }
        if (pos_ >= text_.size()) {
            fail("malformed string on input");
        }
        appendCharacter(out, readEscape());
    }
}

Value Reader::readAtom(bool& isDot) {
    const std::size_t start = pos_;
    while (pos_ < text_.size() && !endsAtom(text_[pos_])) {
        ++pos_;
    }
    const std::string_view atom = text_.substr(start, pos_ - start);
    isDot = atom == ".";
    if (isDot) {
        return {};
    }
    if (auto number = parseNumber(atom)) {
        return std::move(*number);
    }
    if (atom.size() > 1 && atom[0] == '.' && isDigit(atom[1])) {
        fail("misplaced dot on input");
    }
    static const Symbol* const kNil = Symbol::intern("NIL");
    const Symbol* symbol = Symbol::intern(atom);
    return symbol == kNil ? Value() : Value::symbol(symbol);
}

std::optional<Value> Reader::next() {
    std::vector<Level> levels;
    for (;;) {
        skipBlanks();
        if (pos_ >= text_.size()) {
            if (!levels.empty()) {
                fail("malformed list on input");
            }
            return std::nullopt;
        }
        const char c = text_[pos_];
        Value item;
        if (c == '(' || c == '\'') {
            ++pos_;
            levels.emplace_back().quote = c == '\'';
            continue;
        }
        if (c == ')') {
            ++pos_;
            if (levels.empty() || levels.back().quote) {
                fail("extra right paren on input");
            }
            if (levels.back().dot == Level::Dot::Seen) {
                fail("misplaced dot on input");
            }
            item = levels.back().list.take();
            levels.pop_back();
        } else if (c == '"') {
            item = readString();
        } else {
            bool isDot = false;
            item = readAtom(isDot);
            if (isDot) {
                if (levels.empty() || levels.back().quote || levels.back().list.empty() ||
                    levels.back().dot != Level::Dot::None) {
                    fail("misplaced dot on input");
                }
                levels.back().dot = Level::Dot::Seen;
                continue;
            }
        }
        while (!levels.empty() && levels.back().quote) {
            item = quoted(std::move(item));
            levels.pop_back();
        }
        if (levels.empty()) {
            return item;
        }
        Level& level = levels.back();
        if (level.dot == Level::Dot::None) {
            level.list.add(std::move(item));
        } else if (level.dot == Level::Dot::Seen) {
            level.list.setTail(std::move(item));
            level.dot = Level::Dot::Done;
        } else {
            fail("misplaced dot on input");
        }
    }
}

}  // namespace drafthost::lisp
