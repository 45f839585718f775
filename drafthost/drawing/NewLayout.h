// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// A layout of that name behind all others, with an empty sheet; the name must not be there yet. NoRecord
/// when the drawing keeps no layouts.
RecordId makeLayout(Drawing& drawing, const std::string& name);
/// The same with the page setup of a LAYOUT object, of this drawing or of another one.
RecordId makeLayout(Drawing& drawing, const std::string& name, const Drawing& from, RecordId pattern);

/// Gives a LAYOUT object another name, which must be free.
void renameLayout(Drawing& drawing, RecordId object, const std::string& name);
/// Takes a layout away with its sheet, which must not be the active paper space.
void removeLayout(Drawing& drawing, RecordId object);

}  // namespace drafthost
