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
    constexpr std::uint32_t perSegment = 0x10000;
    const std::uint32_t count = (wanted + perSegment - 1) / perSegment;
    if (count > segments.capacity()) {
        segments.reserve(std::size_t{count} * 2 + 4);
    }
    while (capacity < wanted) {
        const std::uint32_t last = capacity / perSegment;
        const std::uint32_t slots = std::min(perSegment, wanted - last * perSegment);
        if (last == segments.size()) {
            segments.emplace_back();
        }
        void* block = std::realloc(segments[last].get(), slots * sizeof(ElementPosition));
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        static_cast<void>(segments[last].release());
        segments[last].reset(static_cast<ElementPosition*>(block));
        capacity = last * perSegment + slots;
    }
}
