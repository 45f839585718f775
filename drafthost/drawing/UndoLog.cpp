// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/UndoLog.h"

#include <algorithm>

#include "drafthost/drawing/Overlay.h"
#include "drafthost/drawing/Structure.h"

namespace drafthost {

namespace {

/// Records and tags that are kept: some fifty megabytes at most.
constexpr std::size_t KeptAtMost = 1'000'000;
constexpr std::string_view OfPrograms = "LISP";

}  // namespace

struct UndoLog::Saved {
    RecordId id = NoRecord;
    bool deleted = false;
    bool hasTags = false;  ///< tags lay over those of the file, or it is a record that the file has not
    bool made = false;     ///< the step made the record; its tags stay with it
    std::vector<Drawing::Overlay::Tag> tags;
};

struct UndoLog::Step {
    enum class Kind { Edits, Mark, GroupBegin, GroupEnd } kind = Kind::Edits;
    std::string name;
    std::vector<Saved> saved;
    std::uint64_t nextHandle = 0;
    std::size_t size = 0;
};

UndoLog::UndoLog(Drawing& drawing) : drawing_(drawing) {}
UndoLog::~UndoLog() = default;

void UndoLog::enable() {
    enabled_ = true;
    if (!drawing_.modified_) {
        cleanAt_ = 0;
    }
}

void UndoLog::begin(std::string_view name) {
    end();
    name_ = name;
    // Only what was undone just now can be done again.
    if (name != "U" && name != "UNDO" && name != "REDO") {
        dropUndone();
    }
}

void UndoLog::end() {
    open_ = false;
    name_ = OfPrograms;
    touched_.clear();
    lastTouched_ = NoRecord;
}

UndoLog::Step& UndoLog::openStep() {
    if (!open_) {
        dropUndone();
        forgetOldest();
        Step step;
        step.name = name_.empty() ? std::string(OfPrograms) : name_;
        step.nextHandle = drawing_.nextHandle_;
        steps_.push_back(std::move(step));
        ++edits_;
        open_ = true;
    }
    return steps_.back();
}

bool UndoLog::isTouched(RecordId id) {
    if (open_ && id == lastTouched_) {
        return true;
    }
    openStep();
    lastTouched_ = id;
    return !touched_.insert(id).second;
}

void UndoLog::touch(RecordId id) {
    if (!enabled_ || working_ || isTouched(id)) {
        return;
    }
    Saved saved;
    saved.id = id;
    saved.deleted = (drawing_.rows_[id].overlay & DeletedBit) != 0;
    if (const Drawing::Overlay* overlay = drawing_.overlayOf(id)) {
        saved.hasTags = true;
        saved.tags = overlay->tags;
    }
    Step& step = steps_.back();
    step.size += 1 + saved.tags.size();
    kept_ += 1 + saved.tags.size();
    step.saved.push_back(std::move(saved));
}

void UndoLog::created(RecordId id) {
    if (!enabled_ || working_ || isTouched(id)) {
        return;
    }
    Saved saved;
    saved.id = id;
    saved.deleted = true;
    saved.made = true;
    Step& step = steps_.back();
    ++step.size;
    ++kept_;
    step.saved.push_back(std::move(saved));
}

void UndoLog::saved() {
    end();
    cleanAt_ = edits_;
}

/// What was undone cannot be done again, and so the state on the disk may be out of reach.
void UndoLog::dropUndone() {
    undone_.clear();
    if (cleanAt_ && *cleanAt_ > edits_) {
        cleanAt_.reset();
    }
}

void UndoLog::forgetOldest() {
    while (kept_ > KeptAtMost && !steps_.empty()) {
        kept_ -= steps_.front().size;
        steps_.pop_front();
        forgotten_ = true;
    }
}

void UndoLog::setMark() {
    end();
    dropUndone();
    steps_.push_back({.kind = Step::Kind::Mark, .name = {}, .saved = {}});
}

void UndoLog::beginGroup() {
    endGroup();
    dropUndone();
    steps_.push_back({.kind = Step::Kind::GroupBegin, .name = {}, .saved = {}});
    inGroup_ = true;
}

void UndoLog::endGroup() {
    end();
    if (!std::exchange(inGroup_, false)) {
        return;
    }
    if (!steps_.empty() && steps_.back().kind == Step::Kind::GroupBegin) {
        steps_.pop_back();
        return;
    }
    steps_.push_back({.kind = Step::Kind::GroupEnd, .name = {}, .saved = {}});
}

/// What was before comes back, and what is now is kept in its place.
void UndoLog::exchange(Step& step) {
    working_ = true;
    for (Saved& saved : step.saved) {
        Drawing::Row& row = drawing_.rows_[saved.id];
        const bool deleted = (row.overlay & DeletedBit) != 0;
        if (!saved.made) {
            Drawing::Overlay* overlay = drawing_.overlayOf(saved.id);
            const bool had = overlay != nullptr;
            std::vector<Drawing::Overlay::Tag> tags =
                had ? std::move(overlay->tags) : std::vector<Drawing::Overlay::Tag>();
            if (saved.hasTags) {
                (had ? *overlay : drawing_.edit(saved.id)).tags = std::move(saved.tags);
            } else if (had) {
                drawing_.overlays_[row.overlay & ~DeletedBit].reset();
                row.overlay = NoOverlay;
            }
            saved.tags = std::move(tags);
            saved.hasTags = had;
        }
        row.overlay = (row.overlay & ~DeletedBit) | (saved.deleted ? DeletedBit : 0);
        saved.deleted = deleted;
    }
    std::swap(step.nextHandle, drawing_.nextHandle_);
    drawing_.modified_ = cleanAt_ != edits_;
    drawing_.structure_.reset();
    drawing_.handlesBuilt_ = false;
    drawing_.readIdentity();
    working_ = false;
}

/// The last step, or the last group, is undone and put into the batch.
void UndoLog::takeBack(Undone& result, std::vector<Step>& batch) {
    int depth = 0;
    do {
        Step step = std::move(steps_.back());
        steps_.pop_back();
        kept_ -= step.size;
        if (step.kind == Step::Kind::GroupEnd) {
            ++depth;
        } else if (step.kind == Step::Kind::GroupBegin) {
            --depth;
            inGroup_ = inGroup_ && depth >= 0;
        } else if (step.kind == Step::Kind::Edits) {
            --edits_;
            exchange(step);
            result.names.push_back(step.name);
        }
        batch.push_back(std::move(step));
    } while (depth > 0 && !steps_.empty());
}

UndoLog::Undone UndoLog::undo(int count) {
    end();
    Undone result;
    std::vector<Step> batch;
    for (int i = 0; i < count && !result.mark && !result.start; ++i) {
        if (steps_.empty() || steps_.back().kind == Step::Kind::GroupBegin) {
            result.start = true;
            result.forgotten = steps_.empty() && forgotten_;
        } else if (steps_.back().kind == Step::Kind::Mark) {
            result.mark = true;
            if (i == 0) {
                steps_.pop_back();
            }
        } else {
            takeBack(result, batch);
        }
    }
    if (!batch.empty()) {
        undone_.push_back(std::move(batch));
    }
    return result;
}

bool UndoLog::hasMark() const {
    return std::any_of(steps_.begin(), steps_.end(),
                       [](const Step& step) { return step.kind == Step::Kind::Mark; });
}

UndoLog::Undone UndoLog::undoToMark() {
    end();
    Undone result;
    std::vector<Step> batch;
    while (!steps_.empty() && !result.mark) {
        if (steps_.back().kind == Step::Kind::Mark) {
            steps_.pop_back();
            result.mark = true;
        } else {
            takeBack(result, batch);
        }
    }
    result.start = !result.mark;
    result.forgotten = result.start && forgotten_;
    if (!batch.empty()) {
        undone_.push_back(std::move(batch));
    }
    return result;
}

std::vector<std::string> UndoLog::redo() {
    end();
    std::vector<std::string> names;
    if (undone_.empty()) {
        return names;
    }
    std::vector<Step> batch = std::move(undone_.back());
    undone_.pop_back();
    while (!batch.empty()) {
        Step step = std::move(batch.back());
        batch.pop_back();
        if (step.kind == Step::Kind::Edits) {
            ++edits_;
            exchange(step);
            names.push_back(step.name);
        }
        kept_ += step.size;
        steps_.push_back(std::move(step));
    }
    return names;
}

}  // namespace drafthost
