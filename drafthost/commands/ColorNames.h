// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Colours and lineweights as users type them. Colour numbers, the seven names and true colours all occur in
// layer scripts; lineweights are a closed list, so that a typed width means its nearest neighbour.

#include <optional>
#include <string>
#include <string_view>

namespace drafthost::commands {

/// A colour: an index 1 to 255 (256 ByLayer, 0 ByBlock), and for true colours the value 0xRRGGBB with the
/// nearest index beside it.
struct Color {
    int index = 7;
    std::optional<int> rgb{};
    bool operator==(const Color&) const = default;
};

/// Reads a number from `low` to 255 or one of red, yellow, green, cyan, blue, magenta, white.
std::optional<int> parseColorIndex(std::string_view text, int low = 1);
/// Reads "r,g,b" with values from 0 to 255.
std::optional<Color> parseTrueColor(std::string_view text);
/// The name of 1 to 7, else the number.
std::string colorText(int index);
/// As `colorText`, or "r,g,b" for a true colour.
std::string colorText(const Color& color);

/// The nearest allowed lineweight in 1/100 mm, from millimetres; nothing for negative widths and widths over
/// 2.11 mm.
std::optional<int> nearestLineweight(double millimetres);
/// Whether the value is one that a drawing may hold: -3 default, -2 ByBlock, -1 ByLayer, or one of the list.
bool isLineweight(int hundredths);
/// "Default", "ByLayer", "ByBlock" or "0.25 mm".
std::string lineweightText(int hundredths);

}  // namespace drafthost::commands
