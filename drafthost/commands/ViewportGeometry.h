// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost::commands {

/// From the world to the sheet, through a viewport that looks straight down; nothing for others.
std::optional<Transform> paperFromModel(const Drawing& drawing, RecordId viewport);
/// The map that undoes a turn, a scale alike along all axes and a move.
Transform inverseScaled(const Transform& map);

}  // namespace drafthost::commands
