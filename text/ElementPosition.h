// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Where the elements of a markup text stand. Eight plain numbers per element in blocks of 65,536 records, so
// that a log of any size needs neither one object per element nor one large block.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

struct ElementPosition {
    /// Marks beside the depth in Level.
    enum Mark : std::uint32_t {
        Removed = 0x20000,
        FirstSibling = 0x80000,
        NoEndTag = 0x100000,
        /// Holds an unended or lone tag somewhere below.
        HoldsStray = 0x200000,
        IllFormed = 0x800000,
    };
    static constexpr std::uint32_t MaxStartTag = 0x3fffff;
    static constexpr std::uint32_t MaxEndTag = 0x3ff;

    std::uint32_t Start;
    std::uint32_t Length;
    /// Low 22 bits: length of the start tag. High 10 bits: length of the end tag.
    std::uint32_t TagLengths;
    /// Low 16 bits: nesting depth. The rest: marks.
    std::uint32_t Level;
    std::uint32_t Parent;
    std::uint32_t FirstChild;
    std::uint32_t NextSibling;
    /// Circular: the first sibling's field holds the last sibling.
    std::uint32_t PreviousSibling;

    std::uint32_t StartTagLength() const { return TagLengths & MaxStartTag; }
    std::uint32_t EndTagLength() const { return TagLengths >> 22; }
    void SetStartTagLength(std::uint32_t length) { TagLengths = (TagLengths & ~MaxStartTag) | length; }
    void SetEndTagLength(std::uint32_t length) { TagLengths = (TagLengths & MaxStartTag) | (length << 22); }
    std::uint32_t ContentStart() const { return Start + StartTagLength(); }
    std::uint32_t ContentEnd() const { return Start + Length - EndTagLength(); }
    std::uint32_t End() const { return Start + Length; }
    bool IsEmptyElement() const { return Length == StartTagLength(); }
};

/// The index of a document: record 0 is the document itself. References are good until the next Add.
class PositionIndex {
  public:
    PositionIndex() { Reset(0); }
    PositionIndex(const PositionIndex&) = delete;
    PositionIndex& operator=(const PositionIndex&) = delete;

    ElementPosition& operator[](std::uint32_t i) { return segments[i >> 16][i & 0xffff]; }
    const ElementPosition& operator[](std::uint32_t i) const { return segments[i >> 16][i & 0xffff]; }
    /// Number of positions in use, the document's own included.
    std::uint32_t Used() const { return used; }
    /// Forgets all positions but the document's and makes room for so many.
    void Reset(std::uint32_t room);
    /// A new record, cleared.
    std::uint32_t Add() {
        if (used == capacity) {
            grow(used + used / 2 + 8);
        }
        (*this)[used] = ElementPosition{};
        return used++;
    }

  private:
    struct Free {
        void operator()(ElementPosition* block) const { std::free(block); }
    };
    void grow(std::uint32_t wanted);

    std::vector<std::unique_ptr<ElementPosition[], Free>> segments;
    std::uint32_t used = 0;
    std::uint32_t capacity = 0;
};
