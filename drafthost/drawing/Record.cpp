// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Record.h"

#include "drafthost/drawing/Overlay.h"

#include <cstring>

namespace drafthost {

namespace {

template <class T>
T loadAs(std::string_view bytes) {
    T value{};
    if (bytes.size() >= sizeof value) {
        std::memcpy(&value, bytes.data(), sizeof value);
    }
    return value;
}

std::string hexadecimal(std::string_view bytes) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        text += Digits[static_cast<unsigned char>(c) >> 4];
        text += Digits[c & 15];
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

}  // namespace

int Record::code(std::size_t i) const {
    if (overlay_ != nullptr) {
        return static_cast<const Drawing::Overlay*>(overlay_)->tags[i].code;
    }
    return drawing_->index_.code(first_ + static_cast<std::uint32_t>(i));
}

std::string_view Record::raw(std::size_t i) const {
    std::uint32_t tag = first_ + static_cast<std::uint32_t>(i);
    if (overlay_ != nullptr) {
        const Drawing::Overlay::Tag& edited = static_cast<const Drawing::Overlay*>(overlay_)->tags[i];
        if (edited.ownValue) {
            return edited.raw;
        }
        tag = edited.source;
    }
    const std::string_view bytes = drawing_->bytes_;
    const std::uint32_t begin = drawing_->index_.valueBegin(tag);
    return bytes.substr(begin, drawing_->index_.valueEnd(bytes, tag) - begin);
}

std::string_view Record::tail(std::size_t i) const {
    if (overlay_ != nullptr) {
        return raw(i);
    }
    // Numbers end by themselves, so the search for the line end is saved.
    return std::string_view(drawing_->bytes_)
        .substr(drawing_->index_.valueBegin(first_ + static_cast<std::uint32_t>(i)));
}

double Record::real(std::size_t i) const {
    if (!drawing_->isBinary()) {
        return parseReal(tail(i));
    }
    if (kindOf(code(i)) == ValueKind::Real) {
        return loadAs<double>(raw(i));
    }
    return static_cast<double>(integer(i));
}

std::int64_t Record::integer(std::size_t i) const {
    if (!drawing_->isBinary()) {
        return parseInteger(tail(i));
    }
    switch (kindOf(code(i))) {
        case ValueKind::Int16:
            return loadAs<std::int16_t>(raw(i));
        case ValueKind::Int32:
            return loadAs<std::int32_t>(raw(i));
        case ValueKind::Int64:
            return loadAs<std::int64_t>(raw(i));
        case ValueKind::Bool:
            return loadAs<std::uint8_t>(raw(i));
        case ValueKind::Real: {
            const double value = loadAs<double>(raw(i));
            return value > -9e18 && value < 9e18 ? static_cast<std::int64_t>(value) : 0;
        }
        case ValueKind::Text:
        case ValueKind::Handle:
        case ValueKind::Chunk:
        case ValueKind::Unknown:
            break;
    }
    return parseInteger(raw(i));
}

std::uint64_t Record::handle(std::size_t i) const {
    return parseHandle(tail(i));
}

std::string Record::text(std::size_t i) const {
    const ValueKind kind = kindOf(code(i));
    if (!drawing_->isBinary()) {
        return isTextKind(kind) ? drawing_->codec().decode(raw(i)) : std::string(trimmed(raw(i)));
    }
    switch (kind) {
        case ValueKind::Real:
            return formatReal(real(i));
        case ValueKind::Int16:
        case ValueKind::Int32:
        case ValueKind::Int64:
        case ValueKind::Bool:
            return std::to_string(integer(i));
        case ValueKind::Chunk:
            return hexadecimal(raw(i));
        case ValueKind::Text:
        case ValueKind::Handle:
        case ValueKind::Unknown:
            break;
    }
    return drawing_->codec().decode(raw(i));
}

Value Record::value(std::size_t i) const {
    const ValueKind kind = kindOf(code(i));
    if (isTextKind(kind)) {
        return text(i);
    }
    if (kind == ValueKind::Real) {
        return real(i);
    }
    return integer(i);
}

Point Record::point(std::size_t i) const {
    Point point;
    point.x = real(i);
    const int first = code(i);
    double* const rest[] = {&point.y, &point.z};
    int part = 0;
    for (std::size_t k = i + 1; k < size() && part < 2; ++k) {
        if (code(k) == 999) {
            continue;
        }
        if (code(k) != first + 10 * (part + 1)) {
            break;
        }
        *rest[part++] = real(k);
    }
    return point;
}

std::string_view Record::type() const {
    if (count_ == 0 || code(0) != 0) {
        return {};
    }
    return trimmed(raw(0));
}

std::optional<std::size_t> Record::find(int wanted, std::size_t from) const {
    for (std::size_t i = from; i < count_; ++i) {
        if (code(i) == wanted) {
            return i;
        }
    }
    return std::nullopt;
}

std::size_t Record::subclass(std::string_view name) const {
    for (std::size_t i = 0; i < count_; ++i) {
        if (code(i) == 100 && trimmed(raw(i)) == name) {
            return i;
        }
    }
    return count_;
}

std::size_t Record::xdata() const {
    for (std::size_t i = 0; i < count_; ++i) {
        if (code(i) >= 1000) {
            return i;
        }
    }
    return count_;
}

std::string Record::textOr(int wanted, std::string_view otherwise) const {
    const auto i = find(wanted);
    return i ? text(*i) : std::string(otherwise);
}

double Record::realOr(int wanted, double otherwise) const {
    const auto i = find(wanted);
    return i ? real(*i) : otherwise;
}

std::int64_t Record::integerOr(int wanted, std::int64_t otherwise) const {
    const auto i = find(wanted);
    return i ? integer(*i) : otherwise;
}

std::uint64_t Record::handleOr(int wanted, std::uint64_t otherwise) const {
    const auto i = find(wanted);
    return i ? handle(*i) : otherwise;
}

Point Record::pointOr(int wanted, const Point& otherwise) const {
    const auto i = find(wanted);
    return i ? point(*i) : otherwise;
}

}  // namespace drafthost
