// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How objects look: the properties that CHANGE, CHPROP, MATCHPROP and SETBYLAYER deal in.

#include <optional>
#include <string>
#include <vector>

#include "drafthost/commands/ColorNames.h"
#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/Command.h"

namespace drafthost::commands {

/// A property that objects are to get.
struct LookChange {
    enum class Kind {
        None,
        Color,
        Layer,
        Linetype,
        LinetypeScale,
        Lineweight,
        Thickness,
        Transparency,
        Elevation
    };
    Kind kind = Kind::None;
    Color color;
    std::string name;
    double number = 0;
    int hundredths = -1;
    /// Transparency as its group holds it; nothing for by layer.
    std::optional<std::int64_t> transparency;
};

/// Asks for one property and its new value; Kind::None when the round is over.
Task<LookChange> askLookChange(CommandContext& context, bool elevation);
/// Gives it to an object. False when objects of that kind have no such property.
bool applyLook(Drawing& drawing, RecordId id, const LookChange& change);

void setEntityColor(Drawing& drawing, RecordId id, const Color& color);

}  // namespace drafthost::commands
