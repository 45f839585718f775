// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Removing a folder that a program has made, with what it has made in it: by name, and never through a link,
// since anybody may have put something of his into it, or a link to something of his in its place.

#include <functional>
#include <string>
#include <vector>

namespace files {

/// Tells from a path below the folder ("logs/a.log") whether the program makes such a file or folder.
using IsOwnName = std::function<bool(const std::string&)>;

/// Removes the files and folders that are the program's, and the folder itself when nothing is left in it.
/// What is somebody else's, links among it, stays and is added to `left`. False with one line of cause when
/// the system refuses. A folder that is not there is no error.
bool RemoveOwnFolder(const std::string& path, const IsOwnName& isOwn, std::vector<std::string>* left,
                     std::string* error);

}  // namespace files
