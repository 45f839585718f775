#include "app/RunLogs.h"

#include "log/ZipArchive.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <QFile>
#include <unordered_map>
#include <unordered_set>

namespace {

using Names = std::unordered_set<std::string>;

bool ReadArchiveNames(const std::string& file, Names* names, std::string* error) {
    if (!std::filesystem::exists(file)) {
        return true;
    }
    try {
        CZipArchive archive;
        if (!archive.Open(file, CZipArchive::Existing)) {
            *error = file + ": cannot be read: " + std::strerror(errno);
            return false;
        }
        for (int i = 0; i < archive.Count(); ++i) {
            CFileHeader header;
            archive.GetFileInfo(header, i);
            names->insert(header.Name);
        }
        return true;
    } catch (const CZipException& failure) {
        *error = failure.what();
        return false;
    }
}

std::vector<std::string> MissingIn(const RunLogContent& log, const std::vector<std::string>& drawings) {
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

}  // namespace

bool SetUnfinishedAside(const std::string& folder, const std::string& hostLogs, std::string* error) {
    std::string ignored;
    return (!HasLogsAside(folder) && CheckLogs(folder, {}, &ignored)) ||
           SetLogsAside(folder, hostLogs, error);
}

bool CheckLogs(const std::string& folder, const std::vector<std::string>& drawings, std::string* error) {
    const LogPart files = LogNames(folder);
    RunLogContent log;
    Names packed;
    if (drawings.empty() && !std::filesystem::exists(files.Log)) {
        return true;
    }
    if (!ReadLog(files.Log, &log, error) || !ReadArchiveNames(files.Archive, &packed, error)) {
        return false;
    }
    if (!log.IsWhole) {
        *error = files.Log + ": the run log is not whole: it has no end";
        return false;
    }
    for (const RunLogEntry& entry : log.Entries) {
        if (entry.Kind == RunLogEntry::File && !packed.contains(entry.Id.toStdString())) {
            *error =
                files.Archive + ": the log of " + QFile::encodeName(entry.Name).toStdString() + " is missing";
            return false;
        }
    }
    const std::vector<std::string> missing = MissingIn(log, drawings);
    if (!missing.empty()) {
        *error = files.Log + ": the run log is not whole: " + missing.front() + " is missing";
    }
    return missing.empty();
}

std::vector<std::string> MissingIn(const std::string& folder, const std::vector<std::string>& drawings) {
    RunLogContent log;
    std::string ignored;
    // What cannot be read is told by who looks at the whole.
    ReadLog(LogNames(folder).Log, &log, &ignored);
    return MissingIn(log, drawings);
}
