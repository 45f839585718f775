// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace drafthost {

/// The colour of a number from 1 to 255, as red, green and blue from the top; 7 is white, what is no number
/// of a colour black. Nine named colours, then 24 hues in steps of 15 degrees with five brightnesses, each
/// full and half saturated, then six greys.
std::uint32_t rgbOfIndex(int index);
/// The number of the colour nearest to one.
int nearestIndex(std::uint32_t rgb);

}  // namespace drafthost
