// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/EntityDefaults.h"

#include <array>
#include <vector>

namespace drafthost {

namespace {

using Kind = DefaultGroup::Kind;

constexpr DefaultGroup normalOf(std::string_view subclass) {
    return {210, subclass, Kind::Point, 0, {}, {0, 0, 1}};
}
constexpr DefaultGroup real(int code, std::string_view subclass, double value) {
    return {code, subclass, Kind::Real, value, {}, {}};
}
constexpr DefaultGroup integer(int code, std::string_view subclass, double value) {
    return {code, subclass, Kind::Integer, value, {}, {}};
}

constexpr std::array Line = {normalOf("AcDbLine")};
constexpr std::array Circle = {normalOf("AcDbCircle")};
constexpr std::array PointGroups = {normalOf("AcDbPoint"), real(50, "AcDbPoint", 0)};
constexpr std::array Text = {
    real(50, "AcDbText", 0),
    real(41, "AcDbText", 1),
    real(51, "AcDbText", 0),
    DefaultGroup{7, "AcDbText", Kind::Text, 0, "Standard", {}},
    integer(71, "AcDbText", 0),
    integer(72, "AcDbText", 0),
    DefaultGroup{11, "AcDbText", Kind::Point, 0, {}, {0, 0, 0}},
    normalOf("AcDbText"),
};
constexpr DefaultGroup TextVertical = integer(73, "", 0);
constexpr DefaultGroup AttributeVertical = integer(74, "", 0);
constexpr DefaultGroup FieldLength = integer(73, "", 0);
constexpr std::array Insert = {
    real(41, "AcDbBlockReference", 1),    real(42, "AcDbBlockReference", 1),
    real(43, "AcDbBlockReference", 1),    real(50, "AcDbBlockReference", 0),
    integer(70, "AcDbBlockReference", 0), integer(71, "AcDbBlockReference", 0),
    real(44, "AcDbBlockReference", 0),    real(45, "AcDbBlockReference", 0),
    normalOf("AcDbBlockReference"),
};
constexpr std::array LightPolyline = {integer(70, "AcDbPolyline", 0), real(43, "AcDbPolyline", 0),
                                      real(38, "AcDbPolyline", 0), real(39, "AcDbPolyline", 0),
                                      normalOf("AcDbPolyline")};
constexpr std::array Polyline = {
    integer(66, "", 1), integer(70, "", 0), real(40, "", 0),    real(41, "", 0),    normalOf(""),
    integer(71, "", 0), integer(72, "", 0), integer(73, "", 0), integer(74, "", 0), integer(75, "", 0)};
constexpr std::array Vertex = {real(40, "", 0), real(41, "", 0), real(42, "", 0), integer(70, "", 0),
                               real(50, "", 0)};
constexpr std::array Solid = {normalOf("AcDbTrace")};
constexpr std::array Face = {integer(70, "AcDbFace", 0)};
constexpr std::array Ellipse = {normalOf("AcDbEllipse"), real(41, "AcDbEllipse", 0),
                                real(42, "AcDbEllipse", 6.283185307179586)};
constexpr std::array MText = {
    real(41, "AcDbMText", 0),    integer(71, "AcDbMText", 1),
    integer(72, "AcDbMText", 5), DefaultGroup{7, "AcDbMText", Kind::Text, 0, "Standard", {}},
    normalOf("AcDbMText"),       DefaultGroup{11, "AcDbMText", Kind::Point, 0, {}, {1, 0, 0}},
    real(50, "AcDbMText", 0),    integer(73, "AcDbMText", 1),
    real(44, "AcDbMText", 1),
};
constexpr std::array Dimension = {integer(71, "AcDbDimension", 5),
                                  integer(72, "AcDbDimension", 1),
                                  DefaultGroup{1, "AcDbDimension", Kind::Text, 0, "", {}},
                                  real(53, "AcDbDimension", 0),
                                  real(51, "AcDbDimension", 0),
                                  normalOf("AcDbDimension"),
                                  DefaultGroup{3, "AcDbDimension", Kind::Text, 0, "Standard", {}}};

std::vector<DefaultGroup> withTail(std::initializer_list<DefaultGroup> tail) {
    std::vector<DefaultGroup> all(Text.begin(), Text.end());
    all.insert(all.end(), tail);
    return all;
}

}  // namespace

std::span<const DefaultGroup> defaultGroups(std::string_view type) {
    static const std::vector<DefaultGroup> kText = withTail({TextVertical});
    static const std::vector<DefaultGroup> kAttribute = withTail({FieldLength, AttributeVertical});
    struct Row {
        std::string_view type;
        std::span<const DefaultGroup> groups;
    };
    static const std::array<Row, 20> kRows = {{{"LINE", Line},
                                               {"CIRCLE", Circle},
                                               {"ARC", Circle},
                                               {"POINT", PointGroups},
                                               {"TEXT", kText},
                                               {"ATTRIB", kAttribute},
                                               {"ATTDEF", kAttribute},
                                               {"INSERT", Insert},
                                               {"LWPOLYLINE", LightPolyline},
                                               {"POLYLINE", Polyline},
                                               {"VERTEX", Vertex},
                                               {"SOLID", Solid},
                                               {"TRACE", Solid},
                                               {"3DFACE", Face},
                                               {"ELLIPSE", Ellipse},
                                               {"MTEXT", MText},
                                               {"DIMENSION", Dimension},
                                               {"SHAPE", {}},
                                               {"HATCH", {}},
                                               {"SPLINE", {}}}};
    for (const Row& row : kRows) {
        if (row.type == type) {
            return row.groups;
        }
    }
    return {};
}

}  // namespace drafthost
