// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// How every layer looks at one time: by its name, the groups that a layer's switches and properties stand
/// in.
struct LayerSnapshot {
    std::map<std::string, std::vector<std::pair<int, Value>>> layers;
    std::string current;
    bool operator==(const LayerSnapshot&) const = default;
};

LayerSnapshot layerSnapshot(const Drawing& drawing);
/// Gives the layers that are still there what they had. Names, and layers that are gone, stay as they are.
void restoreLayers(Drawing& drawing, const LayerSnapshot& snapshot);

}  // namespace drafthost
