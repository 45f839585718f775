// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/ExtentsBuilder.h"

#include "drafthost/drawing/Structure.h"

#include <algorithm>

namespace drafthost {

namespace {

// Deeper nesting than this is a cycle that the names did not show.
constexpr std::size_t Deepest = 64;
constexpr std::int64_t LargestArray = 100000;
// So many visits of entities inside blocks are exact; a drawing made to need more gets the boxes' corners.
constexpr std::size_t ExactVisits = 4000000;

}  // namespace

ExtentsBuilder::ExtentsBuilder(const Drawing& drawing) : drawing_(drawing) {}

bool ExtentsBuilder::frozen(const Record& record) {
    const auto layer = record.find(8);
    if (!layer) {
        return false;
    }
    const std::string_view raw = record.raw(*layer);
    const auto known = frozen_.find(raw);
    if (known != frozen_.end()) {
        return known->second;
    }
    std::string name = record.text(*layer);
    name.erase(name.find_last_not_of(" \t") + 1);
    const RecordId entry = findEntry(drawing_, Table::Layer, name);
    const bool result = entry != NoRecord && (drawing_.record(entry).integerOr(70, 0) & 1) != 0;
    frozen_.emplace(raw, result);
    return result;
}

void ExtentsBuilder::addEntity(RecordId entity, Outline outline, bool inBlock) {
    const Record record = drawing_.record(entity);
    if (record.integerOr(60, 0) == 1 || frozen(record)) {
        return;
    }
    addByType(record, record.type(), outline, inBlock);
}

void ExtentsBuilder::addByType(const Record& record, std::string_view type, Outline& outline, bool inBlock) {
    if (type == "LINE") {
        Point lift = normalised(record.pointOr(210, {0, 0, 1})) * record.realOr(39, 0);
        for (const int code : {10, 11}) {
            const Point end = record.pointOr(code, {});
            outline.point(end);
            outline.point(end + lift);
        }
    } else if (type == "LWPOLYLINE") {
        addLightPolyline(record, outline);
    } else if (type == "CIRCLE" || type == "ARC") {
        addCircle(record, outline, type == "CIRCLE");
    } else if (type == "INSERT") {
        addInsert(record, outline);
    } else if (type == "TEXT" || type == "ATTRIB") {
        addText(record, outline);
    } else if (type == "ATTDEF") {
        // In an insertion the attribute's own value is shown instead.
        if (!inBlock) {
            addText(record, outline);
        }
    } else if (type == "POLYLINE") {
        addPolyline(record, outline);
    } else if (type == "MTEXT") {
        addMText(record, outline);
    } else if (type == "HATCH" || type == "MPOLYGON") {
        addHatch(record, outline);
    } else if (type == "ELLIPSE") {
        addEllipse(record, outline);
    } else if (type == "SPLINE" || type == "HELIX") {
        addPoints(record, type == "SPLINE" && record.find(11) ? 11 : 10, outline);
    } else if (type == "SOLID" || type == "TRACE") {
        const Outline local = outline.in(systemOf(record));
        for (int corner = 10; corner <= 13; ++corner) {
            addPoints(record, corner, local);
            addPoints(record, corner, local.in(Transform::translation({0, 0, record.realOr(39, 0)})));
        }
    } else if (type == "3DFACE") {
        for (int corner = 10; corner <= 13; ++corner) {
            addPoints(record, corner, outline);
        }
    } else if (type == "DIMENSION" || type == "ARC_DIMENSION" || type == "LARGE_RADIAL_DIMENSION") {
        if (!addBlock(record.textOr(2, ""), {}, outline)) {
            for (const int code : {10, 13, 14}) {
                addPoints(record, code, outline);
            }
        }
    } else if (type == "ACAD_TABLE") {
        addTable(record, outline);
    } else if (type == "IMAGE" || type == "WIPEOUT") {
        addImage(record, outline);
    } else if (type == "MLINE") {
        addPoints(record, 11, outline);
    } else if (type == "OLE2FRAME") {
        addPoints(record, 10, outline);
        addPoints(record, 11, outline);
    } else if (type == "VIEWPORT") {
        // Number 1 is the paper space itself.
        if (record.integerOr(69, 0) != 1) {
            const Point center = record.pointOr(10, {});
            const Point half{record.realOr(40, 0) / 2, record.realOr(41, 0) / 2, 0};
            outline.point(center - half);
            outline.point(center + half);
        }
    } else if (type == "POINT" || type == "LEADER" || type == "MULTILEADER" || type == "MLEADER" ||
               type == "MESH" || type == "TOLERANCE" || type == "PDFUNDERLAY" || type == "DWFUNDERLAY" ||
               type == "DGNUNDERLAY") {
        addPoints(record, 10, outline);
    } else if (type == "SHAPE") {
        addPoints(record, 10, outline.in(systemOf(record)));
    }
}

void ExtentsBuilder::addAttributes(RecordId entity, const Outline& outline) {
    for (RecordId id = drawing_.next(entity); id != NoRecord && isSubEntity(drawing_, id);
         id = drawing_.next(id)) {
        const Record record = drawing_.record(id);
        if (record.type() != "ATTRIB") {
            break;
        }
        if ((record.integerOr(70, 0) & 1) == 0) {
            addEntity(id, outline, false);
        }
    }
}

void ExtentsBuilder::addInsert(const Record& record, const Outline& outline) {
    if (record.integerOr(66, 0) != 0) {
        addAttributes(record.id(), outline);
    }
    const Transform scale =
        Transform::scale(record.realOr(41, 1), record.realOr(42, 1), record.realOr(43, 1));
    const Transform rotation = Transform::rotation(record.realOr(50, 0) * Degrees);
    const Transform system = systemOf(record) * Transform::translation(record.pointOr(10, {})) * rotation;
    // Of an array only the corners matter.
    const std::int64_t columns = std::clamp<std::int64_t>(record.integerOr(70, 1), 1, LargestArray);
    const std::int64_t rows = std::clamp<std::int64_t>(record.integerOr(71, 1), 1, LargestArray);
    const double right = record.realOr(44, 0) * static_cast<double>(columns - 1);
    const double up = record.realOr(45, 0) * static_cast<double>(rows - 1);
    const std::string name = record.textOr(2, "");
    for (const Point corner : {Point{0, 0, 0}, {right, 0, 0}, {0, up, 0}, {right, up, 0}}) {
        addBlock(name, system * Transform::translation(corner) * scale, outline);
        if (columns == 1 && rows == 1) {
            break;
        }
    }
}

void ExtentsBuilder::addTable(const Record& record, const Outline& outline) {
    const Point normal = normalised(record.pointOr(210, {0, 0, 1}));
    const Point direction = record.pointOr(11, {1, 0, 0});
    const Point x = length(direction) > 0 ? normalised(direction) : Point{1, 0, 0};
    addBlock(record.textOr(2, ""), {x, cross(normal, x), normal, record.pointOr(10, {})}, outline);
}

void ExtentsBuilder::addPolyline(const Record& record, const Outline& outline) {
    const std::int64_t flags = record.integerOr(70, 0);
    const bool flat = (flags & (8 | 16 | 64)) == 0;
    Outline local = flat ? outline.in(systemOf(record)) : outline;
    const double elevation = record.pointOr(10, {}).z;
    const double thickness = record.realOr(39, 0);
    struct Vertex {
        Point point;
        double bulge;
        double from;
        double to;
    };
    std::vector<Vertex> vertices;
    const double from = record.realOr(40, 0);
    const double to = record.realOr(41, 0);
    for (RecordId id = drawing_.next(record.id()); id != NoRecord && drawing_.type(id) == "VERTEX";
         id = drawing_.next(id)) {
        const Record vertex = drawing_.record(id);
        const std::int64_t kind = vertex.integerOr(70, 0);
        // Frame points of a fitted curve are not drawn; faces of a face mesh have no place of their own.
        const bool face = (flags & 64) != 0 && (kind & 128) != 0 && (kind & 64) == 0;
        if (face || ((flags & 4) != 0 && (kind & 16) != 0)) {
            continue;
        }
        const Point place = vertex.pointOr(10, {});
        if (!flat) {
            local.point(place);
            continue;
        }
        vertices.push_back({{place.x, place.y, elevation},
                            vertex.realOr(42, 0),
                            vertex.realOr(40, from) / 2,
                            vertex.realOr(41, to) / 2});
    }
    const bool closed = (flags & 1) != 0;
    for (const double lift : {0.0, thickness}) {
        for (std::size_t i = 0; i + (closed ? 0 : 1) < vertices.size(); ++i) {
            const Vertex& vertex = vertices[i];
            const Point next = vertices[(i + 1) % vertices.size()].point;
            local.segment(vertex.point + Point{0, 0, lift}, next + Point{0, 0, lift}, vertex.bulge,
                          vertex.from, vertex.to);
        }
    }
}

// False when there is no such block, or it holds itself.
bool ExtentsBuilder::addBlock(std::string_view name, const Transform& transform, const Outline& outline) {
    const Block* block = findBlock(drawing_, name);
    if (block == nullptr || open_.size() > Deepest ||
        std::find(open_.begin(), open_.end(), block) != open_.end()) {
        return false;
    }
    const Transform total = outline.transform() * transform;
    Transform linear = total;
    linear.origin = {};
    if (visits_ > ExactVisits && linear != Transform{}) {
        const Extents& box = blockExtents(*block, {});
        const Point base = drawing_.record(block->begin).pointOr(10, {});
        for (int corner = 0; corner < 8 && !box.empty(); ++corner) {
            outline.target().add(total(Point{(corner & 1) != 0 ? box.max.x : box.min.x,
                                             (corner & 2) != 0 ? box.max.y : box.min.y,
                                             (corner & 4) != 0 ? box.max.z : box.min.z} -
                                       base));
        }
        return true;
    }
    const Extents& own = blockExtents(*block, linear);
    if (!own.empty()) {
        const Point base = linear(drawing_.record(block->begin).pointOr(10, {}));
        outline.target().add(Point{own.min + total.origin - base});
        outline.target().add(Point{own.max + total.origin - base});
    }
    return true;
}

const Extents& ExtentsBuilder::blockExtents(const Block& block, const Transform& linear) {
    const std::size_t index = static_cast<std::size_t>(&block - blocks(drawing_).data());
    const Key key{index,
                  {linear.x.x, linear.x.y, linear.x.z, linear.y.x, linear.y.y, linear.y.z, linear.z.x,
                   linear.z.y, linear.z.z}};
    const auto known = cache_.find(key);
    if (known != cache_.end()) {
        return known->second;
    }
    open_.push_back(&block);
    Extents extents;
    const RecordId past = pastEntities(drawing_, block.end);
    for (RecordId id = firstInBlock(drawing_, block); id != NoRecord && id != past; id = drawing_.next(id)) {
        ++visits_;
        if (!isSubEntity(drawing_, id)) {
            addEntity(id, Outline(extents, linear), true);
        }
    }
    open_.pop_back();
    return cache_.emplace(key, extents).first->second;
}

Extents computeExtents(const Drawing& drawing, bool paper) {
    Extents extents;
    ExtentsBuilder builder(drawing);
    const Structure::Section& section = drawing.structure().entitiesSection;
    if (section.begin == NoRecord) {
        return extents;
    }
    const RecordId past = pastEntities(drawing, section.end);
    for (RecordId id = drawing.next(section.begin); id != NoRecord && id != past; id = drawing.next(id)) {
        if (!isSubEntity(drawing, id) && (drawing.record(id).integerOr(67, 0) != 0) == paper) {
            builder.add(id, extents);
        }
    }
    return extents;
}

Extents computeExtents(const Drawing& drawing, const std::vector<RecordId>& entities) {
    Extents extents;
    ExtentsBuilder builder(drawing);
    for (const RecordId id : entities) {
        builder.add(id, extents);
    }
    return extents;
}

}  // namespace drafthost
