// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Overlay.h"
#include "drafthost/drawing/Structure.h"
#include "drafthost/drawing/UndoLog.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace drafthost {

namespace {

template <class T>
std::string bytesOf(T value) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

double toReal(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return parseReal(*text);
    }
    const auto* whole = std::get_if<std::int64_t>(&value);
    return whole != nullptr ? static_cast<double>(*whole) : std::get<double>(value);
}

std::int64_t toInteger(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return parseInteger(*text);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return std::fabs(*real) < 9e18 ? static_cast<std::int64_t>(*real) : 0;
    }
    return std::get<std::int64_t>(value);
}

std::string toText(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return *text;
    }
    const auto* real = std::get_if<double>(&value);
    return real != nullptr ? formatReal(*real) : std::to_string(std::get<std::int64_t>(value));
}

std::string fromHexadecimal(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size() && bytes.size() < 255; i += 2) {
        bytes += static_cast<char>(parseHandle(text.substr(i, 2)));
    }
    return bytes;
}

// Structure hangs on types, names, owners and layout links.
bool isStructuralCode(int code) {
    return code == 0 || code == 1 || code == 2 || code == 5 || code == 9 || code == 71 || code == 330;
}

}  // namespace

// The new value as bytes of this drawing. An ASCII number keeps the width of the old one, as many programs
// align theirs.
std::string Drawing::rawFromValue(int code, const Value& value, std::string_view old) const {
    const ValueKind kind = kindOf(code);
    if (!isBinary()) {
        std::string text = isTextKind(kind)          ? codec_.encode(toText(value))
                           : kind == ValueKind::Real ? formatReal(toReal(value))
                                                     : std::to_string(toInteger(value));
        if (!isTextKind(kind) && old.starts_with(' ') && text.size() < old.size()) {
            text.insert(0, old.size() - text.size(), ' ');
        }
        return text;
    }
    switch (kind) {
        case ValueKind::Real:
            return bytesOf(toReal(value));
        case ValueKind::Int16:
            return bytesOf(static_cast<std::int16_t>(toInteger(value)));
        case ValueKind::Int32:
            return bytesOf(static_cast<std::int32_t>(toInteger(value)));
        case ValueKind::Int64:
            return bytesOf(toInteger(value));
        case ValueKind::Bool:
            return bytesOf(static_cast<std::uint8_t>(toInteger(value) != 0));
        case ValueKind::Chunk:
            return fromHexadecimal(toText(value));
        case ValueKind::Text:
        case ValueKind::Handle:
        case ValueKind::Unknown:
            break;
    }
    return codec_.encode(toText(value));
}

Drawing::Overlay& Drawing::edit(RecordId id) {
    undo_->touch(id);
    if (Overlay* overlay = overlayOf(id)) {
        return *overlay;
    }
    auto overlay = std::make_unique<Overlay>();
    const std::uint32_t end = rows_[id + 1].firstTag;
    for (std::uint32_t tag = rows_[id].firstTag; tag < end; ++tag) {
        overlay->tags.push_back({index_.code(tag), tag, false, {}});
    }
    rows_[id].overlay = static_cast<std::uint32_t>(overlays_.size()) | (rows_[id].overlay & DeletedBit);
    overlays_.push_back(std::move(overlay));
    return *overlays_.back();
}

void Drawing::changed(RecordId id, int code) {
    modified_ = true;
    if (structure_ != nullptr && isStructuralCode(code) && isStructural(type(id))) {
        structure_.reset();
    }
    if (code == 5 || code == 105) {
        handlesBuilt_ = false;
    }
}

void Drawing::setTag(RecordId id, std::size_t tag, const Value& value) {
    const Record before = record(id);
    const int code = before.code(tag);
    const ValueKind kind = kindOf(code);
    const bool same = isTextKind(kind)          ? before.text(tag) == toText(value)
                      : kind == ValueKind::Real ? before.real(tag) == toReal(value)
                                                : before.integer(tag) == toInteger(value);
    if (same) {
        return;
    }
    std::string raw = rawFromValue(code, value, before.raw(tag));
    Overlay::Tag& edited = edit(id).tags[tag];
    edited.raw = std::move(raw);
    edited.ownValue = true;
    changed(id, code);
}

void Drawing::insertTag(RecordId id, std::size_t before, int code, const Value& value) {
    std::string raw = rawFromValue(code, value, {});
    std::vector<Overlay::Tag>& tags = edit(id).tags;
    const auto place = tags.begin() + static_cast<std::ptrdiff_t>(std::min(before, tags.size()));
    tags.insert(place, {code, NoTag, true, std::move(raw)});
    const bool built = handlesBuilt_;
    changed(id, code);
    if (built && !handlesBuilt_) {
        // New records get their handles one by one: no reason to read all the others again.
        handles_.try_emplace(handle(id), id);
        handlesBuilt_ = true;
    }
}

void Drawing::appendTag(RecordId id, int code, const Value& value) {
    insertTag(id, record(id).size(), code, value);
}

void Drawing::removeTag(RecordId id, std::size_t tag) {
    std::vector<Overlay::Tag>& tags = edit(id).tags;
    const int code = tags[tag].code;
    tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(tag));
    changed(id, code);
}

void Drawing::put(RecordId id, int code, const Value& value, std::initializer_list<int> behind) {
    const Record record = this->record(id);
    const std::size_t end = record.xdata();
    const auto found = record.find(code);
    if (found && *found < end) {
        setTag(id, *found, value);
        return;
    }
    for (const int wanted : behind) {
        std::size_t place = end;
        for (std::size_t i = 0; i < end; ++i) {
            if (record.code(i) == wanted) {
                place = i + 1;
            }
        }
        if (place != end || (end > 0 && record.code(end - 1) == wanted)) {
            insertTag(id, place, code, value);
            return;
        }
    }
    insertTag(id, end, code, value);
}

void Drawing::putPoint(RecordId id, int code, const Point& point, bool withZ,
                       std::initializer_list<int> behind) {
    put(id, code, point.x, behind);
    const double rest[] = {point.y, point.z};
    for (int part = 0; part < (withZ ? 2 : 1); ++part) {
        const Record record = this->record(id);
        const std::size_t place = *record.find(code + 10 * part) + 1;
        const int next = code + 10 * (part + 1);
        if (place < record.size() && record.code(place) == next) {
            setTag(id, place, rest[part]);
        } else {
            insertTag(id, place, next, rest[part]);
        }
    }
}

void Drawing::linkBehind(RecordId previous, RecordId id) {
    Overlay& overlay = *overlayOf(id);
    if (previous > originals_) {
        Overlay& before = *overlayOf(previous);
        overlay.anchor = before.anchor;
        overlay.previous = previous;
        overlay.next = before.next;
        before.next = id;
    } else {
        overlay.anchor = previous;
        const auto chain = chains_.find(previous);
        overlay.next = chain != chains_.end() ? chain->second.first : NoRecord;
        if (chain == chains_.end()) {
            chains_[previous] = {id, id};
        } else {
            chain->second.first = id;
        }
    }
    if (overlay.next != NoRecord) {
        overlayOf(overlay.next)->previous = id;
    } else {
        chains_[overlay.anchor].second = id;
    }
}

RecordId Drawing::insertRecord(RecordId previous, std::string_view type) {
    const RecordId id = static_cast<RecordId>(rows_.size());
    rows_.push_back({NoTag, static_cast<std::uint32_t>(overlays_.size())});
    overlays_.push_back(std::make_unique<Overlay>());
    overlays_.back()->tags.push_back({0, NoTag, true, std::string(type)});
    linkBehind(previous, id);
    undo_->created(id);
    changed(id, 0);
    return id;
}

void Drawing::deleteRecord(RecordId id) {
    undo_->touch(id);
    changed(id, 0);
    rows_[id].overlay |= DeletedBit;
}

void Drawing::restoreRecord(RecordId id) {
    undo_->touch(id);
    rows_[id].overlay &= ~DeletedBit;
    changed(id, 0);
}

std::uint64_t Drawing::allocateHandle() {
    if (nextHandle_ == 0) {
        const std::uint64_t seed = parseHandle(headerText(*this, "$HANDSEED", "0"));
        nextHandle_ = std::max({seed, largestHandle() + 1, std::uint64_t{1}});
    }
    return nextHandle_++;
}

bool Drawing::hasHandles() const {
    if (versionNumber_ >= 1012) {
        return true;
    }
    if (const auto handling = headerInteger(*this, "$HANDLING", -1); handling >= 0) {
        return handling != 0;
    }
    // Parts of drawings come without a header; what stands in them tells.
    if (!handlesBuilt_) {
        buildHandles();
    }
    return !handles_.empty();
}

}  // namespace drafthost
