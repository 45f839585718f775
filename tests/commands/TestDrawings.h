// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Small drawings that the tests make themselves.

#include <string>

namespace drafthost::test {

/// Version 2000: a line from 0,0 to 30,20 on layer Walls and a circle around 10,10 on layer 0; layers 0,
/// Walls, Doors (frozen), "Hidden lines" (locked); linetype DASHED; two layouts, with a circle on each.
std::string drawing2000();
/// R12 as measuring devices write it: layers but no handles, one line from 1,2 to 5,4.
std::string drawingR12();

}  // namespace drafthost::test
