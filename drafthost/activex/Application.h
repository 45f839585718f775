// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "drafthost/activex/Model.h"

namespace drafthost::activex {

/// The object that a program's name stands for: a colour, a drawing beside, the application; nil for programs
/// that do not exist here.
Value createObject(Evaluator& e, const std::string& program);

/// A preference, or one of the groups of preferences: whatever is put is kept and has no effect.
Result getPreference(Call& call, const std::string& name);
void putPreference(Call& call, const std::string& name, const Value& value);

}  // namespace drafthost::activex
