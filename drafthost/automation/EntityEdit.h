// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Changing and making entities and table records from association lists.

#include <optional>

#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::automation {

/// Writes what differs between the list and the record. Groups that the list leaves out stay; where one
/// code occurs another number of times than before, the record is written anew from the list. False when
/// the change is not allowed: another type or handle, a locked layer, an unknown linetype, a wrong colour.
bool modifyRecord(Drawing& drawing, RecordId id, const Value& list, bool& tablesChanged);

/// A new entity, table record or object; nothing when the list does not make one.
std::optional<RecordId> makeRecord(Drawing& drawing, const Value& list, bool& tablesChanged);

/// Whether the entity lies on a locked layer.
bool isLocked(const Drawing& drawing, RecordId id);

}  // namespace drafthost::automation
