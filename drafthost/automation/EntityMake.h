// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Making entities, blocks, table records and objects from association lists.

#include <optional>
#include <string>

#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::automation {

/// What one list has begun and others go on with.
struct Making {
    std::string block;         ///< from BLOCK up to ENDBLK: where entities go
    RecordId main = NoRecord;  ///< from POLYLINE or INSERT up to SEQEND
    RecordId last = NoRecord;  ///< the last of its parts
};

/// What was made: a record, or at the end of a block its name.
struct Made {
    RecordId record = NoRecord;
    std::string block;
};

/// A new entity, part of one, block, table record or object; nothing when the list does not make one.
std::optional<Made> makeRecord(Drawing& drawing, const Value& list, Making& making, bool& tablesChanged);

}  // namespace drafthost::automation
