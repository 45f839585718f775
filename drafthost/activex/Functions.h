// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The functions over the object model, a table per family.

#include "drafthost/automation/Session.h"

namespace drafthost::activex {

std::span<const lisp::Subr> objectFunctions();
std::span<const lisp::Subr> curveFunctions();
std::span<const lisp::Subr> namedPropertyFunctions();

/// Gives a session the object model: its functions, its logical constants, and all names that begin with
/// "vla-", which are found when they are called.
void install(automation::Session& session);
/// Binds the constants of the model ("acRed", "vlax-VbDouble").
void defineConstants(lisp::Evaluator& e);

}  // namespace drafthost::activex
