// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The folder with the state of the runs, and the lock on it. Two hosts that save the same state would undo
// each other's work, so one run holds the folder from its start until its host is dead: the lock is an
// flock on descriptors that the host inherits, which the system gives up only when both have ended. The
// folder itself is locked too, since a script can delete the file; the file, since some network file systems
// lock no folders.
#include <string>
#include <vector>

class DataFolder {
  public:
    /// home is the folder that holds "Ovrix"; empty is $XDG_DATA_HOME, else ~/.local/share.
    explicit DataFolder(const std::string& home);
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    /// Makes the folder and takes the lock. False with one line when that does not go or another run has it.
    bool Lock(std::string* error);

    /// Absolute; what the host gets as XDG_DATA_HOME.
    const std::string& Home() const { return home; }
    std::string Path() const { return home + "/Ovrix"; }
    std::string StateFile() const { return Path() + "/TarnelRunner.xml"; }
    std::vector<int> LockDescriptors() const { return {lock, folderLock}; }

    /// Moves a file to a free name beside it. The new name; empty with one line when it cannot be.
    static std::string KeepAside(const std::string& file, std::string* error);

  private:
    void unlock();

    std::string home;
    int lock = -1;
    int folderLock = -1;
};
