// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/ElementPosition.h"

#include <algorithm>
#include <new>

void PositionIndex::Reset(std::uint32_t room) {
    used = 0;
    if (capacity < room) {
        grow(room);
    }
    Add();
}

void PositionIndex::grow(std::uint32_t wanted) {
    constexpr std::uint32_t PerSegment = 0x10000;
    const std::uint32_t count = (wanted + PerSegment - 1) / PerSegment;
    if (count > segments.capacity()) {
        segments.reserve(std::size_t{count} * 2 + 4);
    }
    while (capacity < wanted) {
        const std::uint32_t last = capacity / PerSegment;
        const std::uint32_t slots = std::min(PerSegment, wanted - last * PerSegment);
        if (last == segments.size()) {
            segments.emplace_back();
        }
        void* block = std::realloc(segments[last].get(), slots * sizeof(ElementPosition));
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        static_cast<void>(segments[last].release());
        segments[last].reset(static_cast<ElementPosition*>(block));
        capacity = last * PerSegment + slots;
    }
}
