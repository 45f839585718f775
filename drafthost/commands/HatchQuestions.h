// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What -HATCH and -HATCHEDIT ask in the same words: the pattern, the origin of its lines, and how the hatch
// looks.

#include <optional>
#include <vector>

#include "drafthost/commands/EntityLooks.h"
#include "drafthost/drawing/DrawOrder.h"
#include "drafthost/drawing/HatchBoundary.h"
#include "drafthost/drawing/HatchPattern.h"

namespace drafthost::commands {

/// The pattern that the system variables (HPNAME, HPSCALE, HPANG…) name; nothing when there is none, which
/// has been told.
std::optional<HatchFill> standardFill(CommandContext& context);

/// A pattern with its scale and angle, and the islands when the name has them behind a comma ("NET,O"). The
/// variables keep it for the next hatch.
struct PatternAnswer {
    HatchFill fill;
    std::optional<IslandStyle> style;
};
Task<std::optional<PatternAnswer>> askPattern(CommandContext& context);

/// Where the pattern begins, in the plane of the drawing; nothing when that is to stay.
Task<std::optional<Point>> askHatchOrigin(CommandContext& context);
/// Kind::None when the answer was "." for the current one.
Task<LookChange> askHatchColor(CommandContext& context);
Task<LookChange> askHatchLayer(CommandContext& context);
Task<LookChange> askHatchTransparency(CommandContext& context);

/// Where a hatch stands among the objects, as HPDRAWORDER counts.
enum class HatchOrder { AsDrawn = 0, Back = 1, Front = 2, BehindBoundary = 3, BeforeBoundary = 4 };
Task<HatchOrder> askHatchOrder(CommandContext& context, HatchOrder now);
/// The boundary is what the hatch was made from; without it there is nothing to stand behind.
void orderHatch(Drawing& drawing, RecordId hatch, const std::vector<RecordId>& boundary, HatchOrder order);

}  // namespace drafthost::commands
