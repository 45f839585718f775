// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Pages, and single places of pages, that the conversion libraries lack or have from another maker. The
// values are those of the system that the page numbers come from.
#include <array>
#include <span>

/// The characters of the bytes 0x80 to 0xFF, 0 where there is none; null for a page that needs no table of
/// ours.
const std::array<char16_t, 128>* UpperHalf(int page);

struct PagePlace {
    int Page;
    /// One byte, or two with the first in the higher half.
    unsigned Bytes;
    char16_t Character;
};

/// What differs from a library's table.
std::span<const PagePlace> DifferingPlaces(int page);
