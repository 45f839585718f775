// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/EntityTransform.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EmbeddedText.h"

namespace drafthost {

namespace {

constexpr double Pi = std::numbers::pi;
constexpr double Tolerance = 1e-9;

double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// A map that keeps angles: how it enlarges, and whether it turns left into right.
struct Similarity {
    double scale = 1;
    bool mirrored = false;
};

bool isSimilar(const Transform& map, Similarity& found) {
    const double x = length(map.x);
    const double limit = Tolerance * x * x;
    if (!(x > 0) || std::abs(length(map.y) - x) > Tolerance * x ||
        std::abs(length(map.z) - x) > Tolerance * x || std::abs(dot(map.x, map.y)) > limit ||
        std::abs(dot(map.x, map.z)) > limit || std::abs(dot(map.y, map.z)) > limit) {
        return false;
    }
    found = {x, dot(cross(map.x, map.y), map.z) < 0};
    return true;
}

Point into(const Transform& system, const Point& p) {
    return {dot(system.x, p), dot(system.y, p), dot(system.z, p)};
}

/// What happens to the plane of an entity: its systems before and after, and the map between them.
struct PlaneMap {
    Transform before;
    Transform after;
    Point normal{0, 0, 1};
    Transform flat;  ///< from coordinates before to coordinates after
    double scale = 1;
    bool mirrored = false;

    double angle(double degrees) const {
        const Point v =
            flat.vector({std::cos(degrees * RadiansPerDegree), std::sin(degrees * RadiansPerDegree), 0});
        return directionInDegrees(std::atan2(v.y, v.x));
    }
};

PlaneMap planeMap(const Record& record, const Transform& map, const Similarity& similarity) {
    PlaneMap plane;
    const auto extrusion = record.find(210);
    plane.before = extrusion ? Transform::ofExtrusion(record.point(*extrusion)) : Transform();
    plane.normal = normalised(map.vector(plane.before.z));
    // Flat drawings stay on the side that they are seen from, so that a mirrored arc runs the other way.
    plane.after = Transform::ofExtrusion(plane.normal);
    const Transform world = map * plane.before;
    plane.flat = {into(plane.after, world.x), into(plane.after, world.y), into(plane.after, world.z),
                  into(plane.after, world.origin)};
    plane.scale = similarity.scale;
    plane.mirrored = plane.flat.x.x * plane.flat.y.y - plane.flat.x.y * plane.flat.y.x < 0;
    return plane;
}

/// Changes the tags of one record.
class Editor {
  public:
    Editor(Drawing& drawing, RecordId id) : drawing_(drawing), id_(id) {}
    Record record() const { return drawing_.record(id_); }

    /// Every point under the code, without those of extended data.
    template <class Map>
    void points(int code, const Map& map) {
        for (std::size_t i = 1; i < end(); ++i) {
            if (record().code(i) != code) {
                continue;
            }
            const Point p = map(record().point(i));
            set(i, p.x);
            if (i + 1 < record().size() && record().code(i + 1) == code + 10) {
                set(i + 1, p.y);
                if (i + 2 < record().size() && record().code(i + 2) == code + 20) {
                    set(i + 2, p.z);
                }
            }
        }
    }
    template <class Map>
    void reals(int code, const Map& map) {
        for (std::size_t i = 1; i < end(); ++i) {
            if (record().code(i) == code) {
                set(i, map(record().real(i)));
            }
        }
    }
    void scale(std::initializer_list<int> codes, double factor) {
        for (const int code : codes) {
            reals(code, [&](double value) { return value * factor; });
        }
    }
    void put(int code, double value, double standard) {
        if (const auto i = own(code)) {
            set(*i, value);
        } else if (value != standard) {
            drawing_.insertTag(id_, before(), code, value);
        }
    }
    void normal(const Point& n) {
        if (own(210)) {
            points(210, [&](const Point&) { return n; });
        } else if (!(n == Point{0, 0, 1})) {
            const std::size_t place = before();
            drawing_.insertTag(id_, place, 210, n.x);
            drawing_.insertTag(id_, place + 1, 220, n.y);
            drawing_.insertTag(id_, place + 2, 230, n.z);
        }
    }
    void integer(int code, std::int64_t value) {
        if (const auto i = own(code)) {
            if (record().integer(*i) != value) {
                drawing_.setTag(id_, *i, value);
            }
        } else if (value != 0) {
            drawing_.insertTag(id_, before(), code, value);
        }
    }

    /// Behind what the entity says for itself; an embedded text has points of other meanings.
    std::size_t end() const { return embeddedStart(record()); }
    std::optional<std::size_t> own(int code) const {
        const auto at = record().find(code);
        return at && *at < end() ? at : std::nullopt;
    }

  private:
    void set(std::size_t i, double value) {
        if (record().real(i) != value) {
            drawing_.setTag(id_, i, value);
        }
    }
    /// Behind the first part of the entity's own that has groups of this kind.
    std::size_t before() const {
        const Record r = record();
        std::size_t marks = 0;
        for (std::size_t i = 1; i < r.xdata(); ++i) {
            if (r.code(i) == 100 && ++marks == 3) {
                return i;
            }
        }
        return r.xdata();
    }

    Drawing& drawing_;
    RecordId id_;
};

void transformArc(Editor& edit, const PlaneMap& plane) {
    const double start = plane.angle(edit.record().realOr(50, 0));
    const double end = plane.angle(edit.record().realOr(51, 0));
    edit.reals(50, [&](double) { return plane.mirrored ? end : start; });
    edit.reals(51, [&](double) { return plane.mirrored ? start : end; });
}

std::size_t letters(const std::string& utf8) {
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

/// A text keeps its place; one that would be read from behind is turned and keeps its side.
void transformText(Editor& edit, const PlaneMap& plane, bool mirrorText) {
    constexpr double LetterWidth = 0.8;
    constexpr std::int64_t Backward = 2;
    const Record before = edit.record();
    const double old = before.realOr(50, 0);
    const Point along =
        plane.flat.vector({std::cos(old * RadiansPerDegree), std::sin(old * RadiansPerDegree), 0});
    double angle = std::atan2(along.y, along.x);
    const double width = LetterWidth * static_cast<double>(letters(before.textOr(1, ""))) *
                         before.realOr(40, 0) * before.realOr(41, 1) * plane.scale;
    edit.points(10, plane.flat);
    edit.points(11, plane.flat);
    edit.scale({40, 39}, plane.scale);
    if (plane.mirrored && mirrorText) {
        angle += Pi;
        edit.integer(71, edit.record().integerOr(71, 0) ^ Backward);
    } else if (plane.mirrored) {
        if (std::cos(angle) < -Tolerance || (std::abs(std::cos(angle)) <= Tolerance && std::sin(angle) < 0)) {
            angle += Pi;
            // What stood on the left of the text stands on its right now: the text goes back by its width.
            const Point back{-width * std::cos(angle), -width * std::sin(angle), 0};
            const std::int64_t side = before.integerOr(72, 0);
            if (side == 0) {
                edit.points(10, [&](const Point& p) { return p + back; });
                if (before.find(11) && before.integerOr(73, 0) != 0) {
                    edit.points(11, [&](const Point& p) { return p + back; });
                }
            } else if (side == 3 || side == 5) {
                const Point first = edit.record().pointOr(10, {});
                const Point second = edit.record().pointOr(11, {});
                edit.points(10, [&](const Point&) { return second; });
                edit.points(11, [&](const Point&) { return first; });
            } else if (side == 2) {
                edit.points(11, [&](const Point& p) { return p + back * -1.0; });
            }
        }
    }
    edit.put(50, directionInDegrees(angle), 0);
    edit.normal(plane.normal);
}

void transformInsert(Editor& edit, const PlaneMap& plane) {
    const Record before = edit.record();
    const double old = before.realOr(50, 0) * RadiansPerDegree;
    const Point along = plane.flat.vector({std::cos(old), std::sin(old), 0});
    double angle = std::atan2(along.y, along.x);
    double sx = before.realOr(41, 1) * plane.scale;
    const double sy = before.realOr(42, 1) * plane.scale;
    const double sz = before.realOr(43, 1) * plane.scale;
    if (plane.mirrored) {
        angle += Pi;
        sx = -sx;
    }
    edit.points(10, plane.flat);
    edit.put(41, sx, 1);
    edit.put(42, sy, 1);
    edit.put(43, sz, 1);
    edit.put(50, directionInDegrees(angle), 0);
    edit.scale({44, 45}, plane.scale);
    edit.normal(plane.normal);
}

void transformLightPolyline(Editor& edit, const PlaneMap& plane) {
    const double elevation = edit.record().realOr(38, 0);
    double lifted = elevation;
    edit.points(10, [&](const Point& p) {
        const Point q = plane.flat({p.x, p.y, elevation});
        lifted = q.z;
        return q;
    });
    edit.put(38, lifted, 0);
    edit.scale({39, 40, 41, 43}, plane.scale);
    if (plane.mirrored) {
        edit.scale({42}, -1);
    }
    edit.normal(plane.normal);
}

void transformMText(Editor& edit, const Transform& map, const PlaneMap& plane) {
    const Record before = edit.record();
    Point along{1, 0, 0};
    for (std::size_t i = 1; i < edit.end(); ++i) {
        if (before.code(i) == 11) {
            along = before.point(i);
        } else if (before.code(i) == 50) {
            const double angle = before.real(i) * RadiansPerDegree;
            along = plane.before.vector({std::cos(angle), std::sin(angle), 0});
        }
    }
    Point mapped = normalised(map.vector(along));
    edit.points(10, map);
    if (plane.mirrored) {
        const Point flat = into(plane.after, mapped);
        const bool backwards = flat.x < -Tolerance || (std::abs(flat.x) <= Tolerance && flat.y < 0);
        // Columns of the attachment change sides where the text is turned, rows where it is not.
        const std::int64_t place = before.integerOr(71, 1) - 1;
        const std::int64_t row = place / 3;
        const std::int64_t column = place % 3;
        if (backwards) {
            mapped = mapped * -1.0;
            edit.integer(71, row * 3 + (2 - column) + 1);
        } else {
            edit.integer(71, (2 - row) * 3 + column + 1);
        }
    }
    const Point flat = into(plane.after, mapped);
    edit.points(11, [&](const Point&) { return mapped; });
    edit.reals(50, [&](double) { return directionInDegrees(std::atan2(flat.y, flat.x)); });
    if (!edit.own(11) && !edit.own(50)) {
        edit.put(50, directionInDegrees(std::atan2(flat.y, flat.x)), 0);
    }
    edit.scale({40, 41, 42, 43, 46, 48}, plane.scale);
    edit.normal(plane.normal);
}

bool transformDimension(Drawing& drawing, Editor& edit, const Transform& map, const PlaneMap& plane,
                        const TransformOptions& options, std::string& error) {
    for (const int code : {10, 13, 14, 15}) {
        edit.points(code, map);
    }
    for (const int code : {11, 12, 16}) {
        edit.points(code, plane.flat);
    }
    for (const int code : {50, 51, 53}) {
        edit.reals(code, [&](double angle) { return plane.angle(angle); });
    }
    const std::int64_t kind = edit.record().integerOr(70, 0) & 7;
    if (kind != 2 && kind != 5) {
        edit.scale({42}, plane.scale);
    }
    edit.normal(plane.normal);
    // The picture of a dimension is a block of its own, drawn where it stands.
    const Block* block = findBlock(drawing, edit.record().textOr(2, ""));
    if (block == nullptr || !block->name.starts_with("*D")) {
        return true;
    }
    for (const RecordId id : entitiesOf(drawing, *block)) {
        if (!transformEntity(drawing, id, map, options, error)) {
            return false;
        }
    }
    return true;
}

using Codes = std::initializer_list<int>;

/// Entities that are nothing but points and directions of the world.
struct WorldEntity {
    std::string_view type;
    Codes points;
    Codes vectors;
    Codes lengths;
};

const WorldEntity* worldEntity(std::string_view type) {
    static const std::array<WorldEntity, 14> known = {{{"LINE", {10, 11}, {}, {39}},
                                                       {"POINT", {10}, {}, {39}},
                                                       {"RAY", {10}, {11}, {}},
                                                       {"XLINE", {10}, {11}, {}},
                                                       {"3DFACE", {10, 11, 12, 13}, {}, {}},
                                                       {"SPLINE", {10, 11}, {12, 13}, {}},
                                                       {"LEADER", {10}, {211, 212, 213}, {40, 41}},
                                                       {"MLINE", {10, 11}, {12, 13}, {40}},
                                                       {"IMAGE", {10}, {11, 12}, {}},
                                                       {"WIPEOUT", {10}, {11, 12}, {}},
                                                       {"VIEWPORT", {10}, {}, {40, 41}},
                                                       {"TOLERANCE", {10}, {11}, {}},
                                                       {"ACAD_TABLE", {10}, {11}, {}},
                                                       {"HELIX", {10, 11}, {12}, {40}}}};
    const auto found =
        std::find_if(known.begin(), known.end(), [&](const auto& e) { return e.type == type; });
    return found == known.end() ? nullptr : &*found;
}

void transformWorld(Editor& edit, const WorldEntity& entity, const Transform& map, double scale) {
    const bool unit = entity.type == "RAY" || entity.type == "XLINE" || entity.type == "TOLERANCE" ||
                      entity.type == "ACAD_TABLE" || entity.type == "MLINE";
    for (const int code : entity.points) {
        edit.points(code, map);
    }
    for (const int code : entity.vectors) {
        edit.points(code, [&](const Point& v) {
            const bool keepsLength = unit || code == 211 || (entity.type == "SPLINE");
            return keepsLength ? normalised(map.vector(v)) : map.vector(v);
        });
    }
    if (entity.type != "VIEWPORT") {
        edit.scale(entity.lengths, scale);
    } else if (scale != 1) {
        edit.scale({40, 41}, scale);
    }
    if (edit.record().find(210)) {
        edit.points(210, [&](const Point& n) { return normalised(map.vector(n)); });
    }
}

bool transformOne(Drawing& drawing, RecordId id, const Transform& map, const Similarity& similarity,
                  const TransformOptions& options, bool flatPolyline, std::string& error) {
    Editor edit(drawing, id);
    const std::string type(drawing.type(id));
    if (const WorldEntity* world = worldEntity(type)) {
        transformWorld(edit, *world, map, similarity.scale);
        return true;
    }
    const PlaneMap plane = planeMap(drawing.record(id), map, similarity);
    if (type == "CIRCLE" || type == "ARC") {
        edit.points(10, plane.flat);
        edit.scale({39, 40}, plane.scale);
        if (type == "ARC") {
            transformArc(edit, plane);
        }
        edit.normal(plane.normal);
    } else if (type == "TEXT" || type == "ATTRIB" || type == "ATTDEF" || type == "SHAPE") {
        transformText(edit, plane, options.mirrorText);
        transformEmbeddedText(drawing, id, map, plane.scale);
    } else if (type == "INSERT") {
        transformInsert(edit, plane);
    } else if (type == "LWPOLYLINE") {
        transformLightPolyline(edit, plane);
    } else if (type == "SOLID" || type == "TRACE") {
        for (const int code : {10, 11, 12, 13}) {
            edit.points(code, plane.flat);
        }
        edit.scale({39}, plane.scale);
        edit.normal(plane.normal);
    } else if (type == "POLYLINE") {
        edit.points(10, [&](const Point& p) { return Point{0, 0, plane.flat({0, 0, p.z}).z}; });
        edit.scale({39, 40, 41}, plane.scale);
        if (flatPolyline) {
            edit.normal(plane.normal);
        }
    } else if (type == "ELLIPSE") {
        const Record r = drawing.record(id);
        const auto n = r.find(210);
        const Point minor =
            map.vector(cross(n ? normalised(r.point(*n)) : Point{0, 0, 1}, r.pointOr(11, {1, 0, 0})));
        edit.points(10, map);
        edit.points(11, [&](const Point& v) { return map.vector(v); });
        edit.normal(normalised(cross(drawing.record(id).pointOr(11, {1, 0, 0}), minor)));
    } else if (type == "MTEXT") {
        transformMText(edit, map, plane);
        syncEmbeddedText(drawing, id, plane.scale);
    } else if (type == "HATCH") {
        transformHatch(drawing, id, plane.flat, plane.mirrored, plane.scale);
        edit.normal(plane.normal);
    } else if (type == "DIMENSION") {
        return transformDimension(drawing, edit, map, plane, options, error);
    } else if (type != "SEQEND") {
        error = "a " + type + " cannot be transformed";
        return false;
    }
    return true;
}

bool isKnown(const std::string_view type) {
    static constexpr std::array<std::string_view, 16> Flat = {
        "CIRCLE", "ARC",      "TEXT",    "ATTRIB", "ATTDEF", "SHAPE",     "INSERT", "LWPOLYLINE",
        "SOLID",  "POLYLINE", "ELLIPSE", "MTEXT",  "HATCH",  "DIMENSION", "TRACE",  "SEQEND"};
    return worldEntity(type) != nullptr || std::find(Flat.begin(), Flat.end(), type) != Flat.end();
}

}  // namespace

bool transformEntity(Drawing& drawing, RecordId entity, const Transform& map, const TransformOptions& options,
                     std::string& error) {
    const std::string type(drawing.type(entity));
    if (!isKnown(type)) {
        error = "a " + type + " cannot be transformed";
        return false;
    }
    Similarity similarity;
    const bool any = type == "LINE" || type == "POINT" || type == "3DFACE" || type == "SPLINE";
    constexpr std::int64_t InSpace = 8 | 16 | 64;
    const bool heavy = type == "POLYLINE";
    const bool flat = heavy && (drawing.record(entity).integerOr(70, 0) & InSpace) == 0;
    if (!isSimilar(map, similarity) && !any && !(heavy && !flat)) {
        error = "Cannot scale non uniformly";
        return false;
    }
    const PlaneMap plane = planeMap(drawing.record(entity), map, similarity);
    if (!transformOne(drawing, entity, map, similarity, options, flat, error)) {
        return false;
    }
    if (!heavy && type != "INSERT") {
        return true;
    }
    for (RecordId id = drawing.next(entity); id != NoRecord && isSubEntity(drawing, id);
         id = drawing.next(id)) {
        const std::string_view sub = drawing.type(id);
        if (sub == "SEQEND") {
            break;
        }
        if (sub == "ATTRIB") {
            if (!transformOne(drawing, id, map, similarity, options, false, error)) {
                return false;
            }
            continue;
        }
        Editor edit(drawing, id);
        if (flat) {
            edit.points(10, plane.flat);
            edit.scale({40, 41}, plane.scale);
            if (plane.mirrored) {
                edit.scale({42}, -1);
            }
        } else {
            edit.points(10, map);
        }
    }
    return true;
}

}  // namespace drafthost
