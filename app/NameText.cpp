// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NameText.h"

#include <unistd.h>
#include <charconv>
#include <cstdio>

namespace {

/// The length of the character that begins at a place; 0 when none does.
std::size_t characterAt(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[at + k]); };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80                    ? 1
                               : lead >= 0xC2 && lead < 0xE0  ? 2
                               : lead >= 0xE0 && lead < 0xF0  ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0 || at + length > text.size()) {
        return 0;
    }
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(k) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Longer forms than needed, halves of surrogate pairs, and what lies beyond the last character.
    const bool isNone = length > 2 && ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
                                       (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F));
    return isNone ? 0 : length;
}

std::string hex(char c) {
    char text[5];
    std::snprintf(text, sizeof text, "\\x%02X", static_cast<unsigned char>(c));
    return text;
}

}  // namespace

bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = characterAt(text, i);
        if (length == 0) {
            return false;
        }
        i += length;
    }
    return true;
}

std::string SpelledOut(std::string_view text) {
    std::string spelled;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = characterAt(text, i);
        spelled += length == 0 ? hex(text[i]) : std::string(text.substr(i, length));
        i += length == 0 ? 1 : length;
    }
    return spelled;
}

std::string BytesOf(std::string_view spelledOut) {
    std::string bytes;
    for (std::size_t i = 0; i < spelledOut.size(); ++i) {
        unsigned value = 0;
        const std::string_view rest = spelledOut.substr(i);
        const bool isByte =
            rest.size() >= 4 && rest.starts_with("\\x") &&
            std::from_chars(rest.data() + 2, rest.data() + 4, value, 16).ptr == rest.data() + 4;
        bytes += isByte && value >= 0x80 ? static_cast<char>(value) : spelledOut[i];
        i += isByte && value >= 0x80 ? 3 : 0;
    }
    return bytes;
}

std::string ShownText(std::string_view text) {
    const std::string spelled = SpelledOut(text);
    std::string shown;
    for (std::size_t i = 0; i < spelled.size(); ++i) {
        const char c = spelled[i];
        // The second half of the control characters has two bytes.
        const bool isLate = c == '\xC2' && static_cast<unsigned char>(spelled[i + 1]) < 0xA0;
        if (c == '\n' || c == '\r' || c == '\t') {
            shown += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            shown += hex(c);
        } else if (isLate) {
            shown += hex(spelled[++i]);
        } else {
            shown += c;
        }
    }
    return shown;
}

void PrintName(const std::string& name) {
    const bool terminal = isatty(STDOUT_FILENO) == 1;
    std::printf("%s\n", (terminal ? ShownText(name) : name).c_str());
}

void Complain(std::string_view text) {
    std::fprintf(stderr, "tarnel: %s\n", ShownText(text).c_str());
}
