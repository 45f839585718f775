// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LogFile.h"

#include "system/NewFile.h"
#include "system/OwnFile.h"
#include "text/WholeFile.h"
#include "zip/ZipArchive.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <QFile>

bool ReadLog(const std::string& path, RunLogContent* log, std::string* error) {
    QByteArray bytes;
    if (const int failure = ReadWholeFile(QFile::decodeName(path.c_str()), bytes); failure != 0) {
        *error = path + ": " + std::strerror(failure);
        return false;
    }
    *log = ReadRunLog(bytes);
    return true;
}

bool ReadPackedNames(const std::string& file, PackedLogNames* names, std::string* error) {
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
            names->emplace(header.Name, header.UncompSize > 0);
        }
        return true;
    } catch (const CZipException& failure) {
        *error = failure.what();
        return false;
    }
}

bool WriteLog(const std::string& path, const QByteArray& bytes, std::string* error) {
    if (const int failure = WriteWholeFile(QFile::decodeName(path.c_str()), bytes); failure != 0) {
        *error = path + ": cannot be written: " + std::strerror(failure);
        return false;
    }
    return true;
}

void JoinTraces(const std::vector<std::string>& folders, const std::string& to) {
    constexpr const char* Name = "/TNLapp.log";
    std::string text;
    for (const std::string& folder : folders) {
        QByteArray trace;
        if (ReadWholeFile(QFile::decodeName((folder + Name).c_str()), trace) == 0) {
            text.append(trace.constData(), static_cast<std::size_t>(trace.size()));
        }
    }
    files::NewFile fresh;
    if (!text.empty() && !(fresh.Open(to + Name) && fresh.Write(text) && fresh.Commit())) {
        std::fprintf(stderr, "tarnel: %s%s: cannot be written: %s; lines of the trace are missing\n",
                     to.c_str(), Name, files::Because(errno).c_str());
    }
}
