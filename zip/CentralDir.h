// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The directory of an archive. The records of entries that were there before are kept as bytes, so that
// adding to an archive of another tool leaves its extra fields, attributes and comments as they were.
#include "zip/FileHeader.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CZipStorage;

class CCentralDir {
  public:
    /// Reads and checks the directory of an open file: it lies before the end record, its records fill it,
    /// and no entry reaches into another or into the directory. Raises CZipException.
    void Read(CZipStorage& storage);
    void Clear();

    int Count() const { return static_cast<int>(entries.size()); }
    const CFileHeader& Header(int index) const { return entries[static_cast<std::size_t>(index)].Header; }
    /// The name as it stands in the file.
    std::string_view RawName(int index) const;
    /// First offset behind the entry that belongs to something else.
    std::uint64_t Limit(int index) const { return entries[static_cast<std::size_t>(index)].Limit; }
    /// Where the directory lay when it was read; 0 for a new archive.
    std::uint64_t Offset() const { return offset; }

    /// Appends a finished entry that ends at limit.
    void Add(const CFileHeader& header, std::string_view rawName, std::uint64_t limit);
    /// Appends the directory and the end record to the storage.
    void Write(CZipStorage& storage) const;
    /// Bytes that Write would append.
    std::uint64_t WrittenSize() const;

  private:
    struct Entry {
        CFileHeader Header;
        std::size_t Record = 0;
        std::uint64_t Limit = 0;
    };

    void readRecords(const std::string& path, std::size_t count, std::uint64_t end);
    void checkExtents(const std::string& path);

    std::vector<Entry> entries;
    std::string records;
    std::string comment;
    std::uint64_t offset = 0;
};
