// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// Definitions of blocks: filled, replaced, written out.

/// Takes everything out of a block.
void clearBlock(Drawing& drawing, const std::string& name);
/// Puts what stands in a drawing file's model space into a block of that name, new or emptied before; with
/// its units. False with one line of cause and nothing changed when the file cannot be read.
bool loadBlock(Drawing& drawing, const std::string& path, const std::string& name, std::string& error);
/// Moves entities of the drawing into a block with this base point, new or emptied before. The originals
/// stay. False when the drawing has no place for blocks.
bool defineBlock(Drawing& drawing, const std::string& name, const Point& base,
                 const std::vector<RecordId>& entities);
/// Whether any of the entities is a reference that leads, in any depth, to the block of that name.
bool leadsTo(const Drawing& drawing, const std::vector<RecordId>& entities, const std::string& name);

/// References to a block, in layouts and in other blocks.
std::vector<RecordId> referencesTo(const Drawing& drawing, const std::string& name);

/// Factor from the units that a block was drawn in to those of the drawing; 1 where either has none.
double unitFactor(const Drawing& drawing, const std::string& block);

/// The entities as the model space of a drawing of their own, with the settings of this one. Its base point
/// is where the entities are to be inserted by.
std::unique_ptr<Drawing> drawingOf(const Drawing& drawing, const std::vector<RecordId>& entities,
                                   const Point& base);

}  // namespace drafthost
