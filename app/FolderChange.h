// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A change of several files of a data folder that is made whole or not at all, whatever is killed or fails
// when. New files are written to the folder "next" and brought to the disk; then the description of the run
// is replaced by one that names them, and that is the moment from which the change counts. After it they take
// their places, and what the run before has left goes. Whoever takes the folder next finishes what did not
// get that far; a change that did not reach its moment leaves nothing.
#include "app/DataFolder.h"
#include "app/RunDescription.h"

#include <optional>
#include <string>

class FolderChange {
  public:
    explicit FolderChange(const DataFolder& folder) : folder(folder) {}

    /// Makes an empty folder "next". False with one line when it cannot be made or something else is in its
    /// place.
    bool Begin(std::string* error) const;
    /// Where new files go; their names are those that the data folder knows.
    std::string Next() const;
    /// Makes the change: all files that were written to the folder, and the description. False with one line;
    /// either nothing has changed then, or the next FinishChange goes on.
    bool Commit(RunDescription* description, std::string* error) const;

  private:
    const DataFolder& folder;
};

/// Finishes a change that was begun and drops one that was not. The description is what then holds; nothing
/// when the folder has none. False with one line.
bool FinishChange(const DataFolder& folder, std::optional<RunDescription>* description, std::string* error);

/// True when FinishChange would have something to do, without taking the folder.
bool HasChange(const RunDescription& description);
