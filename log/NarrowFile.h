// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The two logs are narrow text with CR LF that grows line by line while drawings come and go. A line must
// cost next to nothing and must be with the system when the call returns, so this goes to the system's calls
// directly, with no buffer of its own.
#include <QString>

#include <string>
#include <string_view>

/// Text in the locale's encoding, with CR LF for each LF that has no CR yet.
std::string NarrowLines(const QString& text);

/// One open file. Not copyable.
class NarrowFile {
  public:
    NarrowFile() = default;
    ~NarrowFile() { Close(); }
    NarrowFile(const NarrowFile&) = delete;
    NarrowFile& operator=(const NarrowFile&) = delete;

    /// Creates the file when it is missing. True when it is open; the cause of a failure is in errno.
    bool OpenForAppend(const std::string& path);
    /// Creates the file or empties it.
    bool OpenNew(const std::string& path);
    bool IsOpen() const { return handle >= 0; }
    /// How much of the bytes the system took; the cause of a failure is in errno.
    std::size_t Append(std::string_view bytes);
    /// False when the system took less than the whole text.
    bool Write(const QString& text);
    void Close();

  private:
    int handle = -1;
};
