// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// What a look over the whole drawing has found.
struct AuditReport {
    std::vector<std::string> lines;  ///< one for each error, with what was or would be done
    std::size_t found = 0;
    std::size_t fixed = 0;
    std::size_t erased = 0;
    std::size_t blocks = 0;
    std::size_t objects = 0;
    std::vector<RecordId> mended;  ///< entities that were mended and are still there
};

/// Looks for what would keep others from reading the drawing, and mends it with `fix`: handles given twice,
/// owners, layers, linetypes, styles and blocks that are not there, references to what is gone, sequences
/// without an end, extrusions of no length, coordinates that are no numbers, names given twice, blocks that
/// hold themselves, dictionaries that name nothing.
AuditReport audit(Drawing& drawing, bool fix);

}  // namespace drafthost
