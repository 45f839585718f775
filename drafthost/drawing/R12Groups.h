// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <set>
#include <string_view>

#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

// What R12 knows (reference of that version, chapter on drawing interchange files).

/// Groups of an entity besides those that all have; null for types that R12 does not know.
const std::set<int>* r12Groups(std::string_view type);
/// Whether the version of a drawing has entities of that type.
bool canHold(const Drawing& drawing, std::string_view type);
/// Groups of a table's entries besides the name.
const std::set<int>& r12Groups(Table table);
/// Whether its header has a variable of that name ("$LTSCALE").
bool isR12Variable(std::string_view name);

}  // namespace drafthost
