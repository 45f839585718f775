// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SupportBundle.h"

#include "engine/record/FileName.h"
#include "zip/ZipArchive.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

namespace {

constexpr int Level = 9;

void addBytes(CZipArchive& archive, const char* name, const QByteArray& bytes) {
    CFileHeader header;
    header.Name = name;
    archive.OpenNewFile(header, Level);
    archive.WriteNewFile(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    archive.CloseNewFile();
}

// Empty, or why the file could not be added.
QString addFile(CZipArchive& archive, const QString& name, const QString& path) {
    QFile file(path);
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        return QStringLiteral("%1: it is not a regular file").arg(path);
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return QStringLiteral("%1: %2").arg(path, file.errorString());
    }
    CFileHeader header;
    header.Name = name.toStdString();
    archive.OpenNewFile(header, Level, QFile::encodeName(path).constData());
    QByteArray buffer(qsizetype{64} * 1024, '\0');
    for (;;) {
        const qint64 count = file.read(buffer.data(), buffer.size());
        if (count < 0) {
            return QStringLiteral("%1: %2").arg(path, file.errorString());
        }
        if (count == 0) {
            break;
        }
        archive.WriteNewFile(buffer.constData(), static_cast<std::size_t>(count));
    }
    archive.CloseNewFile();
    return {};
}

}  // namespace

SupportFiles SupportFilesIn(const QString& dataDir, const QString& stateFile) {
    return {JoinPath(dataDir, u"TNLLog.zip"),
            stateFile.isEmpty() ? JoinPath(dataDir, u"TarnelRunner.xml") : stateFile,
            JoinPath(dataDir, u"tnl log.html"), JoinPath(dataDir, u"TNLapp.log")};
}

SupportResult PackSupportBundle(const SupportFiles& files, const QByteArray& info) {
    SupportResult result;
    try {
        const std::string path = QFile::encodeName(files.Archive).toStdString();
        CZipArchive archive;
        // Only an archive that is not there is made: one that cannot be read may hold the logs of a run.
        const bool open = archive.Open(path, CZipArchive::Existing) ||
                          (errno == ENOENT && archive.Open(path, CZipArchive::Create));
        if (!open) {
            result.Error =
                QStringLiteral("%1: %2").arg(files.Archive, QString::fromLocal8Bit(strerror(errno)));
            return result;
        }
        addBytes(archive, "info.xml", info);
        const std::pair<QString, QString> entries[] = {
            {CFileName(files.StateFile).GetNameExt(), files.StateFile},
            {QStringLiteral("TNL Log.html"), files.RunLog},
            {QStringLiteral("TNLapp.log"), files.TraceLog}};
        for (const auto& [name, file] : entries) {
            result.Error = addFile(archive, name, file);
            if (!result.Error.isEmpty()) {
                return result;
            }
        }
        archive.Close();
    } catch (const CZipException& exception) {
        result.Error = QString::fromLocal8Bit(exception.what());
        return result;
    }
    result.Archive = files.Archive;
    return result;
}
