// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What commands that edit objects have in common.

#include <string>
#include <vector>

#include "drafthost/commands/UserSystem.h"
#include "drafthost/drawing/EntityBuilder.h"
#include "drafthost/editor/Command.h"

namespace drafthost::commands {

/// Maps the objects in the world; tells what cannot be, once for each cause. Returns how many were.
std::size_t transformAll(CommandContext& context, const std::vector<RecordId>& entities,
                         const Transform& map);
/// Copies of the objects, each in the place of its original.
std::vector<RecordId> copyAll(CommandContext& context, const std::vector<RecordId>& entities);
/// Erases an object so that OOPS and (entdel) can give it back.
void eraseEntity(CommandContext& context, RecordId entity);

/// A number of an entity, in the part of the record where its code belongs.
void setGroupInPlace(Drawing& drawing, RecordId id, int code, double value);

/// A map of the current UCS as one of the world.
Transform worldMap(const Drawing& drawing, const Transform& inUcs);
/// The same map about another origin.
Transform about(const Point& origin, const Transform& map);

/// Whoever started the command sits at the keyboard: commands that go round until Enter do so for people.
bool isByHand(const CommandContext& context);

/// A new object of the current space in the plane of the UCS.
class DrawnEntity : public EntityBuilder<DrawnEntity> {
  public:
    DrawnEntity(CommandContext& context, std::string_view type, std::string_view marker);
    /// A point of the UCS in world coordinates.
    DrawnEntity& world(int code, const Point& ucs) { return point(code, worldFromUcs(drawing(), ucs)); }
    /// A point of the UCS in the plane of the object.
    DrawnEntity& planar(int code, const Point& ucs) {
        return point(code, plane_.place(worldFromUcs(drawing(), ucs)));
    }
    /// A direction of the UCS, radians, as degrees in the plane of the object.
    DrawnEntity& direction(int code, double radians);
    /// The plane, where it is not that of the world, and the thickness that new objects get.
    RecordId finish();
    const EntityPlane& plane() const { return plane_; }

  private:
    EntityPlane plane_;
};

}  // namespace drafthost::commands
