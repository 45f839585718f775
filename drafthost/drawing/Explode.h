// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost {

/// Puts the parts of an entity where it stands and leaves it alone: references to blocks, polylines,
/// dimensions. The records made; nothing, with one line of cause and nothing changed, when it has no parts
/// or one of them cannot be brought there.
std::optional<std::vector<RecordId>> explodeEntity(Drawing& drawing, RecordId entity, std::string& error);

/// From the coordinates of a block to those of its reference, for the given column and row.
Transform insertTransform(const Drawing& drawing, RecordId insert, int column = 0, int row = 0);

}  // namespace drafthost
