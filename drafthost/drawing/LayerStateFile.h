// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drafthost/drawing/LayerStates.h"

namespace drafthost {

// Layer states in a file of their own (.las): lines in pairs of a group code and a value, in UTF-8, as in a
// drawing. "LAYERSTATEDICTIONARY", then for each "LAYERSTATE" its name (1), the groups of the drawing's
// record, and the layers by their names (8), with names of linetypes (6) in place of handles.

std::string layerStateFileText(const LayerState& state);
/// The states of a file; empty when it is none.
std::vector<LayerState> readLayerStateFile(std::string_view text);

/// Brings the states of a file into the drawing, those of a drawing (.dxf) by their names or all ("*"), and
/// makes the layers that are missing. Their names; none with one line of error that names the file.
std::vector<std::string> importLayerStates(Drawing& drawing, const std::string& path, std::string_view name,
                                           std::string& error);
/// Writes one state; false with one line of error.
bool exportLayerState(const Drawing& drawing, std::string_view name, const std::string& path,
                      std::string& error);

}  // namespace drafthost
