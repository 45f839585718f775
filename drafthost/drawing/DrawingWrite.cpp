// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/FileBytes.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Overlay.h"
#include "drafthost/drawing/UndoLog.h"

#include <algorithm>
#include <chrono>
#include <ctime>

namespace drafthost {

namespace {

constexpr double JulianOfEpoch = 2440587.5;
constexpr double SecondsADay = 86400;

void addPiece(std::vector<std::string_view>& pieces, std::string_view piece) {
    if (piece.empty()) {
        return;
    }
    if (!pieces.empty() && pieces.back().data() + pieces.back().size() == piece.data()) {
        pieces.back() = {pieces.back().data(), pieces.back().size() + piece.size()};
    } else {
        pieces.push_back(piece);
    }
}

// Nine digits after the point are what a double holds of a day count.
double roundedDate(double seconds) {
    return parseReal(formatReal(JulianOfEpoch + seconds / SecondsADay, 9));
}

}  // namespace

// Code line, or code bytes, of a new tag.
std::string Drawing::codeBytes(int code) const {
    if (!isBinary()) {
        std::string text = std::to_string(code);
        const auto width = static_cast<std::size_t>(index_.codeWidth());
        if (text.size() < width) {
            text.insert(0, width - text.size(), ' ');
        }
        return text.append(index_.lineEnd());
    }
    const char low = static_cast<char>(code & 0xFF);
    const char high = static_cast<char>(code >> 8 & 0xFF);
    if (index_.codeBytes() == 2) {
        return {low, high};
    }
    return code >= 255 ? std::string{static_cast<char>(255), low, high} : std::string{low};
}

void Drawing::appendPieces(RecordId id, std::vector<std::string_view>& pieces,
                           std::deque<std::string>& scratch) const {
    const std::string_view bytes = bytes_;
    for (const Overlay::Tag& tag : overlayOf(id)->tags) {
        if (!tag.ownValue) {
            const std::uint32_t begin = index_.tagBegin(bytes, tag.source);
            addPiece(pieces, bytes.substr(begin, index_.tagEnd(bytes, tag.source) - begin));
            continue;
        }
        const bool chunk = isBinary() && kindOf(tag.code) == ValueKind::Chunk;
        if (tag.source != NoTag && !chunk) {
            const std::uint32_t begin = index_.tagBegin(bytes, tag.source);
            const std::uint32_t valueEnd = index_.valueEnd(bytes, tag.source);
            addPiece(pieces, bytes.substr(begin, index_.valueBegin(tag.source) - begin));
            addPiece(pieces, tag.raw);
            addPiece(pieces, bytes.substr(valueEnd, index_.tagEnd(bytes, tag.source) - valueEnd));
            continue;
        }
        std::string text = codeBytes(tag.code);
        if (chunk) {
            text += static_cast<char>(tag.raw.size());
        }
        text += tag.raw;
        if (!isBinary()) {
            text += index_.lineEnd();
        } else if (!chunk && isTextKind(kindOf(tag.code))) {
            text += '\0';
        }
        addPiece(pieces, scratch.emplace_back(std::move(text)));
    }
}

// The file as stretches of the source and of new tags, in order.
std::vector<std::string_view> Drawing::pieces(std::deque<std::string>& scratch) const {
    const std::string_view bytes = bytes_;
    std::vector<std::string_view> result;
    std::uint32_t from = 0;
    for (RecordId id = 0; id < originals_; ++id) {
        const bool touched = rows_[id].overlay != NoOverlay;
        const auto chain = chains_.empty() ? chains_.end() : chains_.find(id);
        if (!touched && chain == chains_.end()) {
            continue;
        }
        const auto beginOf = [&](RecordId record) {
            return record < originals_ ? index_.tagBegin(bytes, rows_[record].firstTag) : index_.end();
        };
        if (touched) {
            addPiece(result, bytes.substr(from, beginOf(id) - from));
            if (isAlive(id)) {
                appendPieces(id, result, scratch);
            }
            from = beginOf(id + 1);
        }
        if (chain != chains_.end()) {
            const std::uint32_t end = beginOf(id + 1);
            addPiece(result, bytes.substr(from, end - from));
            from = end;
            for (RecordId added = chain->second.first; added != NoRecord; added = overlayOf(added)->next) {
                if (isAlive(added)) {
                    appendPieces(added, result, scratch);
                }
            }
        }
    }
    addPiece(result, bytes.substr(from));
    return result;
}

std::string Drawing::serialise() const {
    std::deque<std::string> scratch;
    const auto list = pieces(scratch);
    std::size_t size = 0;
    for (const std::string_view piece : list) {
        size += piece.size();
    }
    std::string bytes;
    bytes.reserve(size);
    for (const std::string_view piece : list) {
        bytes += piece;
    }
    return bytes;
}

// What a save must touch: a seed that is not above every handle would make other programs give a handle
// twice, and the date of the last change.
void Drawing::updateHeaderForSave() {
    const UndoLog::Pause pause(*undo_);
    const bool edited = modified_;
    if (const auto seed = headerVariable(*this, "$HANDSEED"); seed || (nextHandle_ != 0 && hasHandles())) {
        const std::string* text = seed ? std::get_if<std::string>(&seed->value) : nullptr;
        const std::uint64_t needed = std::max(largestHandle() + 1, nextHandle_);
        if (text == nullptr || parseHandle(*text) < needed) {
            setHeader(*this, "$HANDSEED", 5, formatHandle(needed));
        }
    }
    if (edited) {
        setDates({"$TDUPDATE"}, {"$TDUUPDATE"});
    }
}

void Drawing::setDates(std::initializer_list<const char*> local,
                       std::initializer_list<const char*> universal) {
    const auto now = std::chrono::system_clock::now();
    const double seconds = std::chrono::duration<double>(now.time_since_epoch()).count();
    const std::time_t whole = std::chrono::system_clock::to_time_t(now);
    std::tm clock{};
    localtime_r(&whole, &clock);
    const auto set = [this](std::initializer_list<const char*> names, double date) {
        for (const char* name : names) {
            if (headerVariable(*this, name)) {
                setHeader(*this, name, 40, roundedDate(date));
            }
        }
    };
    set(local, seconds + static_cast<double>(clock.tm_gmtoff));
    set(universal, seconds);
}

bool Drawing::save(const std::string& path, std::string& error) {
    const bool edited = modified_;
    updateHeaderForSave();
    std::deque<std::string> scratch;
    const bool saved = replaceFile(path, pieces(scratch), error);
    modified_ = edited && !saved;
    return saved;
}

bool Drawing::saveAs(const std::string& path, const SaveFormat& format, std::string& error) {
    const bool edited = modified_;
    updateHeaderForSave();
    modified_ = edited;
    if (format.binary == isBinary() && format.decimals >= 16) {
        std::deque<std::string> scratch;
        return replaceFile(path, pieces(scratch), error);
    }
    std::string bytes;
    std::string cause;
    if (!convert(format, bytes, cause)) {
        error = path + ": " + cause;
        return false;
    }
    return replaceFile(path, {bytes}, error);
}

}  // namespace drafthost
