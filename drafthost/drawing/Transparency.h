// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace drafthost {

// How entities (group 440) and layers hold their transparency; without the group it is that of the layer.

/// The application under which layers have it, in a group 1071.
inline constexpr const char* LayerTransparencyApplication = "AcCmTransparency";

inline constexpr std::int64_t TransparencyByBlock = 0x01000000;
inline constexpr std::int64_t TransparencyGiven = 0x02000000;

/// From percent, 0 to 90. The low byte is the opacity of 255, cut as other programs cut it.
constexpr std::int64_t transparencyOf(std::int64_t percent) {
    return TransparencyGiven | 255 * (100 - percent) / 100;
}

}  // namespace drafthost
