// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One entry of an archive, as the caller names it and as the directory tells it. Names are UTF-8 here;
// the bytes in the file are the archive's business (OemNames.h).
#include <cstdint>
#include <ctime>
#include <string>

struct CFileHeader {
    /// UTF-8. Empty when writing: the entry is named by its number.
    std::string Name;
    /// 8 deflate, 0 stored.
    std::uint16_t Method = 8;
    /// Attributes of the file system that made the entry; 32 is "archive". Writing adds the mode of the file
    /// in the upper half.
    std::uint32_t Attributes = 32;
    std::uint16_t VersionMadeBy = 20;
    std::uint16_t VersionNeeded = 20;
    std::uint16_t Flags = 0;
    /// Local time in the format's two-second form; both 0 when writing: the file's time or now.
    std::uint16_t ModTime = 0;
    std::uint16_t ModDate = 0;
    std::uint32_t Crc32 = 0;
    /// Bytes in the archive.
    std::uint32_t CompSize = 0;
    /// Bytes of the content.
    std::uint32_t UncompSize = 0;
    /// Where the local header begins.
    std::uint32_t Offset = 0;

    /// Sets ModTime and ModDate from a time, in local time, kept within 1980 to 2107.
    void SetTime(std::time_t time);
};
