// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// Gives all references to a block the attributes that its definition has now, in its order and form; values
/// are kept by tag, new ones have their defaults. The number of references.
std::size_t syncAttributes(Drawing& drawing, const std::string& block);

}  // namespace drafthost
