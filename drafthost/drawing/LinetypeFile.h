// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// A linetype as a linetype file defines it: lengths of dashes (above 0), gaps (below) and dots (0).
struct LinetypeDefinition {
    std::string name;
    std::string description;
    std::vector<double> dashes;
    /// It holds texts or shapes, or cannot be read: why it cannot be loaded.
    std::string fault;
};

/// The definitions of a linetype file: "*NAME,description" and on the next line "A,0.5,-0.25".
std::vector<LinetypeDefinition> readLinetypes(std::string_view text);
/// Those that every drawing can have: hidden, center, phantom, dashed, dot, dashdot, border and divide, each
/// also at half and at double size. In inches, or in millimetres.
std::vector<LinetypeDefinition> standardLinetypes(bool metric);

/// Puts a definition into the drawing, over one of the same name.
RecordId loadLinetype(Drawing& drawing, const LinetypeDefinition& definition);
/// The linetype of that name; a standard one that the drawing lacks is loaded. NoRecord when there is none.
RecordId provideLinetype(Drawing& drawing, std::string_view name);

}  // namespace drafthost
