// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A point or a vector, everywhere in the host: in drawings, in LISP, at prompts and in variables.

#include <cstddef>

namespace drafthost {

struct Point {
    double x = 0;
    double y = 0;
    double z = 0;
    bool operator==(const Point&) const = default;

    /// The coordinates by number, 0 to 2.
    double& operator[](std::size_t i) { return i == 0 ? x : i == 1 ? y : z; }
    double operator[](std::size_t i) const { return i == 0 ? x : i == 1 ? y : z; }
};

}  // namespace drafthost
