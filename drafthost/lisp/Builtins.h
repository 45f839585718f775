// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The built-in functions, a table per family. Each table stands at the end of its family's file.

#include <span>

#include "drafthost/lisp/Function.h"

namespace drafthost::lisp {

std::span<const Subr> arithmeticFunctions();
std::span<const Subr> compareFunctions();
std::span<const Subr> controlFunctions();
std::span<const Subr> functionFunctions();
std::span<const Subr> listFunctions();
std::span<const Subr> listSearchFunctions();
std::span<const Subr> stringFunctions();
std::span<const Subr> conversionFunctions();
std::span<const Subr> outputFunctions();
std::span<const Subr> fileFunctions();
std::span<const Subr> fileSystemFunctions();
std::span<const Subr> geometryFunctions();
std::span<const Subr> namespaceFunctions();

}  // namespace drafthost::lisp
