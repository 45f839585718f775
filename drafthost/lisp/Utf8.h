// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Steps through UTF-8 text by character. Bytes that are no UTF-8 count as one character each, so that
// damaged text is carried along unchanged instead of being lost.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace drafthost::lisp {

/// The character at pos; pos moves behind it. Broken bytes give 0xDC00 + byte.
char32_t nextCharacter(std::string_view text, std::size_t& pos);
/// Appends a character; 0xDC80 to 0xDCFF append the byte they stand for.
void appendCharacter(std::string& out, char32_t c);
std::size_t characterCount(std::string_view text);
/// Byte offset of the character with that index, or the size when the text is shorter.
std::size_t characterOffset(std::string_view text, std::size_t index);
bool isAscii(std::string_view text);
std::vector<char32_t> toCharacters(std::string_view text);

}  // namespace drafthost::lisp
