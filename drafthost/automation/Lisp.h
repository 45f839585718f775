// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The words of the language that the functions of this folder are written in, under their short names.

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Function.h"
#include "drafthost/lisp/Value.h"

namespace drafthost::automation {

using lisp::Args;
using lisp::EntityName;
using lisp::Evaluator;
using lisp::Exsubr;
using lisp::Failure;
using lisp::ListBuilder;
using lisp::Subr;
using lisp::Type;
using lisp::Value;

using lisp::enameArg;
using lisp::fail;
using lisp::failType;
using lisp::intArg;
using lisp::listArg;
using lisp::nameArg;
using lisp::optional;
using lisp::pointArg;
using lisp::realArg;
using lisp::stringArg;
using lisp::toPoint;

}  // namespace drafthost::automation
