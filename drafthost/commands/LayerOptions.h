// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The options of -LAYER, one coroutine each, and what they share. The command itself only asks for the option
// and goes round until Enter.

#include <functional>
#include <string>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/Command.h"

namespace drafthost::commands {

// LayerState.cpp: which layers there are, and what is shown.
Task<bool> listLayers(CommandContext& context);
Task<bool> makeLayer(CommandContext& context);
Task<bool> setLayer(CommandContext& context);
Task<bool> newLayers(CommandContext& context);
Task<bool> renameLayer(CommandContext& context);
Task<bool> layersOn(CommandContext& context);
Task<bool> layersOff(CommandContext& context);
Task<bool> freezeLayers(CommandContext& context);
Task<bool> thawLayers(CommandContext& context);
Task<bool> lockLayers(CommandContext& context);
Task<bool> unlockLayers(CommandContext& context);
Task<bool> reconcileLayers(CommandContext& context);
Task<bool> xrefLayers(CommandContext& context);

// LayerProperties.cpp: how layers look.
Task<bool> colorLayers(CommandContext& context);
Task<bool> linetypeLayers(CommandContext& context);
Task<bool> lineweightLayers(CommandContext& context);
Task<bool> transparencyLayers(CommandContext& context);
Task<bool> materialLayers(CommandContext& context);
Task<bool> plotLayers(CommandContext& context);
Task<bool> plotStyleLayers(CommandContext& context);
Task<bool> describeLayers(CommandContext& context);

// LayerStateOption.cpp: how they look, kept under names.
Task<bool> layerStates(CommandContext& context);

/// Name of the current layer.
std::string currentLayerName(CommandContext& context);
/// A name or a list of names; in quotes when it holds blanks.
Ask askName(CommandContext& context, std::string prompt, const std::string& standard = {});
/// Asks for a list of layers and does something to each that it means; tells when it means none. The current
/// layer is the default when `currentAsDefault`. False when nothing was done.
Task<bool> forLayers(CommandContext& context, std::string prompt, bool currentAsDefault,
                     std::function<void(Drawing&, RecordId)> change);
/// Tells it when the drawing's version is older than the property.
bool versionHolds(CommandContext& context, int version, std::string_view property);
bool sameName(std::string_view a, std::string_view b);

}  // namespace drafthost::commands
