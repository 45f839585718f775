// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Questions that several commands ask in the same words: whether changes may be lost and whether a file may
// be replaced. They obey EXPERT where a user has said that he does not want to be asked.

#include <string>
#include <string_view>

#include "drafthost/editor/Command.h"

namespace drafthost::commands {

/// True at once while the drawing has no unsaved changes; else asks, naming the drawing.
Task<bool> mayDiscardChanges(CommandContext& context, Document& document);
/// True at once while no such file exists or EXPERT is 2 or more; else asks whether to replace it.
Task<bool> mayReplaceFile(CommandContext& context, const std::string& path);
/// A Yes/No question.
Task<bool> askYesNo(CommandContext& context, std::string question, bool standard);

/// The text between double quotes, for messages.
std::string inQuotes(std::string_view text);

/// The path as typed made absolute: from the current folder, "~/" from the user's home.
std::string absolutePath(std::string_view typed);
/// As `absolutePath`, with `extension` (".dxf") added when the name has none.
std::string absolutePath(std::string_view typed, std::string_view extension);

/// Whether `typed` is the keyword (given in small letters) or a beginning of it of `least` letters or more.
bool isWord(std::string_view typed, std::string_view keyword, std::size_t least);
/// A name without the quotes that it may be given in.
std::string unquoted(std::string_view text);

}  // namespace drafthost::commands
