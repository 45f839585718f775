// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What reading or setting a system variable takes beyond the table of its value: the variables that the host
// works out itself, and those whose setting does something or must be checked against the drawing.

#include <string_view>

#include "drafthost/commands/VariableRows.h"
#include "drafthost/editor/SystemVariables.h"

namespace drafthost::commands {

/// The value of `text` ("x,y,z" for points) by the row's kind.
VariableValue rowValue(const VariableRow& row, std::string_view text);

/// Value of a header row in the document's drawing, or its initial value.
VariableValue headerValue(const VariableRow& row, Document* document);
/// Puts a value into the drawing's header; with the document alone when its version cannot hold the variable.
/// The document counts as modified when something changed.
void storeHeaderValue(const VariableRow& row, Document& document, const VariableValue& value);

/// Adds how computed variables are found out and set (ComputedVariables.cpp).
void addComputedAction(VariableEntry& entry, const VariableRow& row);
/// Adds the check that a variable needs before its value is kept; false and one line of reason when the
/// drawing does not allow the value. Null for variables that need none (VariableChecks.cpp).
using VariableCheck = bool (*)(Host&, Document*, VariableValue&, std::string& reason);
VariableCheck checkOf(std::string_view name);

}  // namespace drafthost::commands
