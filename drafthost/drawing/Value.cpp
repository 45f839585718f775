// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Value.h"

#include <unicode/unistr.h>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace drafthost {

namespace {

struct Range {
    int first;
    int last;
    ValueKind kind;
};

constexpr Range Ranges[] = {
    {-5, -1, ValueKind::Text},       {0, 4, ValueKind::Text},        {5, 5, ValueKind::Handle},
    {6, 9, ValueKind::Text},         {10, 59, ValueKind::Real},      {60, 79, ValueKind::Int16},
    {90, 99, ValueKind::Int32},      {100, 102, ValueKind::Text},    {105, 105, ValueKind::Handle},
    {110, 149, ValueKind::Real},     {160, 169, ValueKind::Int64},   {170, 179, ValueKind::Int16},
    {210, 239, ValueKind::Real},     {270, 289, ValueKind::Int16},   {290, 299, ValueKind::Bool},
    {300, 309, ValueKind::Text},     {310, 319, ValueKind::Chunk},   {320, 369, ValueKind::Handle},
    {370, 389, ValueKind::Int16},    {390, 399, ValueKind::Handle},  {400, 409, ValueKind::Int16},
    {410, 419, ValueKind::Text},     {420, 429, ValueKind::Int32},   {430, 439, ValueKind::Text},
    {440, 459, ValueKind::Int32},    {460, 469, ValueKind::Real},    {470, 479, ValueKind::Text},
    {480, 481, ValueKind::Handle},   {999, 1003, ValueKind::Text},   {1004, 1004, ValueKind::Chunk},
    {1005, 1005, ValueKind::Handle}, {1006, 1009, ValueKind::Text},  {1010, 1059, ValueKind::Real},
    {1060, 1070, ValueKind::Int16},  {1071, 1071, ValueKind::Int32},
};

constexpr int TableSize = 1072;

constexpr std::array<ValueKind, TableSize> makeKinds() {
    std::array<ValueKind, TableSize> kinds{};
    kinds.fill(ValueKind::Unknown);
    for (const Range& range : Ranges) {
        for (int code = std::max(range.first, 0); code <= range.last; ++code) {
            kinds[code] = range.kind;
        }
    }
    return kinds;
}

constexpr std::array<ValueKind, TableSize> Kinds = makeKinds();

std::string_view skipBlanks(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) {
        ++i;
    }
    if (i + 1 < text.size() && text[i] == '+') {
        ++i;
    }
    return text.substr(i);
}

}  // namespace

ValueKind kindOf(int code) {
    if (code < 0) {
        return code >= -5 ? ValueKind::Text : ValueKind::Unknown;
    }
    return code < TableSize ? Kinds[code] : ValueKind::Unknown;
}

bool isTextKind(ValueKind kind) {
    return kind == ValueKind::Text || kind == ValueKind::Handle || kind == ValueKind::Chunk ||
           kind == ValueKind::Unknown;
}

std::string formatReal(double value, int decimals) {
    if (!std::isfinite(value)) {
        value = 0;
    }
    std::array<char, 400> buffer;
    char* const first = buffer.data();
    char* const last = first + buffer.size();
    // Fixed digits only where they fit: beyond this size a double has no digits after the point anyway.
    if (decimals < 16 && std::fabs(value) < 1e15) {
        const auto end =
            std::to_chars(first, last, value, std::chars_format::fixed, std::max(decimals, 0)).ptr;
        std::string text(first, end);
        if (text.find('.') != std::string::npos) {
            text.erase(std::max(text.find_last_not_of('0') + 1, text.find('.') + 2));
        } else {
            text += ".0";
        }
        if (text == "-0.0") {
            text = "0.0";
        }
        return text;
    }
    std::string text(first, std::to_chars(first, last, value).ptr);
    const std::size_t exponent = text.find('e');
    const std::string mantissa = text.substr(0, exponent);
    const std::string point = mantissa.find('.') == std::string::npos ? ".0" : "";
    if (exponent == std::string::npos) {
        return mantissa + point;
    }
    return mantissa + point + "E" + text.substr(exponent + 1);
}

double parseReal(std::string_view text) {
    text = skipBlanks(text);
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        return 0;
    }
    return value;
}

std::int64_t parseInteger(std::string_view text) {
    text = skipBlanks(text);
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc() && result.ptr != text.data() + text.size() &&
        (*result.ptr == '.' || *result.ptr == 'e' || *result.ptr == 'E')) {
        const double real = parseReal(text);
        return std::fabs(real) < 9e18 ? static_cast<std::int64_t>(real) : 0;
    }
    return value;
}

std::uint64_t parseHandle(std::string_view text) {
    text = skipBlanks(text);
    std::uint64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return result.ec == std::errc() ? value : 0;
}

std::string formatHandle(std::uint64_t handle) {
    std::array<char, 16> buffer;
    std::string text(buffer.data(),
                     std::to_chars(buffer.data(), buffer.data() + buffer.size(), handle, 16).ptr);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
    return text;
}

std::string foldCase(std::string_view utf8) {
    std::string folded(utf8);
    bool ascii = true;
    for (char& c : folded) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c + 32);
        }
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    }
    if (ascii) {
        return folded;
    }
    std::string result;
    icu::UnicodeString::fromUTF8(folded).foldCase().toUTF8String(result);
    return result;
}

}  // namespace drafthost
