// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost {

// An MTEXT of a 2018 drawing says its place twice: behind "Embedded Object" (101) the direction stands under
// 10, the insertion under 11 and the width under 40.

/// Where the tags of the embedded object begin, or the end of the entity's own tags.
std::size_t embeddedStart(const Record& record);
/// Makes the embedded object of an MTEXT say what its outer groups say; its own lengths grow by the scale.
void syncEmbeddedText(Drawing& drawing, RecordId mtext, double scale = 1);
/// Maps the embedded object of an attribute of several lines.
void transformEmbeddedText(Drawing& drawing, RecordId id, const Transform& map, double scale);

}  // namespace drafthost
