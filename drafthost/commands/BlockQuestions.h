// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Which block, of the drawing or of a file.

#include <string>

#include "drafthost/editor/Command.h"

namespace drafthost::commands {

struct BlockChoice {
    std::string block;  ///< is in the drawing now; empty: the command ends, that has been told
    bool explode = false;
};
/// The block that an insertion is of: a name, a file, "name=file", with "*" in front its parts.
Task<BlockChoice> askBlockToInsert(CommandContext& context);

/// The file of a drawing that is to be brought in, along the search path; told when there is none.
std::string findDrawingFile(CommandContext& context, const std::string& typed);

}  // namespace drafthost::commands
