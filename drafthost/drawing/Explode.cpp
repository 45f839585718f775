// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Explode.h"

#include <algorithm>
#include <cmath>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/EntityTransform.h"

namespace drafthost {

namespace {

using Made = std::vector<RecordId>;

/// Colour, linetype and so on of one entity given to another.
void takeProperties(Drawing& drawing, RecordId from, RecordId to) {
    for (const int code : {6, 48, 60, 62, 370, 420, 430, 440}) {
        if (const auto i = drawing.record(from).find(code)) {
            drawing.put(to, code, drawing.record(from).value(*i), {8});
        }
    }
}

RecordId addPart(Drawing& drawing, RecordId source, std::string_view type, std::string_view marker) {
    const BlockTarget target = targetOf(drawing, source);
    const std::string layer = drawing.record(source).textOr(8, "0");
    const RecordId id = addEntityTo(drawing, target, type, layer);
    if (id != NoRecord) {
        takeProperties(drawing, source, id);
        if (drawing.versionNumber() >= 1012) {
            drawing.appendTag(id, 100, std::string(marker));
        }
    }
    return id;
}

void appendPoint(Drawing& drawing, RecordId id, int code, const Point& p) {
    drawing.appendTag(id, code, p.x);
    drawing.appendTag(id, code + 10, p.y);
    drawing.appendTag(id, code + 20, p.z);
}

RecordId addPiece(Drawing& drawing, RecordId source, const CurvePiece& piece, const Transform& plane) {
    if (piece.kind == CurvePiece::Kind::Line) {
        const RecordId line = addPart(drawing, source, "LINE", "AcDbLine");
        appendPoint(drawing, line, 10, piece.at(piece.from));
        appendPoint(drawing, line, 11, piece.at(piece.to));
        return line;
    }
    const RecordId arc = addPart(drawing, source, "ARC", "AcDbCircle");
    const auto flat = [&](const Point& p) {
        const auto dot = [&](const Point& axis) { return axis.x * p.x + axis.y * p.y + axis.z * p.z; };
        return Point{dot(plane.x), dot(plane.y), dot(plane.z)};
    };
    appendPoint(drawing, arc, 10, flat(piece.center));
    drawing.appendTag(arc, 40, length(piece.u));
    if (!(plane.z == Point{0, 0, 1})) {
        appendPoint(drawing, arc, 210, plane.z);
    }
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(arc, 100, "AcDbArc");
    }
    drawing.appendTag(arc, 50, directionInDegrees(std::min(piece.fromAngle, piece.toAngle)));
    drawing.appendTag(arc, 51, directionInDegrees(std::max(piece.fromAngle, piece.toAngle)));
    return arc;
}

std::optional<Made> explodePolyline(Drawing& drawing, RecordId entity, std::string& error) {
    const auto curve = Curve::of(drawing, entity);
    if (!curve) {
        error = "a mesh has no parts that this host knows";
        return std::nullopt;
    }
    const Record record = drawing.record(entity);
    const auto extrusion = record.find(210);
    const Transform plane = extrusion ? Transform::ofExtrusion(record.point(*extrusion)) : Transform();
    Made made;
    for (const CurvePiece& piece : curve->pieces()) {
        made.push_back(addPiece(drawing, entity, piece, plane));
    }
    return made;
}

/// A circle or arc that is stretched becomes an ellipse.
RecordId stretchArc(Drawing& drawing, RecordId source, const Transform& map, const BlockTarget& target) {
    const auto curve = Curve::of(drawing, source);
    const CurvePiece& piece = curve->pieces().front();
    const Point u = map.vector(piece.u);
    const Point v = map.vector(piece.v);
    // The axes of the image (conjugate half diameters turned until they stand upright on each other).
    const auto dot = [](const Point& a, const Point& b) { return a.x * b.x + a.y * b.y + a.z * b.z; };
    const double turn = std::atan2(2 * dot(u, v), dot(u, u) - dot(v, v)) / 2;
    Point major = u * std::cos(turn) + v * std::sin(turn);
    Point minor = v * std::cos(turn) - u * std::sin(turn);
    double shift = turn;
    if (length(minor) > length(major)) {
        std::swap(major, minor);
        minor = minor * -1.0;
        shift += 90 * RadiansPerDegree;
    }
    const RecordId id = addEntityTo(drawing, target, "ELLIPSE", drawing.record(source).textOr(8, "0"));
    takeProperties(drawing, source, id);
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 100, "AcDbEllipse");
    }
    const Point normal = normalised(cross(major, minor));
    appendPoint(drawing, id, 10, map(piece.center));
    appendPoint(drawing, id, 11, major);
    appendPoint(drawing, id, 210, normal);
    const double ratio = length(minor) / length(major);
    drawing.appendTag(id, 40, ratio);
    const bool whole = drawing.type(source) == "CIRCLE";
    drawing.appendTag(id, 41, whole ? 0.0 : piece.fromAngle - shift);
    drawing.appendTag(id, 42, whole ? 360 * RadiansPerDegree : piece.toAngle - shift);
    return id;
}

bool keepsAngles(const Transform& map) {
    const double x = length(map.x);
    const auto dot = [](const Point& a, const Point& b) { return a.x * b.x + a.y * b.y + a.z * b.z; };
    const double limit = 1e-9 * x;
    return x > 0 && std::abs(length(map.y) - x) <= limit && std::abs(length(map.z) - x) <= limit &&
           std::abs(dot(map.x, map.y)) <= limit * x;
}

/// A reference or a line of text in a block that is stretched along its axes.
bool stretchFlat(Drawing& drawing, RecordId id, const Transform& map) {
    const Record record = drawing.record(id);
    if (record.find(210) ||
        std::abs(map.x.z) + std::abs(map.y.z) + std::abs(map.z.x) + std::abs(map.z.y) > 1e-12) {
        return false;
    }
    const bool text = record.type() != "INSERT";
    const double angle = record.realOr(50, 0) * RadiansPerDegree;
    const Point along = map.vector({std::cos(angle), std::sin(angle), 0});
    const Point up = map.vector({-std::sin(angle), std::cos(angle), 0});
    if (std::abs(along.x * up.x + along.y * up.y) > 1e-9 * length(along) * length(up) ||
        along.x * up.y - along.y * up.x < 0) {
        return false;
    }
    for (const int code : {10, 11}) {
        if (const auto i = drawing.record(id).find(code)) {
            drawing.putPoint(id, code, map(drawing.record(id).point(*i)), true);
        }
    }
    drawing.put(id, 50, directionInDegrees(std::atan2(along.y, along.x)), {10, 41, 42, 43, 40, 1});
    if (text) {
        drawing.put(id, 40, record.realOr(40, 1) * length(up));
        drawing.put(id, 41, record.realOr(41, 1) * length(along) / length(up), {1});
    } else {
        drawing.put(id, 41, record.realOr(41, 1) * length(along), {10});
        drawing.put(id, 42, record.realOr(42, 1) * length(up), {41});
        drawing.put(id, 43, record.realOr(43, 1) * length(map.z), {42});
    }
    return true;
}

bool addPartOf(Drawing& drawing, RecordId reference, RecordId source, const Transform& map, Made& made,
               std::string& error) {
    const BlockTarget target = targetOf(drawing, reference);
    const std::string type(drawing.type(source));
    const bool similar = keepsAngles(map);
    if (!similar && (type == "CIRCLE" || type == "ARC")) {
        made.push_back(stretchArc(drawing, source, map, target));
        return true;
    }
    if (!similar && type == "LWPOLYLINE") {
        const auto pieces = explodePolyline(drawing, source, error);
        if (!pieces) {
            return false;
        }
        bool done = true;
        for (const RecordId piece : *pieces) {
            done = done && addPartOf(drawing, reference, piece, map, made, error);
            drawing.deleteRecord(piece);
        }
        return done;
    }
    const RecordId id = copyEntity(drawing, source, target);
    if (id == NoRecord) {
        error = "the drawing has no place for the parts";
        return false;
    }
    made.push_back(id);
    const bool flat = type == "INSERT" || type == "TEXT" || type == "ATTDEF";
    const bool done = !similar && flat ? stretchFlat(drawing, id, map)
                                       : transformEntity(drawing, id, map, {.mirrorText = true}, error);
    if (!done && error.empty()) {
        error = "a " + type + " cannot be stretched along one axis";
    }
    return done;
}

std::optional<Made> explodeInsert(Drawing& drawing, RecordId insert, std::string& error) {
    const std::string name = drawing.record(insert).textOr(2, "");
    const Block* block = findBlock(drawing, name);
    constexpr std::int64_t External = 4 | 8 | 16;
    if (block == nullptr || (drawing.record(block->begin).integerOr(70, 0) & External) != 0) {
        error = "the block \"" + name + "\" is " + (block == nullptr ? "missing" : "an external reference");
        return std::nullopt;
    }
    const std::vector<RecordId> parts = entitiesOf(drawing, *block);
    const auto columns = static_cast<int>(std::max<std::int64_t>(1, drawing.record(insert).integerOr(70, 1)));
    const auto rows = static_cast<int>(std::max<std::int64_t>(1, drawing.record(insert).integerOr(71, 1)));
    Made made;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const Transform map = insertTransform(drawing, insert, column, row);
            for (const RecordId part : parts) {
                if (!addPartOf(drawing, insert, part, map, made, error)) {
                    for (const RecordId id : made) {
                        deleteEntity(drawing, id);
                    }
                    return std::nullopt;
                }
            }
        }
    }
    return made;
}

std::optional<Made> explodeDimension(Drawing& drawing, RecordId dimension, std::string& error) {
    const Block* block = findBlock(drawing, drawing.record(dimension).textOr(2, ""));
    if (block == nullptr) {
        error = "the dimension has no picture";
        return std::nullopt;
    }
    Made made;
    for (const RecordId part : entitiesOf(drawing, *block)) {
        if (!addPartOf(drawing, dimension, part, {}, made, error)) {
            return std::nullopt;
        }
    }
    return made;
}

}  // namespace

Transform insertTransform(const Drawing& drawing, RecordId insert, int column, int row) {
    const Record record = drawing.record(insert);
    const Block* block = findBlock(drawing, record.textOr(2, ""));
    const Point base = block == nullptr ? Point{} : drawing.record(block->begin).pointOr(10, {});
    const auto extrusion = record.find(210);
    const Transform ocs = extrusion ? Transform::ofExtrusion(record.point(*extrusion)) : Transform();
    const Point grid{column * record.realOr(44, 0), row * record.realOr(45, 0), 0};
    const Transform turn = Transform::rotation(record.realOr(50, 0) * RadiansPerDegree);
    return ocs * Transform::translation(record.pointOr(10, {})) * turn * Transform::translation(grid) *
           Transform::scale(record.realOr(41, 1), record.realOr(42, 1), record.realOr(43, 1)) *
           Transform::translation(base * -1.0);
}

std::optional<std::vector<RecordId>> explodeEntity(Drawing& drawing, RecordId entity, std::string& error) {
    const std::string type(drawing.type(entity));
    if (type == "INSERT") {
        return explodeInsert(drawing, entity, error);
    }
    if (type == "LWPOLYLINE" || type == "POLYLINE") {
        return explodePolyline(drawing, entity, error);
    }
    if (type == "DIMENSION") {
        return explodeDimension(drawing, entity, error);
    }
    error = "a " + type + " has no parts";
    return std::nullopt;
}

}  // namespace drafthost
