// SPDX-License-Identifier: GPL-3.0-or-later
// Polylines of both kinds and splines: their vertices, widths and bulges.

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Curve.h"

namespace drafthost::activex {
namespace {

/// Tags of the vertices' points of a light polyline.
std::vector<std::size_t> vertexTags(const Record& record) {
    std::vector<std::size_t> tags;
    for (std::size_t i = 1; i < record.xdata(); ++i) {
        if (record.code(i) == 10) {
            tags.push_back(i);
        }
    }
    return tags;
}

std::size_t vertexIndex(const Value& v, std::size_t count) {
    const int i = integerOf(v);
    if (i < 0 || static_cast<std::size_t>(i) >= count) {
        failAutomation("Invalid index");
    }
    return static_cast<std::size_t>(i);
}

Result coordinates(Call& call) {
    std::vector<double> all;
    const Record r = call.record();
    for (const std::size_t i : vertexTags(r)) {
        all.insert(all.end(), {r.point(i).x, r.point(i).y});
    }
    return Result::reals(all);
}

void countVertices(Drawing& drawing, RecordId id) {
    drawing.put(id, 90, static_cast<std::int64_t>(vertexTags(drawing.record(id)).size()));
}

/// The tag behind all that belongs to a vertex.
std::size_t endOfVertex(const Record& record, std::size_t from) {
    std::size_t i = from + 2;
    while (i < record.xdata() &&
           (record.code(i) == 40 || record.code(i) == 41 || record.code(i) == 42 || record.code(i) == 91)) {
        ++i;
    }
    return i;
}

void insertVertex(Drawing& drawing, RecordId id, std::size_t index, const Point& p) {
    const Record record = drawing.record(id);
    const auto tags = vertexTags(record);
    const std::size_t before = index < tags.size() ? tags[index]
                               : tags.empty()      ? record.xdata()
                                                   : endOfVertex(record, tags.back());
    drawing.insertTag(id, before, 10, p.x);
    drawing.insertTag(id, before + 1, 20, p.y);
}

void putCoordinates(Call& call, const Value& value) {
    checkUnlocked(call);
    const std::vector<Point> points = pointsOf(value, 2);
    if (points.size() < 2) {
        failAutomation("Invalid input");
    }
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    for (auto tags = vertexTags(drawing.record(id)); tags.size() > points.size();
         tags = vertexTags(drawing.record(id))) {
        const std::size_t end = endOfVertex(drawing.record(id), tags.back());
        for (std::size_t i = end; i-- > tags.back();) {
            drawing.removeTag(id, i);
        }
    }
    const auto tags = vertexTags(drawing.record(id));
    for (std::size_t k = 0; k < tags.size(); ++k) {
        drawing.setTag(id, tags[k], points[k].x);
        drawing.setTag(id, tags[k] + 1, points[k].y);
    }
    for (std::size_t k = tags.size(); k < points.size(); ++k) {
        insertVertex(drawing, id, k, points[k]);
    }
    countVertices(drawing, id);
    call.changed();
}

Result coordinate(Call& call) {
    const Record r = call.record();
    const auto tags = vertexTags(r);
    const Point p = r.point(tags[vertexIndex(call.arg(0), tags.size())]);
    return Result::reals({p.x, p.y});
}
void putCoordinate(Call& call, const Value& value) {
    checkUnlocked(call);
    const auto tags = vertexTags(call.record());
    const std::size_t i = tags[vertexIndex(call.arg(0), tags.size())];
    const Point p = pointOf(value);
    call.drawing().setTag(call.id(), i, p.x);
    call.drawing().setTag(call.id(), i + 1, p.y);
    call.changed();
}

std::optional<std::size_t> vertexGroup(const Record& record, std::size_t vertex, int code) {
    for (std::size_t i = vertex + 2; i < endOfVertex(record, vertex); ++i) {
        if (record.code(i) == code) {
            return i;
        }
    }
    return std::nullopt;
}

double vertexReal(const Record& record, std::size_t vertex, int code) {
    const auto i = vertexGroup(record, vertex, code);
    return i ? record.real(*i) : code == 42 ? 0 : groupReal(record, 43, 0);
}

void putVertexReal(Drawing& drawing, RecordId id, std::size_t vertex, int code, double value) {
    const Record record = drawing.record(id);
    if (const auto i = vertexGroup(record, vertex, code)) {
        drawing.setTag(id, *i, value);
        return;
    }
    std::size_t before = vertex + 2;
    while (before < endOfVertex(record, vertex) && record.code(before) < code) {
        ++before;
    }
    drawing.insertTag(id, before, code, value);
}

Result getBulge(Call& call) {
    const Record r = call.record();
    const auto tags = vertexTags(r);
    return Result::real(vertexReal(r, tags[vertexIndex(call.arg(0), tags.size())], 42));
}
Result setBulge(Call& call) {
    checkUnlocked(call);
    const auto tags = vertexTags(call.record());
    putVertexReal(call.drawing(), call.id(), tags[vertexIndex(call.arg(0), tags.size())], 42, call.real(1));
    call.changed();
    return {};
}
Result getWidth(Call& call) {
    const Record r = call.record();
    const auto tags = vertexTags(r);
    const std::size_t vertex = tags[vertexIndex(call.arg(0), tags.size())];
    call.put(1, Value::real(vertexReal(r, vertex, 40)));
    call.put(2, Value::real(vertexReal(r, vertex, 41)));
    return {};
}
/// Widths of their own for every vertex, where the polyline had one for all.
void splitWidth(Drawing& drawing, RecordId id) {
    const auto constant = groupTag(drawing.record(id), 43, "");
    if (!constant) {
        return;
    }
    const double width = drawing.record(id).real(*constant);
    drawing.removeTag(id, *constant);
    for (std::size_t k = 0; width != 0 && k < vertexTags(drawing.record(id)).size(); ++k) {
        putVertexReal(drawing, id, vertexTags(drawing.record(id))[k], 40, width);
        putVertexReal(drawing, id, vertexTags(drawing.record(id))[k], 41, width);
    }
}
Result setWidth(Call& call) {
    checkUnlocked(call);
    splitWidth(call.drawing(), call.id());
    const auto tags = vertexTags(call.record());
    const std::size_t vertex = tags[vertexIndex(call.arg(0), tags.size())];
    putVertexReal(call.drawing(), call.id(), vertex, 40, call.real(1));
    putVertexReal(call.drawing(), call.id(), vertex, 41, call.real(2));
    call.changed();
    return {};
}
Result addVertex(Call& call) {
    checkUnlocked(call);
    const std::size_t count = vertexTags(call.record()).size();
    const std::vector<double> p = numbersOf(call.arg(1));
    if (p.size() < 2) {
        failMismatch();
    }
    insertVertex(call.drawing(), call.id(), vertexIndex(call.arg(0), count + 1), {p[0], p[1], 0});
    countVertices(call.drawing(), call.id());
    call.changed();
    return {};
}

Result constantWidth(Call& call) {
    const Record r = call.record();
    std::optional<double> width;
    for (const std::size_t vertex : vertexTags(r)) {
        for (const int code : {40, 41}) {
            const double one = vertexReal(r, vertex, code);
            if (width && *width != one) {
                failAutomation("Invalid input");
            }
            width = one;
        }
    }
    return Result::real(width.value_or(0));
}
void putConstantWidth(Call& call, const Value& value) {
    checkUnlocked(call);
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    for (std::size_t i = drawing.record(id).xdata(); i-- > 1;) {
        const int code = drawing.record(id).code(i);
        if (code == 40 || code == 41) {
            drawing.removeTag(id, i);
        }
    }
    drawing.put(id, 43, realOf(value), {70, 90});
    call.changed();
}

Result curveLength(Call& call) {
    const auto curve = Curve::of(call.drawing(), call.id());
    if (!curve) {
        failAutomation("Not applicable");
    }
    return Result::real(curve->distanceAt(curve->end()).value_or(0));
}
Result curveArea(Call& call) {
    const auto curve = Curve::of(call.drawing(), call.id());
    if (!curve) {
        failAutomation("Not applicable");
    }
    return Result::real(curve->area());
}

constexpr std::int64_t SplineFrame = 16;

std::vector<RecordId> verticesOf(const Drawing& drawing, RecordId polyline) {
    std::vector<RecordId> result;
    for (RecordId id = drawing.next(polyline); id != NoRecord && drawing.type(id) == "VERTEX";
         id = drawing.next(id)) {
        if ((drawing.record(id).integerOr(70, 0) & SplineFrame) == 0) {
            result.push_back(id);
        }
    }
    return result;
}

Result heavyCoordinates(Call& call) {
    std::vector<double> all;
    for (const RecordId id : verticesOf(call.drawing(), call.id())) {
        const Point p = call.drawing().record(id).pointOr(10, {});
        all.insert(all.end(), {p.x, p.y, p.z});
    }
    return Result::reals(all);
}
void putHeavyCoordinates(Call& call, const Value& value) {
    checkUnlocked(call);
    const std::vector<Point> points = pointsOf(value, 3);
    const auto vertices = verticesOf(call.drawing(), call.id());
    if (points.size() != vertices.size()) {
        failAutomation("Invalid input");
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        call.drawing().putPoint(vertices[i], 10, points[i], true, {8});
    }
    call.changed();
}
Result heavyCoordinate(Call& call) {
    const auto vertices = verticesOf(call.drawing(), call.id());
    const RecordId id = vertices[vertexIndex(call.arg(0), vertices.size())];
    return Result::point(call.drawing().record(id).pointOr(10, {}));
}
void putHeavyCoordinate(Call& call, const Value& value) {
    checkUnlocked(call);
    const auto vertices = verticesOf(call.drawing(), call.id());
    call.drawing().putPoint(vertices[vertexIndex(call.arg(0), vertices.size())], 10, pointOf(value), true,
                            {8});
    call.changed();
}
Result heavyBulge(Call& call) {
    const auto vertices = verticesOf(call.drawing(), call.id());
    return Result::real(
        call.drawing().record(vertices[vertexIndex(call.arg(0), vertices.size())]).realOr(42, 0));
}
Result setHeavyBulge(Call& call) {
    checkUnlocked(call);
    const auto vertices = verticesOf(call.drawing(), call.id());
    setGroup(call.drawing(), vertices[vertexIndex(call.arg(0), vertices.size())], 42, call.real(1));
    call.changed();
    return {};
}
Result elevation(Call& call) {
    return Result::real(call.record().pointOr(10, {}).z);
}

Result controlPoints(Call& call) {
    std::vector<double> all;
    const Record r = call.record();
    for (const std::size_t i : vertexTags(r)) {
        const Point p = r.point(i);
        all.insert(all.end(), {p.x, p.y, p.z});
    }
    return Result::reals(all);
}
Result fitPoints(Call& call) {
    std::vector<double> all;
    const Record r = call.record();
    for (std::size_t i = 1; i < r.xdata(); ++i) {
        if (r.code(i) == 11) {
            const Point p = r.point(i);
            all.insert(all.end(), {p.x, p.y, p.z});
        }
    }
    return Result::reals(all);
}
Result knots(Call& call) {
    std::vector<double> all;
    const Record r = call.record();
    for (std::size_t i = 1; i < r.xdata(); ++i) {
        if (r.code(i) == 40) {
            all.push_back(r.real(i));
        }
    }
    return Result::reals(all);
}

constexpr Property LightPolyline[] = {
    {"Coordinates", Access::Custom, 10, 0, coordinates, putCoordinates},
    {"Coordinate", Access::Custom, 10, 0, coordinate, putCoordinate},
    {"Closed", Access::Flag, 70, 1},
    {"LinetypeGeneration", Access::Flag, 70, 128},
    {"ConstantWidth", Access::Custom, 43, 0, constantWidth, putConstantWidth},
    {"Elevation", Access::Real, 38, 0},
    {"Thickness", Access::Real, 39, 0},
    {"Area", Access::Custom, 0, 0, curveArea},
    {"Length", Access::Custom, 0, 0, curveLength},
};
constexpr Method LightPolylineMethods[] = {
    {"GetBulge", 1, 1, getBulge}, {"SetBulge", 2, 2, setBulge},   {"GetWidth", 3, 3, getWidth},
    {"SetWidth", 3, 3, setWidth}, {"AddVertex", 2, 2, addVertex},
};
constexpr Property Polyline[] = {
    {"Coordinates", Access::Custom, 10, 0, heavyCoordinates, putHeavyCoordinates},
    {"Coordinate", Access::Custom, 10, 0, heavyCoordinate, putHeavyCoordinate},
    {"Closed", Access::Flag, 70, 1},
    {"LinetypeGeneration", Access::Flag, 70, 128},
    {"Elevation", Access::Custom, 0, 0, elevation},
    {"Thickness", Access::Real, 39, 0},
    {"Area", Access::Custom, 0, 0, curveArea},
    {"Length", Access::Custom, 0, 0, curveLength},
};
constexpr Method PolylineMethods[] = {
    {"GetBulge", 1, 1, heavyBulge},
    {"SetBulge", 2, 2, setHeavyBulge},
};
constexpr Property Spline[] = {
    {"ControlPoints", Access::Custom, 10, 0, controlPoints},
    {"FitPoints", Access::Custom, 11, 0, fitPoints},
    {"Knots", Access::Custom, 40, 0, knots},
    {"Degree", Access::Integer, 71, 3, nullptr, nullptr, true},
    {"NumberOfControlPoints", Access::Integer, 73, 0, nullptr, nullptr, true},
    {"NumberOfFitPoints", Access::Integer, 74, 0, nullptr, nullptr, true},
    {"Closed", Access::Flag, 70, 1},
    {"IsPeriodic", Access::Flag, 70, 2, nullptr, nullptr, true},
    {"IsRational", Access::Flag, 70, 4, nullptr, nullptr, true},
    {"IsPlanar", Access::Flag, 70, 8, nullptr, nullptr, true},
    {"Area", Access::Custom, 0, 0, curveArea},
};

}  // namespace

Properties lightPolylineProperties() {
    return LightPolyline;
}
Methods lightPolylineMethods() {
    return LightPolylineMethods;
}
Properties polylineProperties() {
    return Polyline;
}
Methods polylineMethods() {
    return PolylineMethods;
}
Properties splineProperties() {
    return Spline;
}

}  // namespace drafthost::activex
