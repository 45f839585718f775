// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The current tab of a drawing. A file keeps only the contents of model space and of one layout in its
// ENTITIES section, so going to another layout means that two blocks change their names and contents their
// place.

#include <string>
#include <string_view>

#include "drafthost/drawing/Drawing.h"

namespace drafthost::commands {

/// "Model", or the name of the layout whose contents are the active paper space.
std::string currentLayoutName(const Drawing& drawing);
/// Makes a tab current by name in any case; false and one line of reason when the drawing has none of that
/// name.
bool makeLayoutCurrent(Drawing& drawing, std::string_view name, std::string& reason);

/// Viewports of the current layout, the sheet itself left out.
std::vector<RecordId> layoutViewports(const Drawing& drawing);
/// The sheet's own viewport; NoRecord when the layout was never shown.
RecordId sheetViewport(const Drawing& drawing);
/// Works in model space through the viewport of that number (group 69) from now on, or on the sheet again
/// with 1. False when the current layout has none of that number.
bool enterViewport(Drawing& drawing, int number);

}  // namespace drafthost::commands
