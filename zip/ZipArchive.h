// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// ZIP archives for the host logs of a run and for what goes to support: the published format with deflate,
// no parts, no encryption, no ZIP64. What is written goes to a file beside the archive, which replaces it at
// Close: a failure or a kill in between leaves the archive as it was. A reader trusts no number in the file:
// each is checked against the file's size before it is used to seek, read or allocate.
#include "zip/FileHeader.h"
#include "zip/ZipException.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

/// One archive, one entry open at a time. Not shared between threads. All operations raise CZipException.
/// When writing an entry raised, that entry is taken back and the ones before it stay: further entries and
/// Close work. When Close raised, the archive on disk is what it was before Open.
class CZipArchive {
  public:
    enum OpenMode {
        Existing = 0,  ///< Read, and add to; the directory is read at once.
        Create = 2     ///< A new archive that takes the place of any file of that name at Close.
    };

    CZipArchive();
    /// Without a Close before it, whatever was written is dropped.
    ~CZipArchive();
    CZipArchive(const CZipArchive&) = delete;
    CZipArchive& operator=(const CZipArchive&) = delete;

    /// False, with the cause in errno, when the file (in mode Create: the file beside it) can't be opened.
    /// Raises for a file that is no sound archive. The path is in the system's own bytes.
    bool Open(const std::string& path, OpenMode mode);
    bool IsOpen() const;
    /// Ends an open entry, writes the directory when entries were added, and puts the archive in its place.
    void Close();

    int Count() const;
    /// Index of the first entry with that name, -1 without one. Canonically equivalent names are the same.
    int FindFile(const std::string& name, bool caseSensitive) const;
    /// Copies the header of an entry.
    void GetFileInfo(CFileHeader& header, int index) const;

    /// Begins an entry; level 0 to 9. Of path, when given, time and permissions are taken, and a file over
    /// the limit of the format is refused before a byte is written. The header gets the name as it will be
    /// read.
    void OpenNewFile(CFileHeader& header, int level, const char* path = nullptr);
    void WriteNewFile(const void* buffer, std::size_t count);
    void CloseNewFile();

    /// Begins reading; refuses methods other than stored and deflated.
    void OpenFile(int index);
    /// Bytes read, less than count only at the end of the entry.
    std::size_t ReadFile(void* buffer, std::size_t count);
    /// Ends reading. An entry that was read to its end must have the CRC that the directory tells.
    void CloseFile();
    /// The whole entry, opened, read, checked and closed. Memory grows with what is really there.
    std::string ReadWholeFile(int index);

    /// "\" in new names becomes "/".
    bool SlashNames = true;
    /// Largest size and offset that may be written; the format's own unless lowered.
    std::uint64_t SizeLimit = 0xFFFFFFFEU;

  private:
    struct State;
    std::unique_ptr<State> state;
};
