// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The files that a program keeps for itself (state, logs, settings, locks) may lie in a folder in which
// others can make files too. Nothing here writes through a link that somebody else has put there, or into a
// file that is known to him under another name. Whose link it is decides: a user may have moved his own file
// or folder elsewhere and left a link.

#include <sys/types.h>
#include <functional>
#include <string>

struct stat;

namespace files {

/// What the system says about an error number, and the words for what this folder refuses by itself.
std::string Because(int error);

enum class Trust {
    /// Links of this user, of root, and such as lead to a file or folder of the link's own owner.
    Own,
    /// Also those of the owner of a folder that not everybody can write to: a colleague who has linked his
    /// drawings together means what he did. Root trusts no more than with Own.
    FolderOwner,
};

/// The path behind the links at the end of `path`; the last name need not exist. 0, or the error: ELOOP for a
/// link of somebody else, there or among the folders on the way; with FolderOwner a folder's link counts when
/// not everybody can write where it stands.
int Follow(const std::string& path, Trust trust, std::string* target);

/// The folder with all that are missing above it. Root gives what it makes to the owner of the folder above.
/// 0, or the error: ELOOP for a link of somebody else.
int MakeFolder(const std::string& path);

/// Opens what stands behind the links at the end of `path` for reading, a pipe without waiting for its
/// writer. -1 with errno: ELOOP for a link that is not trusted.
int OpenToRead(const std::string& path, Trust trust);

/// Opens a file of the program's own for writing, and makes it when it is missing. With O_TRUNC and O_APPEND
/// a file that has other names too is parted from them first. -1 with errno when that does not go, when it is
/// no regular file (ENXIO), or belongs to neither this user, root nor the folder's owner (EPERM).
int OpenOwn(const std::string& path, int flags);

/// The folder in which a path's last name stands.
std::string FolderOf(const std::string& path);

/// A file that root makes goes to the owner of its folder, so that he can go on with it.
void GiveToFolderOwner(int file, const std::string& path);

/// Whether a file may be the program's own, by its owner.
bool IsOwners(const struct stat& file, const std::string& path);

/// "<path>-<random>", which nobody can have foreseen; empty with errno when the system has no random numbers.
std::string RandomName(const std::string& path);

/// Makes a file of such a name, which is told before the file is made. -1 with errno.
int OpenRandom(const std::string& path, mode_t mode, std::string* name,
               const std::function<void(const std::string&)>& tell = {});

}  // namespace files
