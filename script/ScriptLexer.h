// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Tells what the bytes of a script are, for editors that colour it. It works byte by byte on text in whatever
// narrow encoding, knows no widget, and can begin at the start of any line.
#include <cstdint>
#include <span>
#include <string_view>

/// What a byte is; the numbers are those of the editor's styles.
enum class ScriptStyle : std::uint8_t {
    Default = 0,
    Comment = 1,
    Number = 2,
    Keyword = 3,
    Variable = 4,
    String = 8,
    /// From the last byte of a line inside a string up to its end: the string is not closed there.
    StringEol = 9,
    Identifier = 10,
    Operator = 11,
};

/// Whether the byte at `at` is a line's last: a line feed, or a return with no line feed behind it.
bool EndsLine(std::string_view text, std::size_t at);

/// Styles of the bytes from `start`, which begins a line, up to `end`, which ends one or the text; what lies
/// around is looked at and not coloured. `before` is the style of the byte in front of `start`, Default at
/// the text's beginning. `styles` takes one for each byte.
void LexScript(std::string_view text, std::size_t start, std::size_t end, ScriptStyle before,
               std::span<ScriptStyle> styles);
