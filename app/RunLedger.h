// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What is known of each drawing of a run while it goes on. Status events say how far a drawing is; how long
// it took and the last thing the host said about it stand nowhere on disk and are gathered here.
#include "app/HostEvent.h"
#include "app/QueueEntry.h"

#include <chrono>
#include <limits>
#include <optional>
#include <string>
#include <vector>

struct DrawingRecord {
    std::string Path;
    DrawingStatus Status = DrawingStatus::ToDo;
    /// Given when the drawing was in work in this run.
    std::optional<double> Seconds;
    /// The host's last message while the drawing was in work.
    std::string Message;
    /// How the host died with this drawing in work: "died, signal 11". It stays when a second attempt went
    /// well.
    std::string Host;
    /// What was refused, each with its line: the first of them, and how many there were.
    std::vector<std::string> Refused;
    std::size_t RefusedCount = 0;
    /// Paths that were written.
    std::vector<std::string> Saved;
    /// It was left with changes, beyond its view, that nothing has saved.
    bool Changed = false;
    /// It was in work or passed over in this run, and that has come to its end.
    bool Settled = false;
    /// Its entry stood in a log that a later run over the same queue has replaced.
    bool EarlierLog = false;
};

/// The status as the user sees it: "Done, not saved", "Done, 3 refused".
std::string StatusText(const DrawingRecord& record);

class RunLedger {
  public:
    using Clock = std::chrono::steady_clock;

    /// queue holds the drawings in the order of the run; the script's file has so many lines in front of what
    /// the module runs.
    explicit RunLedger(const std::vector<QueueEntry>& queue, std::size_t linesInFront = 0);

    /// Takes an event. The drawings that are settled by it, in order: the one in work before the next began,
    /// and one that was passed over as Locked.
    std::vector<const DrawingRecord*> Take(const HostEvent& event, Clock::time_point now);
    /// The run or the host has ended: settles the drawing in work, if there is one. host is empty or how the
    /// host died.
    const DrawingRecord* Settle(Clock::time_point now, const std::string& host = {});
    /// Takes over what was told in an earlier run, by place in the queue, of drawings that were not in work
    /// since and stand as they did then.
    void Recall(const std::vector<std::optional<DrawingRecord>>& earlier);
    /// The run has begun a log of its own: what was not in work in it stands there no more.
    void StartLog();
    /// Takes over what is on disk of the drawing in work, which its host may not have told any more.
    void CatchUp(const RunQueue& saved);
    /// What a host that died has left in work: drawings that stand on disk as being opened or worked on and
    /// whose end was not told. Places in the queue.
    std::vector<std::size_t> LeftInWork(const RunQueue& saved) const;
    /// The drawing waits again, after a host that died with it in work.
    void TakeBack(std::size_t place, const std::string& host);
    /// The drawing waits again as if it had not been in work.
    void LetWait(std::size_t place);
    /// Takes over what another ledger knows; places tells for each of its drawings where it stands here.
    void Adopt(const RunLedger& share, const std::vector<std::size_t>& places);
    /// Takes over the statuses on disk. False when a drawing stands there as less than was told here, or when
    /// it is another queue: the state was not saved.
    bool Reconcile(const RunQueue& saved);

    const std::vector<DrawingRecord>& Records() const { return records; }
    /// Where a record of this ledger stands in the queue.
    std::size_t PlaceOf(const DrawingRecord& record) const {
        return static_cast<std::size_t>(&record - records.data());
    }
    /// The drawing in work; null when none is.
    const DrawingRecord* Current() const { return current; }
    Clock::time_point CurrentSince() const { return since; }
    std::size_t Count(DrawingStatus status) const;

  private:
    /// The drawing that an event is about; null when the queue has no such entry.
    DrawingRecord* entryOf(const HostEvent& event);
    /// The line of a script that was refused, as the user counts it: "script line 2: ", "inner.scr, line 2:
    /// ".
    std::string refusedLine(const HostEvent& event) const;

    std::vector<DrawingRecord> records;
    DrawingRecord* current = nullptr;
    /// It has its first status, and its turn has not been told.
    DrawingRecord* coming = nullptr;
    /// The prompt at which the drawing in work waits, if it does.
    std::string prompt;
    /// Why the drawing in work is no drawing Done, when the module has said so itself.
    std::string reason;
    /// Lines of the user's script that were taken off it.
    std::size_t takenOff;
    /// Lines of the module's own in front of it, its own lines where they were told, and the files in which
    /// it runs.
    std::size_t head = 2;
    std::size_t lines = std::numeric_limits<std::size_t>::max();
    std::vector<std::string> scripts;
    Clock::time_point since;
};
