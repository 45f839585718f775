// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Value.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace drafthost {

class Drawing;

/// A record's place in a drawing; stays the same while the drawing is open.
using RecordId = std::uint32_t;
inline constexpr RecordId NoRecord = std::numeric_limits<RecordId>::max();

// The tags of one record, read in place: a light value over the drawing, made anew whenever it is asked for.
// It answers with the bytes as they stand in the file (`raw`) or with decoded values; numbers that cannot be
// read are 0, as one wrong number must not keep a drawing from being used.
class Record {
  public:
    RecordId id() const { return id_; }
    std::size_t size() const { return count_; }
    /// Group code of tag `i`; comments are tags with code 999.
    int code(std::size_t i) const;
    /// The value's bytes: in ASCII drawings the line without its end, in binary ones the value's own bytes.
    std::string_view raw(std::size_t i) const;
    /// The value as UTF-8: strings decoded (code page, \U+XXXX and \M+nXXXX; caret escapes are kept), numbers
    /// as digits, binary chunks as hexadecimal digits.
    std::string text(std::size_t i) const;
    double real(std::size_t i) const;
    std::int64_t integer(std::size_t i) const;
    std::uint64_t handle(std::size_t i) const;
    /// The value by the kind of its code: text, real or whole number.
    Value value(std::size_t i) const;
    /// The reals at `i` and, where they follow under code + 10 and code + 20, behind it.
    Point point(std::size_t i) const;

    /// Value of the leading tag with code 0 without blanks around it; empty when the record has none.
    std::string_view type() const;
    /// Index of the first tag with `code` at or behind `from`.
    std::optional<std::size_t> find(int code, std::size_t from = 0) const;
    /// Index of the subclass marker (100) `name`, or size().
    std::size_t subclass(std::string_view name) const;
    /// Index of the first tag of the extended data (code 1000 and above, but for comments), or size().
    std::size_t xdata() const;
    /// First value under `code`, or `otherwise`.
    std::string textOr(int code, std::string_view otherwise) const;
    double realOr(int code, double otherwise) const;
    std::int64_t integerOr(int code, std::int64_t otherwise) const;
    std::uint64_t handleOr(int code, std::uint64_t otherwise) const;
    Point pointOr(int code, const Point& otherwise) const;

  private:
    friend class Drawing;
    Record(const Drawing& drawing, RecordId id, std::uint32_t first, std::uint32_t count, const void* overlay)
        : drawing_(&drawing), overlay_(overlay), id_(id), first_(first), count_(count) {}

    /// The bytes from the value of tag `i` on; its end is not looked for.
    std::string_view tail(std::size_t i) const;

    const Drawing* drawing_;
    const void* overlay_;
    RecordId id_;
    std::uint32_t first_;
    std::uint32_t count_;
};

}  // namespace drafthost
