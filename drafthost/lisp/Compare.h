// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Equality of values, shared by the functions that search lists.

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

/// Same value: numbers by value (1 and 1.0 are equal) within `fuzz`, lists by their items.
bool equalValues(const Value& a, const Value& b, double fuzz = 0);

}  // namespace drafthost::lisp
