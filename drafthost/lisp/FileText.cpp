// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/FileText.h"

#include "drafthost/lisp/Utf8.h"
#include "system/UserLanguage.h"

#include <unicode/ucnv.h>
#include <string_view>
#include <vector>

namespace drafthost::lisp {
namespace {

bool isUtf8(std::string_view bytes) {
    for (std::size_t pos = 0; pos < bytes.size();) {
        const char32_t c = nextCharacter(bytes, pos);
        if (c >= 0xDC00 && c <= 0xDCFF) {
            return false;
        }
    }
    return true;
}

std::string fromUtf16(std::u16string_view units) {
    std::string out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        const bool isPair = c >= 0xD800 && c < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
                            units[i + 1] < 0xE000;
        if (isPair) {
            c = 0x10000 + ((c - 0xD800) << 10) + (units[++i] - 0xDC00U);
        }
        appendCharacter(out, c >= 0xD800 && c < 0xE000 ? 0xFFFD : c);
    }
    return out;
}

/// The line of the first character, if any, that half a pair stands for.
std::size_t lineOfHalfPair(std::u16string_view units) {
    std::size_t line = 1;
    for (std::size_t i = 0; i < units.size(); ++i) {
        line += units[i] == u'\n' ? 1 : 0;
        const bool isHigh = units[i] >= 0xD800 && units[i] < 0xDC00;
        if (isHigh && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000) {
            ++i;
        } else if (units[i] >= 0xD800 && units[i] < 0xE000) {
            return line;
        }
    }
    return 0;
}

std::string fromUtf16(std::string_view bytes, bool bigEndian, std::size_t& unknownLine) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    unknownLine = lineOfHalfPair(units);
    return fromUtf16(units);
}

class Page {
  public:
    explicit Page(const std::string& name) {
        UErrorCode status = U_ZERO_ERROR;
        converter_ = ucnv_open(name.c_str(), &status);
        ucnv_setToUCallBack(converter_, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }
    ~Page() { ucnv_close(converter_); }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    /// True, with the text, when all bytes mean something on the page.
    bool decode(std::string_view bytes, std::string& text) {
        if (converter_ == nullptr) {
            return false;
        }
        units_.resize(bytes.size() * 2 + 8);
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = ucnv_toUChars(converter_, reinterpret_cast<UChar*>(units_.data()),
                                             static_cast<int32_t>(units_.size()), bytes.data(),
                                             static_cast<int32_t>(bytes.size()), &status);
        if (U_FAILURE(status)) {
            return false;
        }
        text = fromUtf16(std::u16string_view(units_.data(), static_cast<std::size_t>(length)));
        return true;
    }

  private:
    UConverter* converter_ = nullptr;
    std::vector<char16_t> units_;
};

std::string fromLatin(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        appendCharacter(text, static_cast<unsigned char>(byte));
    }
    return text;
}

bool isComment(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    return first != std::string_view::npos && line[first] == ';';
}

}  // namespace

std::string decodeFile(std::string bytes, std::size_t* unknownLine) {
    std::size_t ignored = 0;
    std::size_t& unknown = unknownLine != nullptr ? *unknownLine : ignored;
    unknown = 0;
    constexpr std::string_view Mark = "\xEF\xBB\xBF";
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        return fromUtf16(std::string_view(bytes).substr(2), bytes[0] == '\xFE', unknown);
    }
    std::string locale = files::LocaleCodeset();
    if (bytes.starts_with(Mark)) {
        bytes.erase(0, Mark.size());
        locale = "UTF-8";
    }
    if (locale == "UTF-8" && isUtf8(bytes)) {
        return bytes;
    }
    Page own(locale);
    Page foreign("windows-" + std::to_string(files::LanguagePage()));
    std::string out;
    std::string text;
    std::size_t number = 0;
    for (std::string_view rest = bytes; !rest.empty();) {
        ++number;
        const std::string_view line = rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
        rest.remove_prefix(line.size());
        if (locale == "UTF-8" && isUtf8(line)) {
            out += line;
        } else if ((locale != "UTF-8" && own.decode(line, text)) || foreign.decode(line, text)) {
            out += text;
        } else {
            unknown = unknown == 0 && !isComment(line) ? number : unknown;
            out += fromLatin(line);
        }
    }
    return out;
}

std::optional<std::string> decodeProgram(std::string bytes, std::string& cause) {
    std::size_t unknownLine = 0;
    std::string text = decodeFile(std::move(bytes), &unknownLine);
    if (unknownLine == 0) {
        return text;
    }
    cause = "line " + std::to_string(unknownLine) + " is text neither in " + files::LocaleCodeset() +
            " nor in windows-" + std::to_string(files::LanguagePage());
    return std::nullopt;
}

}  // namespace drafthost::lisp
