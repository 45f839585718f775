// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "drafthost/base/Point.h"

namespace drafthost {

// What a tag may hold is told by its group code alone, in both forms of the file: the table here decides how
// many bytes a value takes in a binary drawing and how a new value is written in an ASCII one. Kept apart
// from the drawing so that LISP lists and filters can ask it too.

enum class ValueKind : std::uint8_t {
    Text,     ///< string in the drawing's own encoding
    Handle,   ///< hexadecimal digits, stored as a string
    Real,     ///< double
    Int16,    ///< 2 bytes in binary drawings
    Int32,    ///< 4 bytes
    Int64,    ///< 8 bytes
    Bool,     ///< 1 byte
    Chunk,    ///< binary data, hexadecimal digits in ASCII drawings
    Unknown,  ///< no kind is assigned to this code
};

/// Kind of the values under a group code (help pages of the format, "Group code value types").
ValueKind kindOf(int code);
/// The text kinds: Text, Handle and Chunk are handed out as strings.
bool isTextKind(ValueKind kind);

/// A value as others see it: UTF-8 text, a real, or a whole number.
using Value = std::variant<std::string, double, std::int64_t>;

/// Shortest decimal text that reads back as the same double; always with a point or an exponent.
/// `decimals` below 16 rounds to that many digits after the point instead.
std::string formatReal(double value, int decimals = 16);
/// Reads a real from the start of `text`, blanks before it allowed; 0 when there is none.
double parseReal(std::string_view text);
/// Reads a whole number the same way; a real is cut to its whole part.
std::int64_t parseInteger(std::string_view text);
/// Reads hexadecimal digits; 0 when there are none or more than 16.
std::uint64_t parseHandle(std::string_view text);
/// Upper-case hexadecimal digits without leading zeros.
std::string formatHandle(std::uint64_t handle);
/// Folds UTF-8 text for the comparison of names, which never regards case.
std::string foldCase(std::string_view utf8);

}  // namespace drafthost
