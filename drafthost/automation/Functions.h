// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The functions over drawings, prompts and the host, a table per family. Each table stands at the end of its
// family's file.

#include <span>

#include "drafthost/lisp/Function.h"

namespace drafthost::automation {

std::span<const lisp::Subr> commandFunctions();
std::span<const lisp::Subr> promptFunctions();
std::span<const lisp::Subr> hostFunctions();
std::span<const lisp::Subr> tableFunctions();
std::span<const lisp::Subr> dictionaryFunctions();
std::span<const lisp::Subr> entityFunctions();
std::span<const lisp::Subr> selectionFunctions();
std::span<const lisp::Subr> menuFunctions();
std::span<const lisp::Subr> registryFunctions();
std::span<const lisp::Subr> measureFunctions();
std::span<const lisp::Subr> reactorFunctions();
std::span<const lisp::Subr> layerStateFunctions();

}  // namespace drafthost::automation
