// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// New content for a file: it is written beside it and takes its place in one step. The file beside has one
// fixed name and a lock, so that what a killed process has left is known by its name and taken away by the
// next one, and never an opened file that was there before: it is always made.

#include <string>
#include <string_view>

namespace files {

class NewFile {
  public:
    NewFile() = default;
    ~NewFile() { Discard(); }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    enum class Busy {
        /// Another process that writes the same file at the same time is not disturbed; the last one wins.
        WriteToo,
        /// EWOULDBLOCK then.
        Refuse,
    };

    /// Begins the new content of `path`, with mode and, where the system lets it, group of what stands there.
    /// False with errno.
    bool Open(const std::string& path, Busy busy = Busy::WriteToo);
    bool IsOpen() const { return file >= 0; }
    int Descriptor() const { return file; }
    /// False with errno when the system took less than all.
    bool Write(std::string_view text);
    /// Puts it in the file's place. False with errno; the file is then as it was.
    bool Commit();
    void Discard();

  private:
    bool clearWay(Busy busy, bool* useOther);

    int file = -1;
    std::string name;
    std::string target;
};

/// Removes what a killed process has left of the new content of `path`.
void DropNewOf(const std::string& path);

}  // namespace files
