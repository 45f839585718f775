// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunLedger.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace {
/// So many of the lines that were refused are kept.
constexpr std::size_t MostRefused = 100;
}  // namespace

std::string StatusText(const DrawingRecord& record) {
    std::string text = StatusWord(record.Status);
    if (record.Status == DrawingStatus::Done && record.Changed) {
        text += ", not saved";
    }
    if (record.Status == DrawingStatus::Done && record.RefusedCount > 0) {
        text += ", " + std::to_string(record.RefusedCount) + " refused";
    }
    return text;
}

RunLedger::RunLedger(const std::vector<QueueEntry>& queue, std::size_t linesInFront)
    : takenOff(linesInFront) {
    records.reserve(queue.size());
    for (const QueueEntry& entry : queue) {
        DrawingRecord& record = records.emplace_back();
        record.Path = entry.Path;
        record.Status = entry.Status;
    }
}

std::vector<const DrawingRecord*> RunLedger::Take(const HostEvent& event, Clock::time_point now) {
    std::vector<const DrawingRecord*> settled;
    const auto settle = [&] {
        if (const DrawingRecord* record = Settle(now)) {
            settled.push_back(record);
        }
    };
    switch (event.What) {
        case HostEvent::Kind::File:
            coming = nullptr;
            settle();
            current = entryOf(event);
            since = now;
            if (current) {
                current->Message.clear();
                current->Refused.clear();
                current->RefusedCount = 0;
                current->Saved.clear();
                current->Changed = false;
                prompt.clear();
                reason.clear();
                current->Status = DrawingStatus::FailOpen;
            }
            break;
        case HostEvent::Kind::Status:
            if (DrawingRecord* record = entryOf(event)) {
                // The next drawing is FailOpen just before its own "file" event.
                if (record != current) {
                    settle();
                }
                record->Status = event.Status;
                if (event.Status == DrawingStatus::FailOpen && record != current) {
                    coming = record;
                    since = now;
                }
                record->Changed = record == current && event.Changed;
                if (event.Status == DrawingStatus::Locked) {
                    record->Message = event.Reason;
                    record->Settled = true;
                    settled.push_back(record);
                }
            }
            break;
        case HostEvent::Kind::RunEnded:
            settle();
            break;
        case HostEvent::Kind::Talk:
        case HostEvent::Kind::Message:
            if (current) {
                current->Message = event.Text;
                prompt.clear();
            }
            break;
        case HostEvent::Kind::RunStarted:
            head = event.Line;
            lines = event.Lines > 0 ? event.Lines : lines;
            scripts = event.Scripts;
            break;
        case HostEvent::Kind::Refused:
            if (current && ++current->RefusedCount <= MostRefused) {
                current->Refused.push_back(refusedLine(event) + event.Text);
            }
            break;
        case HostEvent::Kind::Unsaved:
            reason = event.Text;
            break;
        case HostEvent::Kind::Saved:
            // A path once, however often the script saves.
            if (current &&
                std::find(current->Saved.begin(), current->Saved.end(), event.Text) == current->Saved.end()) {
                current->Saved.push_back(event.Text);
            }
            break;
        case HostEvent::Kind::Prompt:
            prompt = event.Text;
            break;
        default:
            break;
    }
    return settled;
}

const DrawingRecord* RunLedger::Settle(Clock::time_point now, const std::string& host) {
    DrawingRecord* settled = current ? current : std::exchange(coming, nullptr);
    if (settled) {
        settled->Settled = true;
        settled->Seconds = std::chrono::duration<double>(now - since).count();
        // A drawing that is Done has not cost the host its life.
        if (!host.empty() && settled->Status != DrawingStatus::Done) {
            settled->Host = host;
        }
        // What went wrong first says more than what followed from it.
        if (settled->Status == DrawingStatus::Error && !reason.empty()) {
            settled->Message = reason;
        } else if (settled->Status != DrawingStatus::Done && !settled->Refused.empty()) {
            settled->Message = settled->Refused.front();
        }
        // A script that stopped for an error leaves its command waiting; the error says more.
        if (settled->Status != DrawingStatus::Done && settled->Message.empty()) {
            settled->Message = prompt;
        }
        current = nullptr;
    }
    return settled;
}

void RunLedger::Recall(const std::vector<std::optional<DrawingRecord>>& earlier) {
    for (std::size_t i = 0; i < std::min(earlier.size(), records.size()); ++i) {
        DrawingRecord& record = records[i];
        if (earlier[i] && earlier[i]->Status == record.Status && record.Status != DrawingStatus::ToDo &&
            !record.Seconds) {
            const std::string path = record.Path;
            record = *earlier[i];
            record.Path = path;
        }
    }
}

void RunLedger::StartLog() {
    for (DrawingRecord& record : records) {
        record.EarlierLog = !record.Seconds;
    }
}

void RunLedger::CatchUp(const RunQueue& saved) {
    const std::size_t place = current ? PlaceOf(*current) : saved.size();
    if (place < saved.size()) {
        current->Status = saved[place].Status;
    }
}

std::vector<std::size_t> RunLedger::LeftInWork(const RunQueue& saved) const {
    std::vector<std::size_t> left;
    for (std::size_t i = 0; i < std::min(saved.size(), records.size()); ++i) {
        const bool inWork =
            saved[i].Status == DrawingStatus::FailOpen || saved[i].Status == DrawingStatus::Error;
        // The host may have saved a drawing's status and died before it could say so.
        if (inWork &&
            (&records[i] == current || &records[i] == coming || records[i].Status == DrawingStatus::ToDo)) {
            left.push_back(i);
        }
    }
    return left;
}

void RunLedger::TakeBack(std::size_t place, const std::string& host) {
    DrawingRecord& record = records[place];
    record.Status = DrawingStatus::ToDo;
    record.Host = host;
    current = &record == current ? nullptr : current;
    coming = &record == coming ? nullptr : coming;
}

void RunLedger::LetWait(std::size_t place) {
    DrawingRecord fresh;
    fresh.Path = records[place].Path;
    fresh.Host = records[place].Host;
    records[place] = std::move(fresh);
}

void RunLedger::Adopt(const RunLedger& share, const std::vector<std::size_t>& places) {
    for (std::size_t i = 0; i < share.records.size(); ++i) {
        records[places[i]] = share.records[i];
    }
}

bool RunLedger::Reconcile(const RunQueue& saved) {
    bool same = saved.size() == records.size();
    for (std::size_t i = 0; same && i < saved.size(); ++i) {
        DrawingRecord& record = records[i];
        // What was told and not saved is still the better knowledge.
        if (record.Status != saved[i].Status && record.Seconds && saved[i].Status == DrawingStatus::ToDo) {
            same = false;
        } else {
            record.Status = saved[i].Status;
        }
    }
    return same;
}

std::size_t RunLedger::Count(DrawingStatus status) const {
    return static_cast<std::size_t>(
        std::count_if(records.begin(), records.end(),
                      [status](const DrawingRecord& record) { return record.Status == status; }));
}

std::string RunLedger::refusedLine(const HostEvent& event) const {
    if (!scripts.empty() && std::find(scripts.begin(), scripts.end(), event.Script) == scripts.end()) {
        return std::filesystem::path(event.Script).filename().string() + ", line " +
               std::to_string(event.Line) + ": ";
    }
    // Behind the user's script it is its last line that has left something open.
    return event.Line > head
               ? "script line " + std::to_string(std::min(event.Line - head, lines) + takenOff) + ": "
               : "";
}

DrawingRecord* RunLedger::entryOf(const HostEvent& event) {
    const bool fits = event.Entry < records.size() && records[event.Entry].Path == event.Text;
    return fits ? &records[event.Entry] : nullptr;
}
