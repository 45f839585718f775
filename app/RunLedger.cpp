#include "app/RunLedger.h"

#include <algorithm>

RunLedger::RunLedger(const std::vector<QueueEntry>& queue) {
    records.reserve(queue.size());
    for (const QueueEntry& entry : queue) {
        indices.emplace(entry.Path, records.size());
        records.push_back({entry.Path, entry.Status, {}, {}, {}});
    }
}

std::vector<const DrawingRecord*> RunLedger::Take(const HostLine& line, Clock::time_point now) {
    std::vector<const DrawingRecord*> settled;
    const auto settle = [&] {
        if (const DrawingRecord* record = Settle(now)) {
            settled.push_back(record);
        }
    };
    switch (line.What) {
        case HostLine::Kind::File:
            settle();
            current = Find(line.Text);
            since = now;
            if (current) {
                current->Message.clear();
                prompt.clear();
                current->Status = DrawingStatus::FailOpen;
            }
            break;
        case HostLine::Kind::Status:
            if (DrawingRecord* record = Find(line.Text)) {
                // The next drawing is FailOpen just before its own "file" line.
                if (record != current) {
                    settle();
                }
                record->Status = line.Status;
                if (line.Status == DrawingStatus::Locked) {
                    settled.push_back(record);
                }
            }
            break;
        case HostLine::Kind::RunEnded:
            settle();
            break;
        case HostLine::Kind::Talk:
        case HostLine::Kind::Message:
            if (current) {
                current->Message = line.Text;
                prompt.clear();
            }
            break;
        case HostLine::Kind::Prompt:
            prompt = line.Text;
            break;
        default:
            break;
    }
    return settled;
}

const DrawingRecord* RunLedger::Settle(Clock::time_point now, const std::string& host) {
    DrawingRecord* settled = current;
    if (settled) {
        settled->Seconds = std::chrono::duration<double>(now - since).count();
        // A drawing that is Done has not cost the host its life.
        if (!host.empty() && settled->Status != DrawingStatus::Done) {
            settled->Host = host;
        }
        // A script that stopped for an error leaves its command waiting; the error says more.
        if (settled->Status != DrawingStatus::Done && settled->Message.empty()) {
            settled->Message = prompt;
        }
        current = nullptr;
    }
    return settled;
}

void RunLedger::Recall(const std::vector<DrawingRecord>& earlier) {
    std::unordered_map<std::string_view, const DrawingRecord*> known;
    for (const DrawingRecord& record : earlier) {
        known.emplace(record.Path, &record);
    }
    for (DrawingRecord& record : records) {
        const auto found = known.find(record.Path);
        if (found != known.end() && record.Status != DrawingStatus::ToDo && !record.Seconds &&
            found->second->Status == record.Status) {
            record = *found->second;
        }
    }
}

void RunLedger::CatchUp(const std::vector<QueueEntry>& saved) {
    for (const QueueEntry& entry : saved) {
        DrawingRecord* const record = Find(entry.Path);
        if (record != nullptr && record == current) {
            record->Status = entry.Status;
        }
    }
}

std::vector<std::string> RunLedger::LeftInWork(const std::vector<QueueEntry>& saved) const {
    std::vector<std::string> left;
    for (const QueueEntry& entry : saved) {
        const auto found = indices.find(entry.Path);
        if (found == indices.end() ||
            (entry.Status != DrawingStatus::FailOpen && entry.Status != DrawingStatus::Error)) {
            continue;
        }
        // The host may have saved a drawing's status and died before it could say so.
        const DrawingRecord& record = records[found->second];
        if (&record == current || record.Status == DrawingStatus::ToDo) {
            left.push_back(entry.Path);
        }
    }
    return left;
}

void RunLedger::TakeBack(const std::string& path, const std::string& host) {
    if (DrawingRecord* record = Find(path)) {
        record->Status = DrawingStatus::ToDo;
        record->Host = host;
        current = record == current ? nullptr : current;
    }
}

void RunLedger::Adopt(const RunLedger& share) {
    for (const auto& [path, index] : share.indices) {
        if (DrawingRecord* record = Find(path)) {
            *record = share.records[index];
        }
    }
}

bool RunLedger::Reconcile(const std::vector<QueueEntry>& saved) {
    bool same = true;
    std::size_t found = 0;
    for (const QueueEntry& entry : saved) {
        if (DrawingRecord* record = Find(entry.Path)) {
            ++found;
            if (record->Status != entry.Status) {
                // What was told and not saved is still the better knowledge.
                if (record->Seconds && entry.Status == DrawingStatus::ToDo) {
                    same = false;
                } else {
                    record->Status = entry.Status;
                }
            }
        }
    }
    return same && found == records.size();
}

std::size_t RunLedger::Count(DrawingStatus status) const {
    return static_cast<std::size_t>(
        std::count_if(records.begin(), records.end(),
                      [status](const DrawingRecord& record) { return record.Status == status; }));
}

DrawingRecord* RunLedger::Find(const std::string& path) {
    const auto found = indices.find(path);
    return found == indices.end() ? nullptr : &records[found->second];
}
