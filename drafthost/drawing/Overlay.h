// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

inline constexpr std::uint32_t NoTag = 0xFFFFFFFF;
inline constexpr std::uint32_t NoOverlay = 0x7FFFFFFF;
inline constexpr std::uint32_t DeletedBit = 0x80000000;

// The changed copy of one record. A tag that came from the file keeps its index there, so that its bytes, and
// of a replaced value at least its code line, are written as they were.
struct Drawing::Overlay {
    struct Tag {
        int code;
        std::uint32_t source;  ///< index in the file, or NoTag
        bool ownValue;         ///< `raw` stands for the value
        std::string raw;
    };
    std::vector<Tag> tags;
    // Of new records only: neighbours in the chain behind the original record `anchor`.
    RecordId anchor = NoRecord;
    RecordId previous = NoRecord;
    RecordId next = NoRecord;
};

}  // namespace drafthost
