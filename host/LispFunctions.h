#pragma once
// What the module offers to LISP and to script files. The functions are registered at each drawing, because
// each drawing has a LISP world of its own.

/// Defines the 15 functions in the current drawing. Their codes go on from those of the drawing before.
void RegisterLispFunctions();
/// Codes begin at 1 again, for a module that is loaded anew.
void ResetLispFunctions();
