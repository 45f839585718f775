// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Extents.h"
#include "drafthost/drawing/Transform.h"

#include <array>
#include <map>
#include <numbers>

namespace drafthost {

inline constexpr double Degrees = std::numbers::pi / 180;

// Collects extents of points and curves that are given in some coordinate system. Curves are measured exactly
// under any affine map: the map of an ellipse is an ellipse, whose extremes along an axis are known.
class Outline {
  public:
    Outline(Extents& extents, const Transform& transform) : extents_(&extents), transform_(transform) {}
    /// The same in the coordinate system of an extrusion.
    Outline in(const Transform& local) const { return {*extents_, transform_ * local}; }
    const Transform& transform() const { return transform_; }
    Extents& target() const { return *extents_; }

    void point(const Point& point) { extents_->add(transform_(point)); }
    /// center + u cos t + v sin t, for t from `from` to `to` in radians; a full turn when `to` is not above.
    void curve(const Point& center, const Point& u, const Point& v, double from, double to);
    /// A circular arc in the xy plane.
    void arc(const Point& center, double radius, double from, double to);
    /// A polyline segment: bulge is the tangent of a quarter of its angle, widths are half of the full ones.
    void segment(const Point& from, const Point& to, double bulge, double halfFrom, double halfTo);

  private:
    Extents* extents_;
    Transform transform_;
};

// Walks entities, blocks within blocks, and adds what is visible. The extents of a block under one
// orientation and scale are computed once, so that thousands of insertions cost no more than thousands of
// points.
class ExtentsBuilder {
  public:
    explicit ExtentsBuilder(const Drawing& drawing);
    /// Adds a main entity, with the sub-entities behind it, to `extents`.
    void add(RecordId entity, Extents& extents) { addEntity(entity, Outline(extents, {}), false); }

  private:
    using Key = std::pair<std::size_t, std::array<double, 9>>;

    void addEntity(RecordId entity, Outline outline, bool inBlock);
    void addByType(const Record& record, std::string_view type, Outline& outline, bool inBlock);
    void addInsert(const Record& record, const Outline& outline);
    void addTable(const Record& record, const Outline& outline);
    void addAttributes(RecordId entity, const Outline& outline);
    void addPolyline(const Record& record, const Outline& outline);
    bool addBlock(std::string_view name, const Transform& transform, const Outline& outline);
    const Extents& blockExtents(const Block& block, const Transform& linear);
    bool frozen(const Record& record);

    const Drawing& drawing_;
    std::unordered_map<std::string_view, bool> frozen_;
    std::map<Key, Extents> cache_;
    std::vector<const Block*> open_;
    std::size_t visits_ = 0;
};

// Entities that stand for themselves; each adds one kind.

void addLightPolyline(const Record& record, const Outline& outline);
void addText(const Record& record, const Outline& outline);
void addMText(const Record& record, const Outline& outline);
void addHatch(const Record& record, const Outline& outline);
void addImage(const Record& record, Outline outline);
void addCircle(const Record& record, const Outline& outline, bool whole);
void addEllipse(const Record& record, Outline outline);
/// Every point under `code`.
void addPoints(const Record& record, int code, Outline outline);
/// The entity's own coordinate system.
Transform systemOf(const Record& record);

}  // namespace drafthost
