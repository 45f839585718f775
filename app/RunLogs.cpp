// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunLogs.h"

#include <filesystem>
#include <QFile>
#include <unordered_map>

namespace {

std::vector<std::string> missingIn(const RunLogContent& log, const std::vector<std::string>& drawings) {
    std::unordered_map<std::string, int> told;
    for (const RunLogEntry& entry : log.Entries) {
        if (entry.Kind == RunLogEntry::File) {
            ++told[QFile::encodeName(entry.Name).toStdString()];
        }
    }
    std::vector<std::string> missing;
    for (const std::string& drawing : drawings) {
        if (told[drawing]-- <= 0) {
            missing.push_back(drawing);
        }
    }
    return missing;
}

/// Each entry's log is in the archive, the last one of each drawing says something, and each drawing has an
/// entry.
bool checkEntries(const LogPart& files, const RunLogContent& log, const PackedLogNames& packed,
                  const std::vector<std::string>& drawings, std::string* error) {
    // A full disk leaves empty ones; so may a kill, but then another attempt has a log with something in it.
    std::unordered_map<std::string, bool> isTold;
    for (const RunLogEntry& entry : log.Entries) {
        if (entry.Kind != RunLogEntry::File) {
            continue;
        }
        const std::string drawing = QFile::encodeName(entry.Name).toStdString();
        const auto found = packed.find(entry.Id.toStdString());
        if (found == packed.end()) {
            *error = files.Archive + ": the log of " + drawing + " is missing";
            return false;
        }
        if (entry.Id.endsWith(QLatin1String(CutLog))) {
            *error =
                files.Archive + ": the log of " + drawing + " is not whole: its end could not be written";
            return false;
        }
        isTold[drawing] = found->second;
    }
    for (const auto& [drawing, told] : isTold) {
        if (!told) {
            *error = files.Archive + ": the log of " + drawing + " is empty";
            return false;
        }
    }
    const std::vector<std::string> missing = missingIn(log, drawings);
    if (!missing.empty()) {
        *error = files.Log + ": the run log is not whole: " + missing.front() + " is missing";
    }
    return missing.empty();
}

}  // namespace

bool SetUnfinishedAside(const std::string& folder, std::string* error) {
    std::string ignored;
    return (!HasLogsAside(folder) && CheckLogs(folder, {}, &ignored)) || SetLogsAside(folder, error);
}

bool CheckLogs(const std::string& folder, const std::vector<std::string>& drawings, std::string* error) {
    const LogPart files = LogNames(folder);
    RunLogContent log;
    PackedLogNames packed;
    if (drawings.empty() && !std::filesystem::exists(files.Log)) {
        return true;
    }
    if (!ReadLog(files.Log, &log, error) || !ReadPackedNames(files.Archive, &packed, error)) {
        return false;
    }
    if (!log.IsWhole) {
        *error = files.Log + ": the run log is not whole: it has no end";
        return false;
    }
    return checkEntries(files, log, packed, drawings, error);
}

bool CheckKeptLogs(const std::string& folder, const std::vector<DrawingRecord>& records, std::string* error) {
    std::vector<std::string> drawings;
    for (const DrawingRecord& record : records) {
        const bool isEnded = record.Status == DrawingStatus::Done || record.Status == DrawingStatus::Error ||
                             record.Status == DrawingStatus::Timeout;
        if (isEnded && record.Seconds && record.Host.empty() && !record.EarlierLog) {
            drawings.push_back(record.Path);
        }
    }
    const LogPart files = LogNames(folder);
    RunLogContent log;
    PackedLogNames packed;
    return drawings.empty() ||
           (ReadLog(files.Log, &log, error) && ReadPackedNames(files.Archive, &packed, error) &&
            checkEntries(files, log, packed, drawings, error));
}

std::vector<std::string> MissingIn(const std::string& folder, const std::vector<std::string>& drawings) {
    RunLogContent log;
    std::string ignored;
    // What cannot be read is told by who looks at the whole.
    ReadLog(LogNames(folder).Log, &log, &ignored);
    return missingIn(log, drawings);
}
