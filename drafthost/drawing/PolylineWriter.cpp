// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/PolylineWriter.h"

#include <cmath>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/InsertBlock.h"

namespace drafthost {

namespace {

constexpr std::int64_t Closed = 1;
constexpr int FirstLight = 1014;

bool isCornerGroup(int code) {
    return code == 10 || code == 20 || code == 40 || code == 41 || code == 42 || code == 91;
}

void appendCorner(Drawing& drawing, RecordId id, std::size_t& at, const WideVertex& vertex) {
    const auto add = [&](int code, double value) { drawing.insertTag(id, at++, code, value); };
    add(10, vertex.place.x);
    add(20, vertex.place.y);
    if (vertex.startWidth != 0 || vertex.endWidth != 0) {
        add(40, vertex.startWidth);
        add(41, vertex.endWidth);
    }
    if (vertex.bulge != 0) {
        add(42, vertex.bulge);
    }
}

void setLight(Drawing& drawing, RecordId id, const std::vector<WideVertex>& vertices) {
    for (std::size_t i = drawing.record(id).xdata(); i-- > 0;) {
        const int code = drawing.record(id).code(i);
        if (isCornerGroup(code) || code == 43) {
            drawing.removeTag(id, i);
        }
    }
    drawing.put(id, 90, static_cast<std::int64_t>(vertices.size()));
    // Behind the last of the groups that come before the corners.
    std::size_t at = drawing.record(id).xdata();
    const Record record = drawing.record(id);
    for (std::size_t i = 0; i < record.xdata(); ++i) {
        const int code = record.code(i);
        if (code == 90 || code == 70 || code == 38 || code == 39) {
            at = i + 1;
        }
    }
    for (const WideVertex& vertex : vertices) {
        appendCorner(drawing, id, at, vertex);
    }
}

void setHeavy(Drawing& drawing, RecordId id, const std::vector<WideVertex>& vertices) {
    const std::string layer = drawing.record(id).textOr(8, "0");
    RecordId part = drawing.next(id);
    while (part != NoRecord && drawing.type(part) == "VERTEX") {
        const RecordId next = drawing.next(part);
        drawing.deleteRecord(part);
        part = next;
    }
    RecordId behind = id;
    for (const WideVertex& vertex : vertices) {
        const RecordId made = addPart(drawing, id, behind, "VERTEX", layer);
        if (drawing.versionNumber() >= 1012) {
            drawing.appendTag(made, 100, std::string("AcDbVertex"));
            drawing.appendTag(made, 100, std::string("AcDb2dVertex"));
        }
        const std::pair<int, double> groups[] = {{10, vertex.place.x},  {20, vertex.place.y},
                                                 {30, vertex.place.z},  {40, vertex.startWidth},
                                                 {41, vertex.endWidth}, {42, vertex.bulge}};
        for (const auto& [code, value] : groups) {
            if (code < 40 || value != 0) {
                drawing.appendTag(made, code, value);
            }
        }
        behind = made;
    }
    if (part == NoRecord || drawing.type(part) != "SEQEND") {
        addPart(drawing, id, behind, "SEQEND", layer);
    }
}

}  // namespace

std::vector<WideVertex> wideVertices(const Drawing& drawing, RecordId polyline) {
    std::vector<WideVertex> result;
    const Record record = drawing.record(polyline);
    if (record.type() == "LWPOLYLINE") {
        const double constant = record.realOr(43, 0);
        const double elevation = record.realOr(38, 0);
        for (std::size_t i = 0; i < record.xdata(); ++i) {
            const int code = record.code(i);
            if (code == 10) {
                Point p = record.point(i);
                p.z = elevation;
                result.push_back({p, 0, constant, constant});
            } else if (!result.empty() && code == 40) {
                result.back().startWidth = record.real(i);
            } else if (!result.empty() && code == 41) {
                result.back().endWidth = record.real(i);
            } else if (!result.empty() && code == 42) {
                result.back().bulge = record.real(i);
            }
        }
        return result;
    }
    const double start = record.realOr(40, 0);
    const double end = record.realOr(41, 0);
    for (RecordId part = drawing.next(polyline); part != NoRecord && drawing.type(part) == "VERTEX";
         part = drawing.next(part)) {
        const Record vertex = drawing.record(part);
        // Control points of a fitted curve are no corners.
        if ((vertex.integerOr(70, 0) & 16) == 0) {
            result.push_back({vertex.pointOr(10, {}), vertex.realOr(42, 0), vertex.realOr(40, start),
                              vertex.realOr(41, end)});
        }
    }
    return result;
}

void setVertices(Drawing& drawing, RecordId polyline, const std::vector<WideVertex>& vertices, bool closed) {
    const std::int64_t flags = drawing.record(polyline).integerOr(70, 0);
    drawing.put(polyline, 70, closed ? flags | Closed : flags & ~Closed, {90, 66, 100});
    if (drawing.type(polyline) == "LWPOLYLINE") {
        setLight(drawing, polyline, vertices);
    } else {
        setHeavy(drawing, polyline, vertices);
    }
}

RecordId addPolyline(Drawing& drawing, const BlockTarget& target, const std::vector<WideVertex>& vertices,
                     bool closed, const Point& extrusion) {
    const bool light = drawing.versionNumber() >= FirstLight;
    const std::string layer = headerText(drawing, "$CLAYER", "0");
    const RecordId id = addEntityTo(drawing, target, light ? "LWPOLYLINE" : "POLYLINE", layer);
    if (id == NoRecord) {
        return id;
    }
    takeCurrentProperties(drawing, id);
    if (drawing.versionNumber() >= 1012) {
        drawing.appendTag(id, 100, std::string(light ? "AcDbPolyline" : "AcDb2dPolyline"));
    }
    const double elevation = vertices.empty() ? 0 : vertices.front().place.z;
    if (light) {
        drawing.appendTag(id, 90, static_cast<std::int64_t>(vertices.size()));
        drawing.appendTag(id, 70, std::int64_t{closed ? 1 : 0});
        if (elevation != 0) {
            drawing.appendTag(id, 38, elevation);
        }
    } else {
        drawing.appendTag(id, 66, std::int64_t{1});
        for (const auto& [code, value] : {std::pair{10, 0.0}, {20, 0.0}, {30, elevation}}) {
            drawing.appendTag(id, code, value);
        }
        drawing.appendTag(id, 70, std::int64_t{closed ? 1 : 0});
    }
    setVertices(drawing, id, vertices, closed);
    if (std::fabs(extrusion.x) > 1e-12 || std::fabs(extrusion.y) > 1e-12 || extrusion.z < 0) {
        drawing.putPoint(id, 210, extrusion, true);
    }
    return id;
}

RecordId asOldPolyline(Drawing& drawing, RecordId light) {
    const bool closed = (drawing.record(light).integerOr(70, 0) & Closed) != 0;
    const Point extrusion = drawing.record(light).pointOr(210, {0, 0, 1});
    const RecordId id =
        addPolyline(drawing, targetOf(drawing, light), wideVertices(drawing, light), closed, extrusion);
    if (id == NoRecord) {
        return id;
    }
    takeLooks(drawing, light, id);
    const std::string layer = drawing.record(id).textOr(8, "0");
    for (RecordId part = drawing.next(id); part != NoRecord && isSubEntity(drawing, part);
         part = drawing.next(part)) {
        drawing.put(part, 8, layer);
    }
    deleteEntity(drawing, light);
    return id;
}

void takeLooks(Drawing& drawing, RecordId from, RecordId to) {
    for (const int code : {8, 6, 62, 420, 430, 48, 370, 440, 390, 347, 284}) {
        const Record source = drawing.record(from);
        const auto found = source.find(code);
        const auto there = drawing.record(to).find(code);
        if (found && *found < source.xdata()) {
            drawing.put(to, code, source.value(*found), {370, 48, 62, 6, 8});
        } else if (there && *there < drawing.record(to).xdata()) {
            drawing.removeTag(to, *there);
        }
    }
}

}  // namespace drafthost
