// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Tells one version of a file from another without reading it, for files that this module writes again and
// again and that somebody else could touch in between.
#include <QString>

#include <sys/types.h>
#include <time.h>
#include <optional>

struct FileStamp {
    ino_t Inode = 0;
    off_t Size = -1;
    timespec Time{};
    bool operator==(const FileStamp& other) const {
        return Inode == other.Inode && Size == other.Size && Time.tv_sec == other.Time.tv_sec &&
               Time.tv_nsec == other.Time.tv_nsec;
    }
};

/// Nothing for a file that is not there.
std::optional<FileStamp> StampOf(const QString& path);
