// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// Which properties a state gives back.
enum LayerStateMask : int {
    RestoreOn = 1,
    RestoreFrozen = 2,
    RestoreLocked = 4,
    RestorePlot = 8,
    RestoreNewViewport = 16,
    RestoreColor = 32,
    RestoreLinetype = 64,
    RestoreLineweight = 128,
    RestorePlotStyle = 256,
    RestoreTransparency = 1024,
    RestoreAll = 2047,
};

/// How one layer looks.
struct LayerLook {
    enum Flag : int { Off = 1, Frozen = 2, Locked = 4, Plots = 8, FrozenInNew = 16 };
    std::string layer;
    int flags = Plots;
    int color = 7;
    std::optional<int> rgb{};  ///< 0xRRGGBB
    int lineweight = -3;       ///< in 1/100 mm, or -3 for the default
    std::string linetype = "Continuous";
    std::string plotStyle{};
    std::int64_t transparency = 0;  ///< as the layer holds it, 0 for opaque
    bool operator==(const LayerLook&) const = default;
};

LayerLook lookOf(const Drawing& drawing, RecordId layer);
/// Gives the layer what the mask names, as far as the version knows it. The current layer is never frozen.
void giveLook(Drawing& drawing, RecordId layer, const LayerLook& look, int mask);
void switchLayerOff(Drawing& drawing, RecordId layer, bool off);
/// Sets or clears one of the flags (70) of a layer.
void setLayerBit(Drawing& drawing, RecordId layer, std::int64_t bit, bool on);

}  // namespace drafthost
