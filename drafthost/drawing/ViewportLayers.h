// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// What a viewport of a layout shows otherwise than the layer table says. Frozen layers stand in the VIEWPORT
// (331 from 2000 on, extended data before); other properties in the extension dictionary of the layer, a
// record for each property with the viewports that have it (names and codes as ezdxf's layer overrides
// document them).

bool isFrozenIn(const Drawing& drawing, RecordId viewport, RecordId layer);
void setFrozenIn(Drawing& drawing, RecordId viewport, RecordId layer, bool frozen);

enum class LayerOverride { Color, Linetype, Lineweight, Transparency };
/// Gives a layer a property of its own in a viewport: a raw value as the override holds it (colour:
/// 0xC2RRGGBB or 0xC30000NN; linetype: handle; lineweight: hundredths; transparency: as group 440). Nothing
/// takes it away. False where the version has no such thing (before 2000).
bool setOverride(Drawing& drawing, RecordId viewport, RecordId layer, LayerOverride kind,
                 std::optional<std::uint32_t> value);

}  // namespace drafthost
