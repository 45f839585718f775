// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// What can be purged, in the order in which it is.
enum class PurgeKind {
    Block,
    Dimstyle,
    Group,
    Layer,
    Linetype,
    Material,
    MultileaderStyle,
    PlotStyle,
    Shape,
    TextStyle,
    MlineStyle,
    TableStyle,
    VisualStyle,
    Regapp,
    ZeroLength,
    EmptyText,
};

struct Purgeable {
    std::string name;  ///< empty for geometry
    RecordId record = NoRecord;
};

/// What of that kind nothing in the drawing refers to: nothing drawn, no other definition, no header
/// variable, no object by its handle. Whatever cannot be told for sure counts as referred to.
std::vector<Purgeable> purgeable(const Drawing& drawing, PurgeKind kind);
/// Removes it.
void purge(Drawing& drawing, PurgeKind kind, const Purgeable& what);
/// Purges every kind but applications, geometry and texts until nothing is left; the number removed.
std::size_t purgeAll(Drawing& drawing);
/// Whether anything refers to a record of a symbol table.
bool isReferenced(const Drawing& drawing, RecordId record);

}  // namespace drafthost
