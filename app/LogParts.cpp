// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LogParts.h"

#include "app/LogFile.h"
#include "log/HostLogArchive.h"
#include "system/OwnFile.h"
#include "zip/ZipArchive.h"

#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <QFile>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

constexpr int Level = 9;

LogPart asidePart(const std::string& folder, int number) {
    const LogPart names = LogNames(folder);
    const std::string tail = ".part-" + std::to_string(number);
    return {names.Log + tail, names.Archive + tail};
}

/// Logs in a folder that a run log links to.
QStringList linkedLogs(const std::string& folder, const std::unordered_set<std::string>& links) {
    QStringList logs;
    std::error_code failure;
    for (fs::directory_iterator walk(folder, failure), end; !failure && walk != end;
         walk.increment(failure)) {
        const QString path = QFile::decodeName(walk->path().c_str());
        const bool isCut = path.endsWith(QLatin1String(CutLog));
        const QString whole = isCut ? path.chopped(qsizetype(std::strlen(CutLog))) : path;
        if (links.contains(HostLogId(whole).toStdString())) {
            logs += path;
        }
    }
    logs.sort();
    return logs;
}

/// Packs the logs of the drawings that a dead host has left behind: its own, and those that the module made
/// for drawings that were not opened.
bool packLeftLogs(const LogPart& part, const std::string& folder, std::string* error) {
    RunLogContent log;
    if (!ReadLog(part.Log, &log, error)) {
        return false;
    }
    std::unordered_set<std::string> links;
    for (const RunLogEntry& entry : log.Entries) {
        if (!entry.Id.isEmpty()) {
            links.insert(entry.Id.toStdString());
        }
    }
    const QStringList left = linkedLogs(HostLogFolder(folder), links) + linkedLogs(folder, links);
    if (left.isEmpty()) {
        return true;
    }
    try {
        const PackedLogs result = PackHostLogs(QFile::decodeName(part.Archive.c_str()), left, false);
        for (const QString& log : result.Packed) {
            QFile::remove(log);
        }
        if (!result.Failures.isEmpty()) {
            *error = result.Failures.first().toStdString();
        }
        return result.Failures.isEmpty();
    } catch (const CZipException& failure) {
        *error = failure.what();
        return false;
    }
}

/// The archive first: a part is known by its log, and a part whose log was not moved yet is gone on with.
bool moveAside(const std::string& folder, std::string* error) {
    const LogPart from = LogNames(folder);
    if (!fs::exists(from.Log)) {
        return true;
    }
    const LogPart to = asidePart(folder, static_cast<int>(LogsAside(folder).size()) + 1);
    if ((fs::exists(from.Archive) && std::rename(from.Archive.c_str(), to.Archive.c_str()) != 0) ||
        std::rename(from.Log.c_str(), to.Log.c_str()) != 0) {
        *error = to.Log + ": the log cannot be set aside: " + std::strerror(errno);
        return false;
    }
    return true;
}

}  // namespace

LogPart LogNames(const std::string& folder) {
    return {folder + "/tnl log.html", folder + "/TNLLog.zip"};
}

std::vector<LogPart> LogsAside(const std::string& folder) {
    std::vector<LogPart> parts;
    for (int number = 1; fs::exists(asidePart(folder, number).Log); ++number) {
        parts.push_back(asidePart(folder, number));
    }
    return parts;
}

std::vector<LogPart> LogParts(const std::string& folder) {
    std::vector<LogPart> parts = LogsAside(folder);
    if (fs::exists(LogNames(folder).Log)) {
        parts.push_back(LogNames(folder));
    }
    return parts;
}

bool SetLogsAside(const std::string& folder, std::string* error) {
    if (!moveAside(folder, error)) {
        return false;
    }
    for (const LogPart& part : LogsAside(folder)) {
        if (!packLeftLogs(part, folder, error)) {
            return false;
        }
    }
    return true;
}

bool SetEntriesAside(const std::string& folder, const std::vector<std::string>& drawings,
                     std::string* error) {
    if (!moveAside(folder, error)) {
        return false;
    }
    const LogPart part = asidePart(folder, static_cast<int>(LogsAside(folder).size()) + 1);
    QString text = RunLogHead;
    try {
        CZipArchive archive;
        if (!archive.Open(part.Archive, CZipArchive::Create)) {
            *error = part.Archive + ": cannot be written: " + std::strerror(errno);
            return false;
        }
        for (const std::string& drawing : drawings) {
            const std::string said = drawing + "\r\nThe host died before it had opened the drawing.\r\n";
            const QString name = QFile::decodeName(drawing.c_str());
            const QString id = QStringLiteral("unopened") + HostLogId(name) + QStringLiteral(".log");
            CFileHeader header;
            header.Name = id.toStdString();
            archive.OpenNewFile(header, Level);
            archive.WriteNewFile(said.data(), said.size());
            archive.CloseNewFile();
            text += RunLogLineText(RunLogTime(), ProcessingHtml(id, name));
        }
        archive.Close();
    } catch (const CZipException& failure) {
        *error = failure.what();
        return false;
    }
    return WriteLog(part.Log, EncodeRunLog(text + RunLogTail), error);
}

bool HasLogsAside(const std::string& folder) {
    return fs::exists(asidePart(folder, 1).Log);
}

void DropLogsAside(const std::string& folder) {
    const std::vector<LogPart> parts = LogsAside(folder);
    // The last first, so that those that are left still count from one, and each log behind its archive.
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        std::remove(part->Archive.c_str());
        std::remove(part->Log.c_str());
    }
}

std::string HostStateHome(const std::string& folder) {
    return folder + "/logs";
}

std::string HostLogFolder(const std::string& folder) {
    return HostStateHome(folder) + "/drafthost";
}

bool MakeHostLogFolder(const std::string& folder, std::string* error) {
    // Each by itself, so that neither is somebody else's link.
    for (const std::string& made : {HostStateHome(folder), HostLogFolder(folder)}) {
        if (const int failure = files::MakeFolder(made)) {
            *error = made + ": the folder cannot be made: " + files::Because(failure);
            return false;
        }
    }
    return true;
}

void DropHostLogFolder(const std::string& folder) {
    rmdir(HostLogFolder(folder).c_str());
    rmdir(HostStateHome(folder).c_str());
}
