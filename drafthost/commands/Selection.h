// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The "Select objects" question of commands. Without a picture there is nothing to point at, so objects are
// named: all, the last, the previous set, or entities and sets that LISP and modules hand over.

#include <vector>

#include "drafthost/drawing/Record.h"
#include "drafthost/editor/Command.h"
#include "drafthost/lisp/Value.h"

namespace drafthost::commands {

/// Asks until Enter. The main entities selected, each once, in order of selection; they become the
/// document's previous set. Empty when none were.
Task<std::vector<RecordId>> selectObjects(CommandContext& context);

}  // namespace drafthost::commands
