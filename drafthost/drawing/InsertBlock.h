// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "drafthost/drawing/EntityCopy.h"

namespace drafthost {

struct InsertRequest {
    BlockTarget target;
    std::string block;
    Point place;  ///< world coordinates
    std::array<double, 3> scale{1, 1, 1};
    double rotation = 0;  ///< radians
};

/// Definitions of a block's attributes that a reference gets values for: not the constant ones.
std::vector<RecordId> attributeDefinitions(const Drawing& drawing, const Block& block);
/// The value of an attribute, given its definition.
using AttributeValue = std::function<std::string(RecordId definition)>;
/// A reference to a block that is there, with attributes; their defaults where no function gives values.
RecordId insertBlockReference(Drawing& drawing, const InsertRequest& request, const AttributeValue& value);

/// Attributes of a reference that has none, as the definition of its block has them.
void addAttributes(Drawing& drawing, RecordId insert, const AttributeValue& value);

/// A drawing file as a block of the file's name; the name. Nothing, with one line of cause, when it cannot be
/// read. A block of that name that is there already stays.
std::optional<std::string> importFileAsBlock(Drawing& drawing, const std::string& path, std::string& error);

/// Colour, linetype, lineweight and scale of the header's current ones on a new entity.
void takeCurrentProperties(Drawing& drawing, RecordId id);

struct SplineData {
    std::vector<double> knots;
    std::vector<Point> controls;
};
/// A spline of degree three through points, with its tangents at the ends (zero: free). Nothing for fewer
/// than two points.
std::optional<SplineData> fitSpline(const std::vector<Point>& points, const Point& start, const Point& end);

}  // namespace drafthost
