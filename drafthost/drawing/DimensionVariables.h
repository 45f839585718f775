// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// A dimension style keeps under group codes what the header keeps under the names of the dimension variables
// (help pages of the format, "DIMSTYLE" and "HEADER Section Group Codes").

struct DimensionVariable {
    std::string_view name;  ///< "DIMASZ"
    int code;               ///< in a dimension style; before 2000 of arrows and text style by name
    enum class Kind { Real, Integer, Text, Block, Style } kind;
    double standard;  ///< what a style means that leaves it out
};
const std::vector<DimensionVariable>& dimensionVariables();

/// Sets the header's dimension variables from a style, and makes it the current one.
void restoreDimensionStyle(Drawing& drawing, RecordId style);
/// Writes the header's dimension variables into a style of that name, new or not, and makes it the current
/// one.
RecordId saveDimensionStyle(Drawing& drawing, const std::string& name);
/// A variable's value of a style as text.
std::string dimensionText(const Drawing& drawing, RecordId style, const DimensionVariable& variable);

}  // namespace drafthost
