// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "drafthost/drawing/LayerLook.h"

namespace drafthost {

// Layer states: how the layers of a drawing look, kept under a name. A drawing holds each as an XRECORD of
// the dictionary ACAD_LAYERSTATES, which the layer table has as its extension. The groups were read from
// drawings that other programs wrote.

struct LayerState {
    std::string name;
    std::string description{};
    int mask = RestoreAll;
    std::string current = "0";
    std::vector<LayerLook> layers{};

    LayerLook* find(std::string_view layer);
};

/// Whether a state may have the name.
bool isLayerStateName(std::string_view name);
std::vector<std::string> layerStateNames(const Drawing& drawing);
std::optional<LayerState> findLayerState(const Drawing& drawing, std::string_view name);
/// All layers of the drawing as they are.
LayerState currentLayerState(const Drawing& drawing, std::string name);
/// Keeps a state, in the place of one of that name. False in drawings that have no objects (before R13).
bool putLayerState(Drawing& drawing, const LayerState& state);
/// False when there is none of that name.
bool removeLayerState(Drawing& drawing, std::string_view name);
bool renameLayerState(Drawing& drawing, std::string_view name, const std::string& to);

/// What becomes of the layers that the state does not know.
enum OtherLayers : int { OthersStay = 0, OthersOff = 1, OthersFrozen = 2 };
/// Gives the layers back what the mask names and makes the state's layer current. The names of the layers
/// that it met.
std::vector<std::string> restoreLayerState(Drawing& drawing, const LayerState& state,
                                           int others = OthersStay);
/// Whether the layers look as the state has them.
bool agreesWith(const Drawing& drawing, const LayerState& state);
/// Makes the layers of a state that the drawing has not.
void provideLayers(Drawing& drawing, const LayerState& state);

}  // namespace drafthost
