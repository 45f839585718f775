// SPDX-License-Identifier: GPL-3.0-or-later
// What can be drawn in a block, in model or in paper space.

#include <cmath>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/EntityBuilder.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Import.h"
#include "drafthost/drawing/InsertBlock.h"
#include "drafthost/drawing/PolylineWriter.h"
#include "drafthost/drawing/R12Groups.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

/// A new entity in the block.
class NewEntity : public EntityBuilder<NewEntity> {
  public:
    NewEntity(Call& call, std::string_view type, std::string_view marker)
        : EntityBuilder(call.drawing(), placeFor(call, type), type, marker), call_(call) {
        if (!made()) {
            failAutomation("The block has no place in the drawing.");
        }
    }
    Result done() {
        call_.changed();
        return call_.object(id());
    }

  private:
    static BlockTarget placeFor(const Call& call, std::string_view type) {
        if (type != "LWPOLYLINE" && !canHold(call.drawing(), type)) {
            failAutomation("A drawing of version " + call.drawing().version() + " cannot hold " +
                           std::string(type) + ".");
        }
        return {call.record().textOr(2, "")};
    }
    Call& call_;
};

double positive(double value) {
    if (!(value > 0)) {
        failAutomation("Invalid input");
    }
    return value;
}

Result addLine(Call& call) {
    const Point a = call.point(0);
    const Point b = call.point(1);
    return NewEntity(call, "LINE", "AcDbLine").point(10, a).point(11, b).done();
}
Result addCircle(Call& call) {
    const Point c = call.point(0);
    const double r = positive(call.real(1));
    return NewEntity(call, "CIRCLE", "AcDbCircle").point(10, c).real(40, r).done();
}
Result addArc(Call& call) {
    const Point c = call.point(0);
    const double r = positive(call.real(1));
    const double from = call.real(2);
    const double to = call.real(3);
    return NewEntity(call, "ARC", "AcDbCircle")
        .point(10, c)
        .real(40, r)
        .mark("AcDbArc")
        .real(50, degreesOf(from))
        .real(51, degreesOf(to))
        .done();
}
Result addEllipse(Call& call) {
    const Point c = call.point(0);
    const Point major = call.point(1);
    const double ratio = positive(call.real(2));
    return NewEntity(call, "ELLIPSE", "AcDbEllipse")
        .point(10, c)
        .point(11, major)
        .point(210, {0, 0, 1})
        .real(40, ratio)
        .real(41, 0)
        .real(42, 360 * RadiansPerDegree)
        .done();
}
Result addPoint(Call& call) {
    const Point p = call.point(0);
    return NewEntity(call, "POINT", "AcDbPoint").point(10, p).done();
}
Result addRay(Call& call) {
    const Point a = call.point(0);
    const Point d = normalised(call.point(1) - a);
    return NewEntity(call, "RAY", "AcDbRay").point(10, a).point(11, d).done();
}
Result addXline(Call& call) {
    const Point a = call.point(0);
    const Point d = normalised(call.point(1) - a);
    return NewEntity(call, "XLINE", "AcDbXline").point(10, a).point(11, d).done();
}
Result addText(Call& call) {
    const std::string text = call.text(0);
    const Point p = call.point(1);
    const double height = positive(call.real(2));
    const std::string style = headerText(call.drawing(), "$TEXTSTYLE", "Standard");
    NewEntity entity(call, "TEXT", "AcDbText");
    entity.point(10, p).real(40, height).text(1, text);
    if (foldCase(style) != foldCase("Standard")) {
        entity.text(7, style);
    }
    return entity.mark("AcDbText").done();
}
Result addMText(Call& call) {
    const Point p = call.point(0);
    const double width = call.real(1);
    const std::string text = call.text(2);
    const double height = headerReal(call.drawing(), "$TEXTSIZE", 2.5);
    const Value made = NewEntity(call, "MTEXT", "AcDbMText")
                           .point(10, p)
                           .real(40, height)
                           .real(41, width)
                           .integer(71, 1)
                           .integer(72, 1)
                           .text(1, "")
                           .text(7, headerText(call.drawing(), "$TEXTSTYLE", "Standard"))
                           .done()
                           .value;
    Object& object = objectOf(made);
    Call ask{call.e, object, {}};
    putProperty(ask, *object.cls->property(lisp::Symbol::intern("TEXTSTRING")), Value::string(text));
    return made;
}
Result addLightPolyline(Call& call) {
    const std::vector<Point> points = pointsOf(call.arg(0), 2);
    if (points.size() < 2) {
        failAutomation("Invalid input");
    }
    NewEntity entity(call, "LWPOLYLINE", "AcDbPolyline");
    entity.integer(90, static_cast<std::int64_t>(points.size())).integer(70, 0).real(43, 0);
    for (const Point& p : points) {
        entity.real(10, p.x).real(20, p.y);
    }
    if (!canHold(call.drawing(), "LWPOLYLINE")) {
        call.changed();
        return call.object(asOldPolyline(call.drawing(), entity.id()));
    }
    return entity.done();
}

Result addHeavy(Call& call, bool space) {
    const std::vector<Point> points = pointsOf(call.arg(0), 3);
    if (points.size() < 2) {
        failAutomation("Invalid input");
    }
    const char* marker = space ? "AcDb3dPolyline" : "AcDb2dPolyline";
    NewEntity main(call, "POLYLINE", marker);
    main.integer(66, 1).point(10, {}).integer(70, space ? 8 : 0);
    Drawing& drawing = call.drawing();
    RecordId behind = main.id();
    const bool marked = drawing.versionNumber() >= 1012;
    const std::string layer = drawing.record(main.id()).textOr(8, "0");
    for (const Point& p : points) {
        const RecordId id = addPart(drawing, main.id(), behind, "VERTEX", layer);
        behind = id;
        if (marked) {
            drawing.appendTag(id, 100, "AcDbVertex");
            drawing.appendTag(id, 100, space ? "AcDb3dPolylineVertex" : "AcDb2dVertex");
        }
        drawing.appendTag(id, 10, p.x);
        drawing.appendTag(id, 20, p.y);
        drawing.appendTag(id, 30, p.z);
        drawing.appendTag(id, 70, std::int64_t{space ? 32 : 0});
    }
    addPart(drawing, main.id(), behind, "SEQEND", layer);
    return main.done();
}
Result addPolyline(Call& call) {
    return addHeavy(call, false);
}
Result add3dPolyline(Call& call) {
    return addHeavy(call, true);
}
Result addCorners(Call& call, const char* type, const char* marker) {
    Point corners[4];
    for (std::size_t i = 0; i < 4; ++i) {
        corners[i] = call.has(i) ? call.point(i) : corners[i - 1];
    }
    NewEntity entity(call, type, marker);
    for (int i = 0; i < 4; ++i) {
        entity.point(10 + i, corners[i]);
    }
    return entity.done();
}
Result addSolid(Call& call) {
    return addCorners(call, "SOLID", "AcDbTrace");
}
Result addFace(Call& call) {
    return addCorners(call, "3DFACE", "AcDbFace");
}
Result addAttribute(Call& call) {
    const double height = positive(call.real(0));
    const int mode = call.integer(1);
    const std::string promptText = call.text(2);
    const Point p = call.point(3);
    const std::string tag = call.text(4);
    const std::string value = call.text(5);
    if (tag.empty() || tag.find(' ') != std::string::npos) {
        failAutomation("Invalid input");
    }
    NewEntity entity(call, "ATTDEF", "AcDbText");
    entity.point(10, p).real(40, height).text(1, value).mark("AcDbAttributeDefinition");
    return entity.text(3, promptText).text(2, tag).integer(70, mode).done();
}
Result addSpline(Call& call) {
    const std::vector<Point> points = pointsOf(call.arg(0), 3);
    const Point start = call.has(1) ? call.point(1) : Point{};
    const Point end = call.has(2) ? call.point(2) : Point{};
    const auto spline = fitSpline(points, start, end);
    if (!spline) {
        failAutomation("Invalid input");
    }
    NewEntity entity(call, "SPLINE", "AcDbSpline");
    entity.point(210, {0, 0, 1}).integer(70, 8).integer(71, 3);
    entity.integer(72, static_cast<std::int64_t>(spline->knots.size()));
    entity.integer(73, static_cast<std::int64_t>(spline->controls.size()));
    entity.integer(74, static_cast<std::int64_t>(points.size()));
    for (const double knot : spline->knots) {
        entity.real(40, knot);
    }
    for (const Point& p : spline->controls) {
        entity.point(10, p);
    }
    for (const Point& p : points) {
        entity.point(11, p);
    }
    return entity.done();
}

Result insertBlock(Call& call) {
    InsertRequest request;
    request.target = {call.record().textOr(2, "")};
    request.place = call.point(0);
    std::string name = call.text(1);
    for (std::size_t i = 0; i < 3; ++i) {
        request.scale[i] = call.has(2 + i) ? call.real(2 + i) : i == 0 ? 1 : request.scale[0];
    }
    request.rotation = call.has(5) ? call.real(5) : 0;
    Drawing& drawing = call.drawing();
    if (findBlock(drawing, name) == nullptr) {
        std::string error;
        const auto file = call.session().host.findFile(name);
        const auto block = file ? importFileAsBlock(drawing, *file, error) : std::nullopt;
        if (!block) {
            failAutomation(error.empty() ? "Key not found" : error);
        }
        name = *block;
    }
    request.block = name;
    const RecordId made = insertBlockReference(drawing, request, {});
    if (made == NoRecord) {
        failAutomation("Description was not provided.");
    }
    call.changed(true);
    return call.object(made);
}
Result insertMany(Call& call) {
    // What does not fit is told before anything is drawn.
    const std::int64_t rows = call.integer(6);
    const std::int64_t columns = call.integer(7);
    const double rowSpacing = call.real(8);
    const double columnSpacing = call.real(9);
    if (rows < 1 || columns < 1) {
        failAutomation("Invalid input");
    }
    Result made = insertBlock(call);
    const RecordId id = objectOf(made.value).record;
    setGroup(call.drawing(), id, 70, columns);
    setGroup(call.drawing(), id, 71, rows);
    setGroup(call.drawing(), id, 44, columnSpacing);
    setGroup(call.drawing(), id, 45, rowSpacing);
    return made;
}

constexpr Method AddMethod[] = {
    {"AddLine", 2, 2, addLine},
    {"AddCircle", 2, 2, addCircle},
    {"AddArc", 4, 4, addArc},
    {"AddEllipse", 3, 3, addEllipse},
    {"AddPoint", 1, 1, addPoint},
    {"AddRay", 2, 2, addRay},
    {"AddXLine", 2, 2, addXline},
    {"AddText", 3, 3, addText},
    {"AddMText", 3, 3, addMText},
    {"AddLightWeightPolyline", 1, 1, addLightPolyline},
    {"AddPolyline", 1, 1, addPolyline},
    {"Add3DPoly", 1, 1, add3dPolyline},
    {"AddSolid", 3, 4, addSolid},
    {"Add3DFace", 3, 4, addFace},
    {"AddSpline", 1, 3, addSpline},
    {"AddHatch", 3, 4, addHatch},
    {"AddAttribute", 6, 6, addAttribute},
    {"InsertBlock", 2, 7, insertBlock},
    {"AddMInsertBlock", 10, 11, insertMany},
};

}  // namespace

Methods addMethods() {
    return AddMethod;
}

}  // namespace drafthost::activex
