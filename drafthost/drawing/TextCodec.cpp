// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/TextCodec.h"

#include <iconv.h>
#include <unicode/ucnv.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>
#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace drafthost {

namespace {

constexpr char32_t Replacement = 0xFFFD;

// One code page. ICU knows all of them but Johab (1361), which the C library converts.
class Page {
  public:
    explicit Page(std::string name) : name_(std::move(name)) {}
    ~Page() {
        if (icu_ != nullptr) {
            ucnv_close(icu_);
        }
        close(in_);
        close(out_);
    }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    std::u32string decode(std::string_view bytes) {
        open();
        std::u32string result;
        if (icu_ == nullptr) {
            decodeByLibrary(bytes, result);
            return result;
        }
        ucnv_resetToUnicode(icu_);
        const char* source = bytes.data();
        const char* const end = source + bytes.size();
        while (source < end) {
            UErrorCode status = U_ZERO_ERROR;
            const char* const before = source;
            const UChar32 c = ucnv_getNextUChar(icu_, &source, end, &status);
            if (status == U_INDEX_OUTOFBOUNDS_ERROR) {
                break;
            }
            if (U_FAILURE(status)) {
                result += Replacement;
                source = std::max(source, before + 1);
            } else {
                result += static_cast<char32_t>(c);
            }
        }
        return result;
    }

    /// False when the page lacks the character.
    bool encode(char32_t c, std::string& bytes) {
        open();
        std::array<char, 8> buffer;
        if (icu_ == nullptr) {
            char* in = reinterpret_cast<char*>(&c);
            char* out = buffer.data();
            std::size_t left = sizeof c;
            std::size_t room = buffer.size();
            if (!isOpen(out_) || iconv(out_, &in, &left, &out, &room) != 0) {
                iconv(out_, nullptr, nullptr, nullptr, nullptr);
                return false;
            }
            bytes.append(buffer.data(), out);
            return true;
        }
        std::array<UChar, 2> text;
        int32_t length = 0;
        U16_APPEND_UNSAFE(text, length, c);
        UErrorCode status = U_ZERO_ERROR;
        const int32_t count =
            ucnv_fromUChars(icu_, buffer.data(), buffer.size(), text.data(), length, &status);
        if (U_FAILURE(status)) {
            return false;
        }
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
        return true;
    }

  private:
    void open() {
        if (opened_) {
            return;
        }
        opened_ = true;
        if (name_ == "JOHAB") {
            in_ = iconv_open("UTF-32LE", "JOHAB");
            out_ = iconv_open("JOHAB", "UTF-32LE");
            return;
        }
        UErrorCode status = U_ZERO_ERROR;
        icu_ = ucnv_open(name_.c_str(), &status);
        if (U_FAILURE(status)) {
            status = U_ZERO_ERROR;
            icu_ = ucnv_open("windows-1252", &status);
        }
        status = U_ZERO_ERROR;
        ucnv_setFromUCallBack(icu_, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        ucnv_setToUCallBack(icu_, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }

    void decodeByLibrary(std::string_view bytes, std::u32string& result) {
        if (!isOpen(in_)) {
            result.append(bytes.size(), Replacement);
            return;
        }
        iconv(in_, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(bytes.data());
        std::size_t left = bytes.size();
        while (left > 0) {
            char32_t c = 0;
            char* out = reinterpret_cast<char*>(&c);
            std::size_t room = sizeof c;
            // A full output buffer after one character is the normal case here.
            iconv(in_, &in, &left, &out, &room);
            if (room == 0) {
                result += c;
            } else {
                result += Replacement;
                if (left > 0) {
                    ++in;
                    --left;
                }
            }
        }
    }

    // The library's own mark for a converter that it does not have is -1.
    static bool isOpen(iconv_t converter) {
        return converter != nullptr && reinterpret_cast<std::intptr_t>(converter) != -1;
    }

    static void close(iconv_t converter) {
        if (isOpen(converter)) {
            iconv_close(converter);
        }
    }

    std::string name_;
    bool opened_ = false;
    UConverter* icu_ = nullptr;
    iconv_t in_ = nullptr;
    iconv_t out_ = nullptr;
};

// Converter's name for a value of $DWGCODEPAGE.
std::string pageName(std::string_view codePage) {
    std::string name;
    for (const char c : codePage) {
        if (c != ' ') {
            name += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        }
    }
    const auto number = [&](std::string_view prefix) {
        return name.starts_with(prefix) ? name.substr(prefix.size()) : std::string();
    };
    std::string page = number("ansi_");
    if (page.empty()) {
        page = number("dos");
        const bool doubleByte =
            page == "932" || page == "936" || page == "949" || page == "950" || page == "1361";
        if (!page.empty() && !doubleByte) {
            return "ibm-" + page;
        }
    }
    if (page == "1361" || name == "johab") {
        return "JOHAB";
    }
    if (!page.empty()) {
        return "windows-" + page;
    }
    static constexpr std::pair<std::string_view, std::string_view> Names[] = {
        {"mac-roman", "macintosh"}, {"gb2312", "windows-936"},   {"ksc5601", "windows-949"},
        {"big5", "windows-950"},    {"utf-8", "UTF-8"},          {"utf8", "UTF-8"},
        {"gbk", "windows-936"},     {"shift_jis", "windows-932"}};
    for (const auto& [known, converter] : Names) {
        if (name == known) {
            return std::string(converter);
        }
    }
    if (std::string part = number("iso8859-"); !part.empty()) {
        return "ISO-8859-" + part;
    }
    return "windows-1252";
}

// Pages of the digit in \M+nXXXX.
constexpr std::array<std::string_view, 5> EscapePages = {"windows-932", "windows-950", "windows-949", "JOHAB",
                                                         "windows-936"};

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isUtf8(std::string_view bytes) {
    const auto length = static_cast<int32_t>(bytes.size());
    for (int32_t i = 0; i < length;) {
        UChar32 c = 0;
        U8_NEXT(bytes.data(), i, length, c);
        if (c < 0) {
            return false;
        }
    }
    return true;
}

void appendUtf8(std::string& text, char32_t c) {
    if (U_IS_SURROGATE(c) || c > 0x10FFFF) {
        c = Replacement;
    }
    std::array<char, 4> buffer;
    int32_t length = 0;
    U8_APPEND_UNSAFE(buffer, length, c);
    text.append(buffer.data(), static_cast<std::size_t>(length));
}

// Value of `count` hexadecimal digits at `from`, or -1.
int hexAt(std::string_view text, std::size_t from, std::size_t count) {
    if (from + count > text.size()) {
        return -1;
    }
    int value = 0;
    for (std::size_t i = from; i < from + count; ++i) {
        const char c = text[i];
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                 : -1;
        if (digit < 0) {
            return -1;
        }
        value = value * 16 + digit;
    }
    return value;
}

int unicodeEscape(std::string_view text, std::size_t at) {
    return text.substr(at, 3) == "\\U+" || text.substr(at, 3) == "\\u+" ? hexAt(text, at + 3, 4) : -1;
}

void appendEscape(std::string& bytes, char32_t c) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::array<UChar, 2> units;
    int32_t length = 0;
    U16_APPEND_UNSAFE(units, length, c);
    for (int32_t i = 0; i < length; ++i) {
        bytes += "\\U+";
        for (int shift = 12; shift >= 0; shift -= 4) {
            bytes += Digits[(units[static_cast<std::size_t>(i)] >> shift) & 15];
        }
    }
}

}  // namespace

struct TextCodec::Pages {
    Pages(bool utf8, std::string_view codePage) : isUtf8(utf8), own(pageName(codePage)) {}

    Page& escape(int digit) {
        auto& page = escapes[static_cast<std::size_t>(digit - 1)];
        if (page == nullptr) {
            page = std::make_unique<Page>(std::string(EscapePages[static_cast<std::size_t>(digit - 1)]));
        }
        return *page;
    }

    bool isUtf8;
    Page own;
    std::array<std::unique_ptr<Page>, 5> escapes;
};

TextCodec::TextCodec(int version, std::string_view codePage)
    : pages_(std::make_unique<Pages>(version >= 1021, codePage)) {}
TextCodec::~TextCodec() = default;
TextCodec::TextCodec(TextCodec&&) noexcept = default;
TextCodec& TextCodec::operator=(TextCodec&&) noexcept = default;

std::string TextCodec::decode(std::string_view bytes) const {
    std::string text;
    if (isAscii(bytes) || (pages_->isUtf8 && drafthost::isUtf8(bytes))) {
        text = bytes;
    } else {
        for (const char32_t c : pages_->own.decode(bytes)) {
            appendUtf8(text, c);
        }
    }
    if (text.find("\\U+") == std::string::npos && text.find("\\M+") == std::string::npos &&
        text.find("\\u+") == std::string::npos) {
        return text;
    }
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        if (int c = unicodeEscape(text, i); c >= 0) {
            i += 7;
            if (U16_IS_LEAD(c)) {
                if (const int trail = unicodeEscape(text, i); trail >= 0 && U16_IS_TRAIL(trail)) {
                    c = U16_GET_SUPPLEMENTARY(c, trail);
                    i += 7;
                }
            }
            appendUtf8(result, static_cast<char32_t>(c));
            continue;
        }
        const int code = text.compare(i, 3, "\\M+") == 0 ? hexAt(text, i + 4, 4) : -1;
        if (code >= 0 && text[i + 3] >= '1' && text[i + 3] <= '5') {
            const std::array<char, 2> pair = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
            for (const char32_t c : pages_->escape(text[i + 3] - '0').decode({pair.data(), pair.size()})) {
                appendUtf8(result, c);
            }
            i += 8;
            continue;
        }
        result += text[i++];
    }
    return result;
}

std::string TextCodec::encode(std::string_view utf8) const {
    std::string bytes;
    if (isAscii(utf8) || (pages_->isUtf8 && drafthost::isUtf8(utf8))) {
        bytes = utf8;
    } else {
        const auto length = static_cast<int32_t>(utf8.size());
        for (int32_t i = 0; i < length;) {
            UChar32 c = 0;
            U8_NEXT_OR_FFFD(utf8.data(), i, length, c);
            if (c < 0x80) {
                bytes += static_cast<char>(c);
            } else if (pages_->isUtf8) {
                appendUtf8(bytes, static_cast<char32_t>(c));
            } else if (!pages_->own.encode(static_cast<char32_t>(c), bytes)) {
                appendEscape(bytes, static_cast<char32_t>(c));
            }
        }
    }
    // A line end inside a value would shift every line behind it; the format's own way to write one is a
    // caret.
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\n' || bytes[i] == '\r' || bytes[i] == '\0') {
            const char letter = static_cast<char>(bytes[i] + '@');
            bytes.replace(i, 1, std::string{'^', letter});
        }
    }
    return bytes;
}

}  // namespace drafthost
