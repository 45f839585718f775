// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace drafthost {

// Whole files to and from the disk. A save must never leave half a drawing, whatever happens in the middle of
// it, so the new bytes are written to a file beside the old one, synced, and renamed over it.

/// Looks at the bytes of a large file after each piece of it, the last one beginning at `from`; false ends
/// the reading, because nothing that follows can make good what stands there.
using PieceCheck = std::function<bool(const std::string& bytes, std::size_t from)>;

/// Reads a regular file below 4 GiB; false with one line that names the file and the cause, as for a link of
/// somebody else. When the check has ended the reading the bytes up to there are the result.
bool readFile(const std::string& path, std::string& bytes, std::string& error, const PieceCheck& check = {});

/// Writes `pieces` one behind the other as the new content of `path`. Mode, access list and extended
/// attributes of a file that stands there are kept, owner and group where the system allows it, and a
/// symbolic link stays one. Refused for a link of somebody else, and for a file with other names (hard
/// links), which a save would part. The folder is synced too when the name is new: when it is not, a crash
/// leaves the old or the new file, both whole. On failure nothing has changed and no temporary is left.
bool replaceFile(const std::string& path, const std::vector<std::string_view>& pieces, std::string& error);

/// Saves part a file from its other names instead of being refused.
void setBreakLinks(bool on);

}  // namespace drafthost
