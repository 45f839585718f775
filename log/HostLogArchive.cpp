// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/HostLogArchive.h"

#include "zip/ZipArchive.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_set>

namespace {

constexpr int BestLevel = 9;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Empty, or one line that says why the log is not in the archive, or not whole.
QString packLog(CZipArchive& archive, const QString& path, const std::string& name) {
    const std::string file = QFile::encodeName(path).toStdString();
    const auto failure = [&] {
        return QStringLiteral("%1: cannot be read: %2").arg(path, QString::fromUtf8(std::strerror(errno)));
    };
    const std::unique_ptr<std::FILE, Closer> log(std::fopen(file.c_str(), "rbe"));
    if (!log) {
        return failure();
    }
    CFileHeader header;
    header.Name = name;
    try {
        archive.OpenNewFile(header, BestLevel, file.c_str());
        std::array<char, std::size_t{64} * 1024> buffer;
        while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), log.get())) {
            archive.WriteNewFile(buffer.data(), count);
        }
        const QString cause = std::ferror(log.get()) ? failure() : QString();
        archive.CloseNewFile();
        return cause;
    } catch (const CZipException& error) {
        // Only what is about this one log; without its archive none can be packed.
        if (error.Cause == CZipException::WriteError) {
            throw;
        }
        return QString::fromUtf8(error.what());
    }
}

std::unordered_set<std::string> namesIn(const CZipArchive& archive) {
    std::unordered_set<std::string> names;
    for (int i = 0; i < archive.Count(); ++i) {
        CFileHeader header;
        archive.GetFileInfo(header, i);
        names.insert(header.Name);
    }
    return names;
}

}  // namespace

QString HostLogId(const QString& hostLogPath) {
    QString id = hostLogPath;
    id.replace(QLatin1Char(':'), QLatin1Char('-'));
    id.replace(QLatin1Char('\\'), QLatin1Char('_'));
    id.replace(QLatin1Char('/'), QLatin1Char('_'));
    return id;
}

PackedLogs PackHostLogs(const QString& path, const QStringList& logs, bool anew) {
    const std::string file = QFile::encodeName(path).toStdString();
    CZipArchive archive;
    const bool add = !anew && QFile::exists(path);
    if (!archive.Open(file, add ? CZipArchive::Existing : CZipArchive::Create)) {
        throw CZipException(CZipException::WriteError, file,
                            std::string("cannot be written: ") + std::strerror(errno));
    }
    std::unordered_set<std::string> names = namesIn(archive);
    PackedLogs result;
    for (const QString& log : logs) {
        const std::string name = HostLogId(log).toStdString();
        // One that is not there may still be put there, and is then nobody's to delete.
        if (!names.contains(name) && !QFile::exists(log)) {
            continue;
        }
        const QString failure = names.insert(name).second ? packLog(archive, log, name) : QString();
        if (failure.isEmpty()) {
            result.Packed += log;
        } else {
            result.Failures += failure;
        }
    }
    archive.Close();
    return result;
}
