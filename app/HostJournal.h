// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The names of what the host of a data folder makes beside drawings and means to take away again. Whoever has
// the folder locked, so that no host lives, removes what a killed one has left.
#include "system/FileJournal.h"

#include <string>

/// Where the host of a data folder (the folder with the state) notes them.
std::string HostJournal(const std::string& folder);

/// Removes what hosts that are dead have left, and half-written files of the folder itself. Logs are kept for
/// who still has to pack them.
void ClearHostJournal(const std::string& folder, files::Logs logs);

/// Writes a file elsewhere, of which a kill leaves nothing that the next command does not know.
class NotedWrite {
  public:
    explicit NotedWrite(std::string folder);
    ~NotedWrite();
    NotedWrite(const NotedWrite&) = delete;
    NotedWrite& operator=(const NotedWrite&) = delete;

  private:
    std::string folder;
};
