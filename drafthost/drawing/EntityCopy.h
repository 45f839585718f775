// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "drafthost/drawing/Blocks.h"

namespace drafthost {

/// Where entities are put: model space, a paper space, or a block. Found again by name after every edit.
struct BlockTarget {
    std::string block;  ///< "*Model_Space", "*Paper_Space", a block's name
    bool operator==(const BlockTarget&) const = default;
};

/// The place in which an entity lies.
BlockTarget targetOf(const Drawing& drawing, RecordId entity);
/// The place that is current: CTAB's.
BlockTarget currentTarget(const Drawing& drawing);

/// A new entity at the end of a place, with handle, owner, marker and layer as far as the version has them;
/// its own tags are the caller's. NoRecord when there is no such block.
RecordId addEntityTo(Drawing& drawing, const BlockTarget& target, std::string_view type,
                     std::string_view layer);

/// A part of an entity (VERTEX, ATTRIB, SEQEND) behind another of its records, with handle, owner and marker.
RecordId addPart(Drawing& drawing, RecordId main, RecordId behind, std::string_view type,
                 const std::string& layer);

/// Copies an entity with all that belongs to it: vertices, attributes, the picture of a dimension, extension
/// dictionaries not. NoRecord when there is no such block.
RecordId copyEntity(Drawing& drawing, RecordId entity, const BlockTarget& target);

/// A block of a name that is not taken, with no entities yet. False when the drawing has no place for blocks.
bool addBlock(Drawing& drawing, const std::string& name, const Point& base);
/// The next free name of an anonymous block: "*U1", "*D7".
std::string anonymousName(const Drawing& drawing, char kind);
/// Removes a block with all that is in it, and its record.
void deleteBlock(Drawing& drawing, const std::string& name);

}  // namespace drafthost
