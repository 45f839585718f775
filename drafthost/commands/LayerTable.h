// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What layers hold and how it is written into the drawing. Names come as lists with wildcards; properties
// that came later than the layer itself stand in tags or extended data of their own, which not every version
// of the format has.

#include <string>
#include <string_view>
#include <vector>

#include "drafthost/commands/ColorNames.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::commands {

/// Bits of a layer's flags (70).
enum LayerFlag : int { LayerFrozen = 1, LayerLocked = 4 };

/// The layers that a list of names means: names and patterns separated by commas, without regard to case. A
/// name that is there as it stands is no pattern. In the order of the drawing.
std::vector<RecordId> matchingLayers(const Drawing& drawing, std::string_view list);
/// Enters layer 0 into the table when the list names it and the drawing does not have it written down: every
/// drawing has that layer, but small old ones leave it out.
void provideLayerZero(Drawing& drawing, std::string_view list);
/// Empty when the name may be given to a layer; else one line of reason. Before 2000 names were letters,
/// digits, $, - and _, up to 31 of them.
std::string layerNameFault(const Drawing& drawing, std::string_view name);

Color layerColor(const Drawing& drawing, RecordId layer);
/// Keeps the layer off when it is off.
void setLayerColor(Drawing& drawing, RecordId layer, const Color& color);
bool layerIsOff(const Drawing& drawing, RecordId layer);
bool layerHas(const Drawing& drawing, RecordId layer, LayerFlag flag);
void setLayerFlag(Drawing& drawing, RecordId layer, LayerFlag flag, bool on);
void setLayerLinetype(Drawing& drawing, RecordId layer, std::string_view linetype);
/// In 1/100 mm, or -3 for the default.
void setLayerLineweight(Drawing& drawing, RecordId layer, int hundredths);
void setLayerPlots(Drawing& drawing, RecordId layer, bool plots);
/// Plot style or material, by the handle of its object.
void setLayerPlotStyle(Drawing& drawing, RecordId layer, std::uint64_t handle);
void setLayerMaterial(Drawing& drawing, RecordId layer, std::uint64_t handle);
/// Per cent from 0 (opaque) to 90.
int layerTransparency(const Drawing& drawing, RecordId layer);
void setLayerTransparency(Drawing& drawing, RecordId layer, int percent);
std::string layerDescription(const Drawing& drawing, RecordId layer);
void setLayerDescription(Drawing& drawing, RecordId layer, std::string_view description);
/// Marks a layer that is noted as new to the drawing as known; false when it was not noted as new.
bool reconcileLayer(Drawing& drawing, RecordId layer);

/// Handle of a named object in one of the root's dictionaries ("ACAD_MATERIAL"), 0 when there is none.
std::uint64_t namedObject(const Drawing& drawing, std::string_view dictionary, std::string_view name);
/// The names in one of the root's dictionaries.
std::vector<std::string> namedObjects(const Drawing& drawing, std::string_view dictionary);

}  // namespace drafthost::commands
