// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The file of an archive: reads at any place, and appends through a buffer to a file beside it, which takes
// the archive's place in one step. So the archive on disk is always whole, whatever happens to the process.
#include "system/NewFile.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// Failures of reads and writes raise CZipException with the archive's path and the system's cause.
class CZipStorage {
  public:
    CZipStorage() = default;
    ~CZipStorage() { Discard(); }
    CZipStorage(const CZipStorage&) = delete;
    CZipStorage& operator=(const CZipStorage&) = delete;

    /// Opens for reading. False, errno set, when that fails or it is no regular file.
    bool OpenExisting(const std::string& path);
    /// Begins a new file beside the path. False, errno set, when that fails; EWOULDBLOCK when another
    /// archive of that path is being written.
    bool Create(const std::string& path);
    /// Begins a file beside the open archive with a copy of its first bytes.
    void BeginUpdate(std::uint64_t keep);

    bool IsOpen() const { return readHandle >= 0 || fresh.IsOpen(); }
    bool IsWriting() const { return fresh.IsOpen(); }
    const std::string& Path() const { return path; }
    /// Bytes of the archive as it was opened.
    std::uint64_t Size() const { return size; }

    /// Exactly count bytes. What was appended can be read too.
    void ReadAt(std::uint64_t offset, void* buffer, std::size_t count);

    void Append(const void* data, std::size_t count);
    /// Where the next byte goes.
    std::uint64_t Position() const { return flushed + pending.size(); }
    /// Replaces bytes that were appended before.
    void PatchAt(std::uint64_t offset, const std::string& bytes);
    /// Forgets all that was appended from offset on.
    void Rewind(std::uint64_t offset);
    /// Puts the file, synced, in the archive's place and closes it. When that fails, the archive stays as
    /// it was.
    void Commit();
    /// Closes everything; what was appended is gone.
    void Discard();

  private:
    bool openBeside();
    void flush();
    void writeAll(std::uint64_t offset, const char* data, std::size_t count, std::size_t& done);

    std::string path;
    files::NewFile fresh;
    int readHandle = -1;
    std::uint64_t size = 0;
    std::uint64_t flushed = 0;
    std::string pending;
};
