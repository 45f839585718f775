// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Properties that stand in one group of a record.

#include <optional>

#include "drafthost/activex/Model.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost::activex {

/// The tag with a code behind the marker of that subclass ("": the first that no {…} group holds).
std::optional<std::size_t> groupTag(const Record& record, int code, std::string_view subclass);
Result getGroup(Call& call, const Property& property);
void putGroup(Call& call, const Property& property, const Value& value);

double groupReal(const Record& record, int code, double otherwise, std::string_view subclass = "");
/// Sets a group, or puts it at the end of its subclass.
void setGroup(Drawing& drawing, RecordId id, int code, const drafthost::Value& value,
              std::string_view subclass = "");
void setGroupPoint(Drawing& drawing, RecordId id, int code, const Point& point,
                   std::string_view subclass = "");
void removeGroup(Drawing& drawing, RecordId id, int code);

/// From the entity's own system to the world's, by its extrusion (210).
Transform ocsOf(const Record& record);
/// The way back; the map must be a rotation.
Point intoOcs(const Transform& ocs, const Point& world);

/// Fails when an entity lies on a locked layer.
void checkUnlocked(const Call& call);

}  // namespace drafthost::activex
