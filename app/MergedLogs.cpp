// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MergedLogs.h"

#include "app/LogFile.h"
#include "app/LogParts.h"
#include "zip/ZipArchive.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <QFile>
#include <QHash>
#include <set>
#include <unordered_map>

namespace fs = std::filesystem;

namespace {

constexpr int Level = 9;

struct Part {
    LogPart Files;
    /// Which entries of the archive are wanted, and their names in the merged one.
    std::unordered_map<std::string, QString> Names;
};

struct Line {
    std::time_t Time;
    RunLogEntry Entry;
    Part* From;
};

/// The time of a line, in the form of the user's locale; that of the line before when it has none.
std::time_t timeOf(const RunLogEntry& entry, std::time_t before) {
    static const locale_t user = newlocale(LC_TIME_MASK, "", locale_t{});
    std::tm time{};
    time.tm_isdst = -1;
    const bool known =
        user && strptime_l(EncodeRunLog(entry.Time).constData(), "%x %X", &time, user) != nullptr;
    return known ? std::mktime(&time) : before;
}

/// Of a drawing that was begun more often than it stands in the queue, only the last attempts count; so does
/// an entry that stands in two parts because an earlier joining was broken off.
void dropFirstAttempts(std::vector<Line>* lines, const std::vector<std::string>& drawings) {
    QHash<QString, int> left;
    for (const std::string& drawing : drawings) {
        ++left[QFile::decodeName(drawing.c_str())];
    }
    std::set<std::pair<QString, QString>> seen;
    std::reverse(lines->begin(), lines->end());
    std::erase_if(*lines, [&](const Line& line) {
        const RunLogEntry& entry = line.Entry;
        if (entry.Kind != RunLogEntry::File) {
            return false;
        }
        if (!entry.Id.isEmpty() && !seen.emplace(entry.Id, entry.Name).second) {
            return true;
        }
        auto count = left.find(entry.Name);
        if (count == left.end()) {
            count = left.insert(entry.Name, 1);
        }
        return (*count)-- <= 0;
    });
    std::reverse(lines->begin(), lines->end());
}

/// Hosts on several machines may have named two logs alike.
void nameEntries(std::vector<Line>* lines) {
    std::set<QString> taken;
    for (Line& line : *lines) {
        RunLogEntry& entry = line.Entry;
        if (entry.Id.isEmpty()) {
            continue;
        }
        const auto [known, isNew] = line.From->Names.try_emplace(entry.Id.toStdString(), entry.Id);
        for (int number = 2; isNew && !taken.insert(known->second).second; ++number) {
            known->second = entry.Id + QStringLiteral("-%1").arg(number);
        }
        if (known->second != entry.Id) {
            entry.Html = ProcessingHtml(known->second, entry.Name);
        }
    }
}

QString textOf(const Line& line) {
    return RunLogLineText(line.Entry.Time, line.Entry.Html);
}

/// A log that lacks text has another name in the archive, and its drawing's entry then leads there.
void linkCutLogs(RunLogContent* log, const PackedLogNames& packed) {
    for (RunLogEntry& entry : log->Entries) {
        const QString cut = entry.Id + QLatin1String(CutLog);
        if (!entry.Id.isEmpty() && !packed.contains(entry.Id.toStdString()) &&
            packed.contains(cut.toStdString())) {
            entry.Id = cut;
            entry.Html = ProcessingHtml(cut, entry.Name);
        }
    }
}

/// Also tells each part which of its entries the text links to.
bool mergedText(std::vector<Part>* parts, const std::vector<std::string>& drawings, QString* text,
                std::string* error) {
    std::vector<Line> lines;
    std::vector<Line> starts;
    std::vector<Line> ends;
    for (Part& part : *parts) {
        RunLogContent log;
        PackedLogNames packed;
        if (!ReadLog(part.Files.Log, &log, error) || !ReadPackedNames(part.Files.Archive, &packed, error)) {
            return false;
        }
        linkCutLogs(&log, packed);
        std::time_t time = 0;
        for (RunLogEntry& entry : log.Entries) {
            time = timeOf(entry, time);
            auto& kind = entry.Kind == RunLogEntry::Started     ? starts
                         : entry.Kind == RunLogEntry::Completed ? ends
                                                                : lines;
            kind.push_back({time, std::move(entry), &part});
        }
    }
    const auto earlier = [](const Line& left, const Line& right) { return left.Time < right.Time; };
    std::stable_sort(lines.begin(), lines.end(), earlier);
    dropFirstAttempts(&lines, drawings);
    nameEntries(&lines);
    *text = RunLogHead;
    if (!starts.empty()) {
        *text += textOf(*std::min_element(starts.begin(), starts.end(), earlier));
    }
    for (const Line& line : lines) {
        *text += textOf(line);
    }
    if (!ends.empty()) {
        *text += textOf(*std::max_element(ends.begin(), ends.end(), earlier));
    }
    *text += RunLogTail;
    return true;
}

/// Copies the entries that are wanted; others are of a run before.
void copyEntries(const Part& part, CZipArchive* target) {
    CZipArchive source;
    const std::string& file = part.Files.Archive;
    if (!fs::exists(file)) {
        return;
    }
    if (!source.Open(file, CZipArchive::Existing)) {
        throw CZipException(CZipException::ReadError, file, std::strerror(errno));
    }
    for (int i = 0; i < source.Count(); ++i) {
        CFileHeader header;
        source.GetFileInfo(header, i);
        if (const auto wanted = part.Names.find(header.Name); wanted != part.Names.end()) {
            const std::string content = source.ReadWholeFile(i);
            CFileHeader fresh;
            fresh.Name = wanted->second.toStdString();
            fresh.ModTime = header.ModTime;
            fresh.ModDate = header.ModDate;
            target->OpenNewFile(fresh, Level);
            target->WriteNewFile(content.data(), content.size());
            target->CloseNewFile();
        }
    }
}

void writeArchive(const std::string& file, const std::vector<Part>& parts) {
    CZipArchive archive;
    if (!archive.Open(file, CZipArchive::Create)) {
        throw CZipException(CZipException::WriteError, file,
                            std::string("cannot be written: ") + std::strerror(errno));
    }
    for (const Part& part : parts) {
        copyEntries(part, &archive);
    }
    archive.Close();
}

}  // namespace

bool MergeLogs(const std::vector<std::string>& folders, const std::string& target,
               const std::vector<std::string>& drawings, std::string* error) {
    std::vector<Part> parts;
    for (const std::string& folder : folders) {
        for (const LogPart& files : LogParts(folder)) {
            parts.push_back({files, {}});
        }
    }
    if (parts.empty()) {
        return true;
    }
    QString text;
    if (!mergedText(&parts, drawings, &text, error)) {
        return false;
    }
    const LogPart names = LogNames(target);
    try {
        writeArchive(names.Archive, parts);
    } catch (const CZipException& failure) {
        *error = failure.what();
        return false;
    }
    return WriteLog(names.Log, EncodeRunLog(text), error);
}
