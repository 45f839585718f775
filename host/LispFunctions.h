// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the module offers to LISP and to script files. The functions are registered at each drawing, because
// each drawing has a LISP world of its own.

/// Defines the 15 functions in the current drawing, with the same codes in every drawing: hosts read codes as
/// 16 bits, so that codes which go on from drawing to drawing run out in a long run.
void RegisterLispFunctions();
