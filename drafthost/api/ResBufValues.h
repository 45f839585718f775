// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Chains of typed values as modules use them, and the values of LISP that they stand for.

#include <optional>
#include <span>
#include <vector>

#include "drafthost/editor/SystemVariables.h"
#include "drafthost/lisp/Value.h"
#include "resbuf.h"

namespace drafthost {

/// The values of a chain; nothing when its lists do not balance or a type stands for no value.
std::optional<std::vector<lisp::Value>> valuesOf(const resbuf* chain);
/// A new chain of the values, null for none. Free with acutRelRb.
resbuf* chainOf(std::span<const lisp::Value> values);
/// A system variable's value in one node, and back.
void store(const VariableValue& value, resbuf& out);
std::optional<VariableValue> variableValueOf(const resbuf& node);

}  // namespace drafthost
