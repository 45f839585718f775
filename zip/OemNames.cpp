// SPDX-License-Identifier: GPL-3.0-or-later
#include "zip/OemNames.h"

#include "zip/ZipFormat.h"

#include <strings.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/unorm.h>
#include <zlib.h>
#include <algorithm>
#include <array>

namespace {

constexpr const char* OemPage = "ibm-437_P100-1995";

// Characters of the bytes 128 to 255. The lower half is ASCII as it stands: ICU's table exchanges three
// control characters there, as the old hardware did.
const std::array<char16_t, 128>& upperHalf() {
    static const std::array<char16_t, 128> table = [] {
        std::array<char16_t, 128> characters{};
        std::array<char, 128> bytes{};
        for (int i = 0; i < 128; ++i) {
            bytes[static_cast<std::size_t>(i)] = static_cast<char>(128 + i);
        }
        UErrorCode error = U_ZERO_ERROR;
        UConverter* converter = ucnv_open(OemPage, &error);
        ucnv_toUChars(converter, characters.data(), 128, bytes.data(), 128, &error);
        ucnv_close(converter);
        if (U_FAILURE(error)) {
            characters.fill(0xFFFD);
        }
        return characters;
    }();
    return table;
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

icu::UnicodeString fromUtf8(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

// Valid UTF-8, what is not replaced by U+FFFD.
std::string cleanUtf8(std::string_view text) {
    if (isAscii(text)) {
        return std::string(text);
    }
    std::string clean;
    fromUtf8(text).toUTF8String(clean);
    return clean;
}

// The name in an extra field 0x7075, valid only for the very bytes that it was made for.
bool unicodePath(std::string_view extra, std::string_view bytes, std::string& name) {
    while (extra.size() >= 4) {
        const std::uint16_t id = zip_format::Get16(extra.data());
        const std::size_t size = zip_format::Get16(extra.data() + 2);
        if (size > extra.size() - 4) {
            return false;
        }
        const std::string_view field = extra.substr(4, size);
        if (id == zip_format::ExtraUnicodePath && size >= 5 && field[0] == 1 &&
            zip_format::Get32(field.data() + 1) ==
                crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size())) {
            name = cleanUtf8(field.substr(5));
            return true;
        }
        extra.remove_prefix(4 + size);
    }
    return false;
}

}  // namespace

StoredName EncodeEntryName(const std::string& name) {
    return {cleanUtf8(name), !isAscii(name)};
}

std::string DecodeEntryName(std::string_view bytes, std::uint16_t flags, std::uint16_t madeBy,
                            std::string_view extra) {
    std::string name;
    if ((flags & zip_format::FlagUtf8) != 0) {
        return cleanUtf8(bytes);
    }
    if (unicodePath(extra, bytes, name)) {
        return name;
    }
    if (isAscii(bytes)) {
        return std::string(bytes);
    }
    const int system = madeBy & 0xFF00;
    name = cleanUtf8(bytes);
    if ((system == zip_format::MadeOnUnix || system == zip_format::MadeOnMac) && name == bytes) {
        return name;
    }
    icu::UnicodeString text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text.append(byte < 128 ? static_cast<char16_t>(byte) : upperHalf()[byte - 128U]);
    }
    name.clear();
    text.toUTF8String(name);
    return name;
}

bool SameEntryName(const std::string& left, const std::string& right, bool caseSensitive) {
    if (isAscii(left) && isAscii(right)) {
        if (left.size() != right.size()) {
            return false;
        }
        return caseSensitive ? left == right : strncasecmp(left.c_str(), right.c_str(), left.size()) == 0;
    }
    const uint32_t options = caseSensitive ? 0 : U_COMPARE_IGNORE_CASE;
    UErrorCode error = U_ZERO_ERROR;
    const icu::UnicodeString a = fromUtf8(left);
    const icu::UnicodeString b = fromUtf8(right);
    const int32_t order =
        unorm_compare(a.getBuffer(), a.length(), b.getBuffer(), b.length(), options, &error);
    return U_SUCCESS(error) && order == 0;
}
