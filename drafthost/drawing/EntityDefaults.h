// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string_view>

#include "drafthost/base/Point.h"

namespace drafthost {

/// A group that files leave out while it has this value, and that programs are shown all the same.
struct DefaultGroup {
    int code;
    std::string_view subclass;  ///< the part of the record in which it belongs
    enum class Kind { Real, Integer, Text, Point } kind = Kind::Real;
    double number = 0;
    std::string_view text = {};
    Point point{};
};

/// Those of an entity type, in the order in which they are shown (help pages of the format, one for each
/// entity); none for types that are not known.
std::span<const DefaultGroup> defaultGroups(std::string_view type);

}  // namespace drafthost
