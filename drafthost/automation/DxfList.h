// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Records of the drawing as association lists of group codes, and back. The lists show the values as the
// drawing has them; what a list does not change is never written.

#include <optional>
#include <string>

#include "drafthost/automation/EntityNames.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::automation {

/// The record of a name if it is not deleted.
std::optional<RecordId> aliveRecord(const Drawing& drawing, EntityName name);

/// The drawing of the evaluator's document; fails when it has none.
Drawing& drawingOf(Evaluator& e);

/// Extended data of which applications a list shows: "*" for all; names are patterns.
using Applications = std::vector<std::string>;

/// What (entget) gives: name, type, owner, handle, then the groups as they stand. Entities of layouts
/// show their space (67) and layout (410) even where the file leaves them out.
Value recordList(const Drawing& drawing, RecordId id, const Applications& applications);

/// What (tblsearch) gives: no names, handles and references.
Value tableList(const Drawing& drawing, RecordId id);

/// Tags of a record's group `i`: 1, or 2 and 3 for points.
std::size_t groupWidth(const Record& record, std::size_t i);
/// Value of the group at `i`: text, number, point, or the name of the object that a handle refers to.
Value groupValue(const Drawing& drawing, const Record& record, std::size_t i);

/// Fails unless every item of the list is a pair with a group code that its value fits.
void checkGroups(const Value& list);
/// Whether the value fits the group code.
bool fitsGroup(int code, const Value& value);
/// Sets the group at tag `i` of a record, which is as wide as `width`.
void setGroup(Drawing& drawing, RecordId id, std::size_t i, int code, const Value& value);
/// Adds a group at the place where its code belongs.
void addGroup(Drawing& drawing, RecordId id, int code, const Value& value);
/// Adds a group behind all others.
void appendGroup(Drawing& drawing, RecordId id, int code, const Value& value);
/// Replaces the extended data of the applications named in a -3 group's items.
void setExtendedData(Drawing& drawing, RecordId id, const Value& applications);
/// The value of the first pair with that code, or nullptr.
const Value* groupOf(const Value& list, int code);

}  // namespace drafthost::automation
