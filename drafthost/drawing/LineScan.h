// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace drafthost {

// Line ends of an ASCII drawing, 64 bytes at a time: the inner step of loading, which would otherwise spend
// its time in one search call per eight-byte line.

/// Bytes that are looked at together.
inline constexpr std::uint32_t LineBlock = 64;

/// Appends the positions of `terminator` in `blocks` blocks of `bytes` from `position` on to `ends`, which
/// must have room for all of them and one block more; returns how many there are. `nul` is set when a NUL
/// byte is among them.
std::size_t findLineEnds(const char* bytes, std::uint32_t position, std::size_t blocks, char terminator,
                         std::uint32_t* ends, bool& nul);

}  // namespace drafthost
