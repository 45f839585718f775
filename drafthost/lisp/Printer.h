// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Shows values as text. Reals have six significant digits, as everywhere in the host's text.

#include <string>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

/// With quotes and escapes, readable again.
std::string prin1(const Value& value);
/// Raw.
std::string princ(const Value& value);
/// "1.0", "0.333333", "1.0e+10".
std::string formatReal(double value);

}  // namespace drafthost::lisp
