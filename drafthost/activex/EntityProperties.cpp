// SPDX-License-Identifier: GPL-3.0-or-later
// What every entity has, and the entities that are a point, a line, a circle or a part of one.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Transparency.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {
namespace {

constexpr double FullTurn = 2 * std::numbers::pi;

/// A name as the table writes it; fails where it has none of that name.
std::string known(const Call& call, Table table, const std::string& name) {
    const RecordId entry = findEntry(call.drawing(), table, name);
    if (entry == NoRecord) {
        failAutomation("Key not found");
    }
    return entryName(call.drawing(), entry);
}

void putLayer(Call& call, const Value& value) {
    checkUnlocked(call);
    setGroup(call.drawing(), call.id(), 8, known(call, Table::Layer, textOf(value)));
    call.changed();
}

void putLinetype(Call& call, const Value& value) {
    checkUnlocked(call);
    const std::string name = textOf(value);
    const std::string upper = lisp::upperCase(name);
    const bool special = upper == "BYLAYER" || upper == "BYBLOCK";
    setGroup(call.drawing(), call.id(), 6, special ? name : known(call, Table::Ltype, name));
    call.changed();
}

void putColor(Call& call, const Value& value) {
    checkUnlocked(call);
    const int index = integerOf(value);
    if (index < 0 || index > 256) {
        failAutomation("Invalid input");
    }
    Drawing& drawing = call.drawing();
    setGroup(drawing, call.id(), 62, std::int64_t{index});
    removeGroup(drawing, call.id(), 420);
    removeGroup(drawing, call.id(), 430);
    call.changed();
}

void putLineweight(Call& call, const Value& value) {
    checkUnlocked(call);
    static constexpr int Allowed[] = {-3, -2, -1, 0,  5,  9,  13,  15,  18,  20,  25,  30,  35, 40,
                                      50, 53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
    const int weight = integerOf(value);
    if (std::find(std::begin(Allowed), std::end(Allowed), weight) == std::end(Allowed)) {
        failAutomation("Invalid input");
    }
    setGroup(call.drawing(), call.id(), 370, std::int64_t{weight});
    call.changed();
}

Result getTransparency(Call& call) {
    const std::int64_t held = call.record().integerOr(440, 0);
    if (held == 0) {
        return Result::text("ByLayer");
    }
    if (held == TransparencyByBlock) {
        return Result::text("ByBlock");
    }
    const double percent = 100 * (1 - static_cast<double>(held & 0xff) / 255);
    return Result::text(std::to_string(std::lround(percent)));
}

void putTransparency(Call& call, const Value& value) {
    checkUnlocked(call);
    const Value& plain = unwrapped(value);
    const std::string text =
        plain.isNumber() ? std::to_string(integerOf(plain)) : lisp::upperCase(textOf(plain));
    std::int64_t held = 0;
    if (text == "BYBLOCK") {
        held = TransparencyByBlock;
    } else if (text != "BYLAYER") {
        const std::int64_t percent = parseInteger(text);
        if (percent < 0 || percent > 90) {
            failAutomation("Invalid input");
        }
        held = transparencyOf(percent);
    }
    setGroup(call.drawing(), call.id(), 440, held);
    call.changed();
}

Result isVisible(Call& call) {
    return Result::boolean(call.record().integerOr(60, 0) == 0);
}
void putVisible(Call& call, const Value& value) {
    checkUnlocked(call);
    setGroup(call.drawing(), call.id(), 60, std::int64_t{booleanOf(value) ? 0 : 1});
    call.changed();
}

Result entityName(Call& call) {
    return Result::text(classOf(call.drawing(), call.id()).objectName);
}

Result normal(Call& call) {
    const auto i = groupTag(call.record(), 210, "");
    return Result::point(i ? call.record().point(*i) : Point{0, 0, 1});
}
void putNormal(Call& call, const Value& value) {
    checkUnlocked(call);
    setGroupPoint(call.drawing(), call.id(), 210, normalised(pointOf(value)));
    call.changed();
}

Point at(const Record& record, int code) {
    const auto i = groupTag(record, code, "");
    return i ? record.point(*i) : Point{};
}

Result lineLength(Call& call) {
    const Record r = call.record();
    return Result::real(length(at(r, 11) - at(r, 10)));
}
Result lineAngle(Call& call) {
    const Record r = call.record();
    const Point d = at(r, 11) - at(r, 10);
    const double angle = std::atan2(d.y, d.x);
    return Result::real(angle < 0 ? angle + FullTurn : angle);
}
Result lineDelta(Call& call) {
    const Record r = call.record();
    return Result::point(at(r, 11) - at(r, 10));
}

double radiusOf(const Call& call) {
    return groupReal(call.record(), 40, 0);
}
void setRadius(const Call& call, double radius) {
    checkUnlocked(call);
    if (!(radius > 0)) {
        failAutomation("Invalid input");
    }
    setGroup(call.drawing(), call.id(), 40, radius);
    call.changed();
}
Result diameter(Call& call) {
    return Result::real(2 * radiusOf(call));
}
Result circumference(Call& call) {
    return Result::real(FullTurn * radiusOf(call));
}
Result circleArea(Call& call) {
    return Result::real(std::numbers::pi * radiusOf(call) * radiusOf(call));
}
void putRadius(Call& call, const Value& value) {
    setRadius(call, realOf(value));
}
void putDiameter(Call& call, const Value& value) {
    setRadius(call, realOf(value) / 2);
}
void putCircumference(Call& call, const Value& value) {
    setRadius(call, realOf(value) / FullTurn);
}
void putCircleArea(Call& call, const Value& value) {
    setRadius(call, std::sqrt(realOf(value) / std::numbers::pi));
}

double arcTurn(const Call& call) {
    const double turn =
        (groupReal(call.record(), 51, 0) - groupReal(call.record(), 50, 0)) * RadiansPerDegree;
    return turn <= 0 ? turn + FullTurn : turn;
}
Result arcPoint(Call& call, int code) {
    const Record r = call.record();
    const double angle = groupReal(r, code, 0) * RadiansPerDegree;
    const double radius = groupReal(r, 40, 0);
    return Result::point(ocsOf(r)(at(r, 10) + Point{radius * std::cos(angle), radius * std::sin(angle), 0}));
}
Result arcStart(Call& call) {
    return arcPoint(call, 50);
}
Result arcEnd(Call& call) {
    return arcPoint(call, 51);
}
Result totalAngle(Call& call) {
    return Result::real(arcTurn(call));
}
Result arcLength(Call& call) {
    return Result::real(radiusOf(call) * arcTurn(call));
}
Result arcArea(Call& call) {
    const double turn = arcTurn(call);
    return Result::real(radiusOf(call) * radiusOf(call) * (turn - std::sin(turn)) / 2);
}

Result majorRadius(Call& call) {
    return Result::real(length(at(call.record(), 11)));
}
void putMajorRadius(Call& call, const Value& value) {
    checkUnlocked(call);
    const Point axis = at(call.record(), 11);
    setGroupPoint(call.drawing(), call.id(), 11, normalised(axis) * realOf(value));
    call.changed();
}
Result minorRadius(Call& call) {
    return Result::real(length(at(call.record(), 11)) * groupReal(call.record(), 40, 1));
}
Point minorAxisOf(const Record& r) {
    const auto i = groupTag(r, 210, "");
    return cross(normalised(i ? r.point(*i) : Point{0, 0, 1}), at(r, 11)) * groupReal(r, 40, 1);
}
Result minorAxis(Call& call) {
    return Result::point(minorAxisOf(call.record()));
}
Result ellipsePoint(Call& call, int code, double otherwise) {
    const Record r = call.record();
    const double t = groupReal(r, code, otherwise);
    return Result::point(at(r, 10) + at(r, 11) * std::cos(t) + minorAxisOf(r) * std::sin(t));
}
Result ellipseStart(Call& call) {
    return ellipsePoint(call, 41, 0);
}
Result ellipseEnd(Call& call) {
    return ellipsePoint(call, 42, FullTurn);
}
Result ellipseArea(Call& call) {
    const Record r = call.record();
    const double major = length(at(r, 11));
    const double from = groupReal(r, 41, 0);
    double turn = groupReal(r, 42, FullTurn) - from;
    turn = turn <= 0 ? turn + FullTurn : turn;
    const double whole = std::numbers::pi * major * major * groupReal(r, 40, 1);
    return Result::real(turn > FullTurn - 1e-9 ? whole : whole * (turn - std::sin(turn)) / FullTurn);
}

Result raySecond(Call& call) {
    const Record r = call.record();
    return Result::point(at(r, 10) + at(r, 11));
}
void putRaySecond(Call& call, const Value& value) {
    checkUnlocked(call);
    setGroupPoint(call.drawing(), call.id(), 11, normalised(pointOf(value) - at(call.record(), 10)));
    call.changed();
}

Result corners(Call& call) {
    std::vector<double> all;
    const Record r = call.record();
    for (const int code : {10, 11, 12, 13}) {
        const Point p = ocsOf(r)(at(r, code));
        all.insert(all.end(), {p.x, p.y, p.z});
    }
    return Result::reals(all);
}
void putCorners(Call& call, const Value& value) {
    checkUnlocked(call);
    const std::vector<Point> points = pointsOf(value, 3);
    if (points.size() < 3 || points.size() > 4) {
        failAutomation("Invalid input");
    }
    const Transform ocs = ocsOf(call.record());
    for (std::size_t i = 0; i < 4; ++i) {
        setGroupPoint(call.drawing(), call.id(), 10 + static_cast<int>(i),
                      intoOcs(ocs, points[std::min(i, points.size() - 1)]));
    }
    call.changed();
}

constexpr Property Common[] = {
    {"Layer", Access::Text, 8, 0, nullptr, putLayer, false, "0"},
    {"Linetype", Access::Text, 6, 0, nullptr, putLinetype, false, "ByLayer"},
    {"LinetypeScale", Access::Real, 48, 1},
    {"Lineweight", Access::Integer, 370, -1, nullptr, putLineweight},
    {"Color", Access::Integer, 62, 256, nullptr, putColor},
    {"TrueColor", Access::Custom, 420, 0, getTrueColor, putTrueColor},
    {"Visible", Access::Custom, 60, 0, isVisible, putVisible},
    {"EntityTransparency", Access::Custom, 440, 0, getTransparency, putTransparency},
    {"EntityName", Access::Custom, 0, 0, entityName},
};

constexpr Property Thickness{"Thickness", Access::Real, 39, 0};
constexpr Property Normal{"Normal", Access::Custom, 210, 0, normal, putNormal};

constexpr Property Line[] = {
    {"StartPoint", Access::Point, 10},
    {"EndPoint", Access::Point, 11},
    {"Length", Access::Custom, 0, 0, lineLength},
    {"Angle", Access::Custom, 0, 0, lineAngle},
    {"Delta", Access::Custom, 0, 0, lineDelta},
    Thickness,
    Normal,
};
constexpr Property Circle[] = {
    {"Center", Access::OcsPoint, 10},
    {"Radius", Access::Real, 40, 0, nullptr, putRadius},
    {"Diameter", Access::Custom, 0, 0, diameter, putDiameter},
    {"Circumference", Access::Custom, 0, 0, circumference, putCircumference},
    {"Area", Access::Custom, 0, 0, circleArea, putCircleArea},
    Thickness,
    Normal,
};
constexpr Property Arc[] = {
    {"Center", Access::OcsPoint, 10},
    {"Radius", Access::Real, 40, 0, nullptr, putRadius},
    {"StartAngle", Access::Angle, 50},
    {"EndAngle", Access::Angle, 51},
    {"StartPoint", Access::Custom, 0, 0, arcStart},
    {"EndPoint", Access::Custom, 0, 0, arcEnd},
    {"TotalAngle", Access::Custom, 0, 0, totalAngle},
    {"ArcLength", Access::Custom, 0, 0, arcLength},
    {"Area", Access::Custom, 0, 0, arcArea},
    Thickness,
    Normal,
};
constexpr Property Ellipse[] = {
    {"Center", Access::Point, 10},
    {"MajorAxis", Access::Point, 11},
    {"MinorAxis", Access::Custom, 0, 0, minorAxis},
    {"MajorRadius", Access::Custom, 0, 0, majorRadius, putMajorRadius},
    {"MinorRadius", Access::Custom, 0, 0, minorRadius},
    {"RadiusRatio", Access::Real, 40, 1},
    {"StartParameter", Access::Real, 41, 0},
    {"EndParameter", Access::Real, 42, FullTurn},
    {"StartPoint", Access::Custom, 0, 0, ellipseStart},
    {"EndPoint", Access::Custom, 0, 0, ellipseEnd},
    {"Area", Access::Custom, 0, 0, ellipseArea},
    Normal,
};
constexpr Property PointEntity[] = {{"Coordinates", Access::Point, 10}, Thickness, Normal};
constexpr Property Ray[] = {
    {"BasePoint", Access::Point, 10},
    {"DirectionVector", Access::Point, 11},
    {"SecondPoint", Access::Custom, 0, 0, raySecond, putRaySecond},
};
constexpr Property Solid[] = {{"Coordinates", Access::Custom, 10, 0, corners, putCorners}, Thickness, Normal};

}  // namespace

Properties entityProperties() {
    return Common;
}
Properties lineProperties() {
    return Line;
}
Properties circleProperties() {
    return Circle;
}
Properties arcProperties() {
    return Arc;
}
Properties ellipseProperties() {
    return Ellipse;
}
Properties pointProperties() {
    return PointEntity;
}
Properties rayProperties() {
    return Ray;
}
Properties solidProperties() {
    return Solid;
}

}  // namespace drafthost::activex
