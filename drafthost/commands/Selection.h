// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The "Select objects" question of commands, and that for one object.

#include <optional>
#include <string>
#include <vector>

#include "drafthost/drawing/Record.h"
#include "drafthost/editor/Command.h"
#include "drafthost/lisp/Value.h"

namespace drafthost::commands {

enum SelectFlags : unsigned {
    SelectToEdit = 1,       ///< objects on locked layers are left out, and told
    SelectAnySpace = 2,     ///< objects outside the current space stay in
    SelectNoPickFirst = 4,  ///< what was selected before the command does not count
};

/// Asks until Enter. The main entities selected, each once, in order of selection; they become the
/// document's previous set. Empty when none were.
Task<std::vector<RecordId>> selectObjects(CommandContext& context, unsigned flags = 0,
                                          const char* prompt = "Select objects");
/// The same with words of the command's own; the one that was given ends the question and is left in `word`.
Task<std::vector<RecordId>> selectObjects(CommandContext& context, unsigned flags, const char* prompt,
                                          const char* words, std::string& word);

/// What was answered where one object is asked for.
struct Picked {
    RecordId entity = NoRecord;  ///< none: a keyword, or Enter
    std::string keyword;
    std::optional<Point> place;  ///< where it was picked, in the current UCS
};
/// Asks until one object is named: by Last, an entity name (with the point where it was picked), a set, a
/// handle, or a point on it.
Task<Picked> pickObject(CommandContext& context, const char* prompt, const char* keywords = "");

}  // namespace drafthost::commands
