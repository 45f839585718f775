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

bool addFile(CZipArchive& archive, const QString& name, const QString& path, QString* error) {
    QFile file(path);
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        *error = QStringLiteral("%1: it is not a regular file").arg(path);
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return false;
    }
    CFileHeader header;
    header.Name = name.toStdString();
    archive.OpenNewFile(header, Level, QFile::encodeName(path).constData());
    QByteArray buffer(qsizetype{64} * 1024, '\0');
    for (;;) {
        const qint64 count = file.read(buffer.data(), buffer.size());
        if (count < 0) {
            *error = QStringLiteral("%1: %2").arg(path, file.errorString());
            return false;
        }
        if (count == 0) {
            break;
        }
        archive.WriteNewFile(buffer.constData(), static_cast<std::size_t>(count));
    }
    archive.CloseNewFile();
    return true;
}

}  // namespace

SupportFiles SupportFilesIn(const QString& dataDir, const QString& stateFile) {
    return {JoinPath(dataDir, u"TNLLog.zip"),
            stateFile.isEmpty() ? JoinPath(dataDir, u"TarnelRunner.xml") : stateFile,
            JoinPath(dataDir, u"tnl log.html"), JoinPath(dataDir, u"TNLapp.log")};
}

bool PackSupportBundle(const SupportFiles& files, const QByteArray& info, QString* error) {
    try {
        const std::string path = QFile::encodeName(files.Archive).toStdString();
        CZipArchive archive;
        // Only an archive that is not there is made: one that cannot be read may hold the logs of a run.
        const bool open = archive.Open(path, CZipArchive::Existing) ||
                          (errno == ENOENT && archive.Open(path, CZipArchive::Create));
        if (!open) {
            *error = QStringLiteral("%1: %2").arg(files.Archive, QString::fromLocal8Bit(strerror(errno)));
            return false;
        }
        addBytes(archive, "info.xml", info);
        const std::pair<QString, QString> entries[] = {
            {CFileName(files.StateFile).GetNameExt(), files.StateFile},
            {QStringLiteral("TNL Log.html"), files.RunLog},
            {QStringLiteral("TNLapp.log"), files.TraceLog}};
        for (const auto& [name, file] : entries) {
            if (!addFile(archive, name, file, error)) {
                return false;
            }
        }
        archive.Close();
    } catch (const CZipException& exception) {
        *error = QString::fromLocal8Bit(exception.what());
        return false;
    }
    return true;
}
