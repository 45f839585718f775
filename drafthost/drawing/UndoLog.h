// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "drafthost/drawing/Record.h"

namespace drafthost {

// What a drawing was before each step of work on it: of every record that a step touches, the tags that lay
// over the file's, taken once a step before the first edit. Undoing a step exchanges what was and what is, so
// the bytes afterwards are those before, and redoing it is the same exchange again.
//
// Steps may be grouped (a group is undone as one) and marks set between them. When the tags kept grow beyond
// a limit the oldest steps are forgotten.
class UndoLog {
  public:
    explicit UndoLog(Drawing& drawing);
    ~UndoLog();
    UndoLog(const UndoLog&) = delete;
    UndoLog& operator=(const UndoLog&) = delete;

    /// From here on edits are kept; drawings that nobody works on by commands do without.
    void enable();

    /// What is edited from now on is a step of this name; one without edits is none.
    void begin(std::string_view name);
    /// The step is over; what is edited before the next begin is one of its own.
    void end();

    void setMark();
    /// Steps from here to the end of the group are undone as one. A group that is open ends first.
    void beginGroup();
    void endGroup();

    /// The drawing is on the disk as it is now; undone or done again up to here it counts as unmodified.
    void saved();

    struct Undone {
        std::vector<std::string> names;  ///< of the steps, the latest first
        bool mark = false;               ///< a mark was met
        bool start = false;              ///< there is nothing more to undo
        bool forgotten = false;          ///< there was, but it was too much to keep
    };
    /// Undoes `count` steps or groups; a mark or the beginning of an open group ends it, and a mark that was
    /// met at once is taken away.
    Undone undo(int count);
    /// Undoes everything up to the last mark, which goes, or everything there is.
    Undone undoToMark();
    bool hasMark() const;
    /// Does again what the last undo took back; nothing once the drawing was edited since.
    std::vector<std::string> redo();

    /// While it lives edits are kept by nobody: those that a save makes on its way.
    class Pause {
      public:
        explicit Pause(UndoLog& log) : log_(log), before_(std::exchange(log.working_, true)) {}
        ~Pause() { log_.working_ = before_; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

      private:
        UndoLog& log_;
        bool before_;
    };

  private:
    friend class Drawing;
    struct Saved;
    struct Step;

    // For the drawing, before it edits a record or behind having made one.
    void touch(RecordId id);
    void created(RecordId id);

    Step& openStep();
    bool isTouched(RecordId id);
    void exchange(Step& step);
    void takeBack(Undone& result, std::vector<Step>& batch);
    void forgetOldest();
    void dropUndone();

    Drawing& drawing_;
    bool enabled_ = false;
    bool working_ = false;  ///< it edits the drawing itself
    bool open_ = false;     ///< the last step still grows
    bool forgotten_ = false;
    bool inGroup_ = false;
    std::string name_;
    RecordId lastTouched_ = NoRecord;
    std::unordered_set<RecordId> touched_;
    std::deque<Step> steps_;
    std::vector<std::vector<Step>> undone_;
    std::size_t edits_ = 0;               ///< steps with edits that are done, forgotten ones among them
    std::optional<std::size_t> cleanAt_;  ///< how many of them the file has
    std::size_t kept_ = 0;                ///< records and tags in all steps
};

}  // namespace drafthost
