// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Drawing.h"

#include "drafthost/drawing/FileBytes.h"
#include "drafthost/drawing/Overlay.h"
#include "drafthost/drawing/Structure.h"
#include "drafthost/drawing/UndoLog.h"

#include <algorithm>
#include <cstring>

namespace drafthost {

Drawing::Drawing() : undo_(std::make_unique<UndoLog>(*this)) {}
Drawing::~Drawing() = default;

std::unique_ptr<Drawing> Drawing::open(const std::string& path, std::string& error) {
    std::string bytes;
    // A NUL ends a drawing in text for good, unless it stands behind the EOF tag.
    bool judged = false;
    const auto mayBecomeADrawing = [&judged](const std::string& read, std::size_t from) {
        if (from == 0 && !TagIndex::canBegin(read)) {
            return false;
        }
        judged = judged || TagIndex::isBinary(read);
        if (judged || read.find('\0', from) == std::string::npos) {
            return true;
        }
        judged = true;
        std::string cause;
        return TagIndex().build(read, cause);
    };
    if (!readFile(path, bytes, error, mayBecomeADrawing)) {
        return nullptr;
    }
    return parse(std::move(bytes), path, error);
}

std::unique_ptr<Drawing> Drawing::parse(std::string bytes, const std::string& name, std::string& error) {
    std::unique_ptr<Drawing> drawing(new Drawing);
    if (!drawing->load(std::move(bytes), name, error)) {
        return nullptr;
    }
    return drawing;
}

bool Drawing::load(std::string bytes, const std::string& name, std::string& error) {
    name_ = name;
    bytes_ = std::move(bytes);
    std::string cause;
    if (!index_.build(bytes_, cause)) {
        error = name + (cause.starts_with("line ") || cause.starts_with("offset ") ? ", " : ": ") + cause;
        return false;
    }
    const std::uint32_t records = index_.recordCount();
    const std::uint32_t front = index_.recordTags()[0] != 0 ? 1 : 0;
    for (std::uint32_t tag = 0; front != 0 && tag < index_.recordTags()[0]; ++tag) {
        if (index_.code(tag) != 999) {
            error = name + ", line " + std::to_string(2 * tag + 1) + ": group code " +
                    std::to_string(index_.code(tag)) + " in front of the first section";
            return false;
        }
    }
    originals_ = records + front;
    rows_.reserve(originals_ + 1);
    if (front != 0) {
        rows_.push_back({0, NoOverlay});
    }
    for (std::uint32_t i = 0; i < records; ++i) {
        rows_.push_back({index_.recordTags()[i], NoOverlay});
    }
    rows_.push_back({index_.size(), NoOverlay});
    const std::string_view opening = type(front);
    if (opening != "SECTION" && opening != "EOF") {
        const bool ascii = !index_.binary();
        error = name + (ascii ? ", line " + std::to_string(2 * rows_[front].firstTag + 2) : ", offset 22") +
                ": no SECTION at the beginning";
        return false;
    }
    readIdentity();
    return true;
}

// Version and code page decide how every string reads, so they are looked for at once; they stand among the
// first variables of the header, which is the first section where there is one.
void Drawing::readIdentity() {
    RecordId header = first();
    while (header != NoRecord && (type(header) != "SECTION" || record(header).textOr(2, "") != "HEADER")) {
        header = next(header);
    }
    if (header != NoRecord) {
        const Record record = this->record(header);
        for (std::size_t i = 0; i + 1 < record.size(); ++i) {
            if (record.code(i) != 9) {
                continue;
            }
            const std::string_view name = record.raw(i);
            if (name.starts_with("$ACADVER")) {
                version_ = record.text(i + 1);
                version_.erase(version_.find_last_not_of(" \t") + 1);
            } else if (name.starts_with("$DWGCODEPAGE")) {
                codePage_ = record.text(i + 1);
            }
        }
    }
    if (version_.starts_with("AC")) {
        versionNumber_ = static_cast<int>(parseInteger(std::string_view(version_).substr(2)));
    }
    codec_ = TextCodec(versionNumber_, codePage_);
}

Drawing::Overlay* Drawing::overlayOf(RecordId id) const {
    const std::uint32_t slot = rows_[id].overlay & ~DeletedBit;
    return slot == NoOverlay ? nullptr : overlays_[slot].get();
}

RecordId Drawing::placeNow(RecordId id) const {
    while (!isAlive(id)) {
        const auto found = movedTo_.find(id);
        if (found == movedTo_.end()) {
            break;
        }
        id = found->second;
    }
    return id;
}

RecordId Drawing::activeViewport() const {
    return activeViewport_ != NoRecord && isAlive(activeViewport_) ? activeViewport_ : NoRecord;
}

RecordId Drawing::first() const {
    return isAlive(0) ? 0 : next(0);
}

// The row behind the last original record is a mark for the end, so that new ids begin behind it.
RecordId Drawing::next(RecordId id) const {
    do {
        if (id > originals_) {
            const Overlay& overlay = *overlayOf(id);
            id = overlay.next != NoRecord ? overlay.next : overlay.anchor + 1;
        } else {
            const auto chain = chains_.empty() ? chains_.end() : chains_.find(id);
            id = chain != chains_.end() ? chain->second.first : id + 1;
        }
        if (id == originals_) {
            return NoRecord;
        }
    } while (!isAlive(id));
    return id;
}

RecordId Drawing::previous(RecordId id) const {
    do {
        if (id > originals_) {
            const Overlay& overlay = *overlayOf(id);
            id = overlay.previous != NoRecord ? overlay.previous : overlay.anchor;
        } else if (id == 0) {
            return NoRecord;
        } else {
            const auto chain = chains_.empty() ? chains_.end() : chains_.find(id - 1);
            id = chain != chains_.end() ? chain->second.second : id - 1;
        }
    } while (!isAlive(id));
    return id;
}

bool Drawing::isAlive(RecordId id) const {
    return id < rows_.size() && id != originals_ && (rows_[id].overlay & DeletedBit) == 0;
}

bool Drawing::isWithin(RecordId id, RecordId begin, RecordId end) const {
    if (begin == NoRecord || end == NoRecord) {
        return false;
    }
    const auto place = [this](RecordId record) {
        const Overlay* added = record > originals_ ? overlayOf(record) : nullptr;
        return added != nullptr ? added->anchor : record;
    };
    const RecordId at = place(id);
    if (at < place(begin) || at > place(end)) {
        return false;
    }
    if (at > place(begin) && at < place(end)) {
        return true;
    }
    // New records behind one of the two: their chain tells.
    for (RecordId before = previous(id); before != NoRecord && before != end; before = previous(before)) {
        if (before == begin) {
            return true;
        }
    }
    return false;
}

Record Drawing::record(RecordId id) const {
    const Row& row = rows_[id];
    if (const Overlay* overlay = overlayOf(id)) {
        return Record(*this, id, 0, static_cast<std::uint32_t>(overlay->tags.size()), overlay);
    }
    return Record(*this, id, row.firstTag, rows_[id + 1].firstTag - row.firstTag, nullptr);
}

namespace {

std::optional<std::size_t> handleTag(const Record& record) {
    const int wanted = record.type() == "DIMSTYLE" ? 105 : 5;
    for (std::size_t i = 1; i < record.size(); ++i) {
        const int code = record.code(i);
        if (code == wanted) {
            return i;
        }
        // In a section's head 5 means other things ($HANDSEED), and behind these codes no handle follows.
        if (code == 9 || code >= 1000) {
            break;
        }
    }
    return std::nullopt;
}

}  // namespace

std::uint64_t Drawing::handle(RecordId id) const {
    const Record record = this->record(id);
    const auto tag = handleTag(record);
    return tag ? record.handle(*tag) : 0;
}

void Drawing::buildHandles() const {
    handles_.clear();
    for (RecordId id = first(); id != NoRecord; id = next(id)) {
        if (const std::uint64_t handle = this->handle(id); handle != 0) {
            handles_.try_emplace(handle, id);
        }
    }
    handlesBuilt_ = true;
}

RecordId Drawing::findHandle(std::uint64_t handle) const {
    if (handle == 0) {
        return NoRecord;
    }
    if (!handlesBuilt_) {
        buildHandles();
    }
    const auto found = handles_.find(handle);
    return found != handles_.end() && isAlive(found->second) ? found->second : NoRecord;
}

std::uint64_t Drawing::largestHandle() const {
    std::uint64_t largest = 0;
    for (RecordId id = first(); id != NoRecord; id = next(id)) {
        largest = std::max(largest, handle(id));
    }
    return largest;
}

}  // namespace drafthost
