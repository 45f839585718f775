// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// Header variables: each is a name under code 9 and one value, or the reals of a point. They are found by one
// pass over the HEADER record when first asked for. A drawing without a HEADER section gets one at the first
// set.

struct HeaderVariable {
    std::string name;  ///< with its "$"
    int code = 0;      ///< group code of the (first) value
    Value value;       ///< for points the x
    Point point;       ///< for codes 10 to 39
    int reals = 1;     ///< 2 or 3 for points
};

/// The variable `name` ("$CLAYER"; case does not count), nullopt when the drawing has none.
std::optional<HeaderVariable> headerVariable(const Drawing& drawing, std::string_view name);
std::vector<HeaderVariable> headerVariables(const Drawing& drawing);
std::string headerText(const Drawing& drawing, std::string_view name, std::string_view otherwise);
double headerReal(const Drawing& drawing, std::string_view name, double otherwise);
std::int64_t headerInteger(const Drawing& drawing, std::string_view name, std::int64_t otherwise);
Point headerPoint(const Drawing& drawing, std::string_view name, const Point& otherwise);

/// Sets a variable, adding it under `code` at the end of the header when it is not there. A variable that is
/// there keeps its own code ($CLAYER is 8, $TEXTSTYLE 7, $CELTYPE 6, $DIMSTYLE 2).
void setHeader(Drawing& drawing, std::string_view name, int code, const Value& value);
/// The same for a point of two or three reals under 10, 20 and 30.
void setHeaderPoint(Drawing& drawing, std::string_view name, const Point& point, int reals);

}  // namespace drafthost
