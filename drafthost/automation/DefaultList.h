// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Groups that files leave out and lists show.

#include <vector>

#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/EntityDefaults.h"

namespace drafthost::automation {

Value defaultValue(const DefaultGroup& group);
/// Adds what the record leaves out to the pairs of its list (without extended data), each in its part.
void addDefaults(const Record& record, std::vector<Value>& pairs);
/// Whether a list's value says no more than what holds anyway, where the record leaves the group out.
bool isDefault(const Record& record, int code, const Value& value);
/// The pairs of a light polyline without widths and bulges that hold anyway.
void dropVertexDefaults(std::vector<Value>& pairs);

}  // namespace drafthost::automation
