// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Keeps other hosts from a drawing that is open here: a lock on the file, which goes with the process
// whatever happens, and a "<title>.dwk" beside it, which other programs can see without opening anything.
// A .dwk whose process on this machine has died is nobody's and is taken over. It stands whole or not at all.

#include <optional>
#include <string>

namespace drafthost {

class FileLock {
  public:
    /// Locks without waiting. Nothing and one line of cause when somebody else has the drawing open, or
    /// the file may not be written.
    static std::optional<FileLock> acquire(const std::string& path, std::string& error);

    /// What the markers of this process hold.
    static const std::string& markerText();

    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    ~FileLock();

    /// The file at the path is a new one under the old name, as after a save by renaming: the lock goes
    /// over to it. False when that cannot be locked.
    bool renew();

  private:
    FileLock(int fd, std::string path, std::string markerPath);
    void release();

    int fd_ = -1;
    std::string path_;
    std::string markerPath_;
};

}  // namespace drafthost
