// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Names of table entries, for the commands that make and list them.

#include <string>

#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Command.h"

namespace drafthost::commands {

/// Empty when blocks, styles and the like may have the name; else one line of reason.
std::string nameFault(std::string_view name);
/// Tells the names of the entries that fit a pattern, each on its line.
void listTable(CommandContext& context, Table table, const std::string& names);

}  // namespace drafthost::commands
