// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a file has beside its bytes and must not lose when a save puts a new file in its place: owner, group,
// mode, access list and extended attributes.

#include <sys/stat.h>

namespace drafthost {

/// Gives an open new file what the old one has. Where the system does not let the group be kept, the file's
/// new group gets no more than everybody had. 0, or the error of what could not be kept.
int keepAttributes(int oldFile, const struct stat& old, int newFile);

/// How many names a file has beside `path` and the ".bak" file that a save has just made of it.
unsigned otherNames(const char* path, const struct stat& file);

}  // namespace drafthost
