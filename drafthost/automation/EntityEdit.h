// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Changing entities and table records by association lists, and what making them has in common with it.

#include <optional>

#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::automation {

/// Writes what differs between the list and the record. Groups that the list leaves out stay; where one
/// code occurs another number of times than before, the record is written anew from the list. Groups 67 and
/// 410 move an entity between model space and the active sheet. False when the change is not allowed: another
/// type or handle, a locked layer, an unknown linetype, style or block, a wrong colour, another sheet.
bool modifyRecord(Drawing& drawing, RecordId id, const Value& list, bool& tablesChanged);

/// Whether the entity lies on a locked layer.
bool isLocked(const Drawing& drawing, RecordId id);

/// Groups that name the record or tell where it stands; they are not for the list to change.
bool isFixedGroup(int code);
/// The list as the host takes it: numbers as the groups have them, and of groups that an entity of that type
/// has once the last.
Value takenList(const Value& list, std::string_view type);
/// Whether everything that the list names is in the drawing, and its colour one that there is.
bool referencesAreValid(const Drawing& drawing, std::string_view type, const Value& list);
/// A layer that an entity is put on comes into being; false when its name is empty.
bool needLayer(Drawing& drawing, const Value& list, bool& tablesChanged);
/// The type that a list gives, in capitals.
std::string typeOfList(const Value& list);

}  // namespace drafthost::automation
