// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The words that script editors colour.
#include <string_view>

/// A list of words in lower case with single blanks between them: 0 is the host's LISP vocabulary, 1 the
/// variables that are set for each drawing; others are empty.
std::string_view ScriptKeywords(int list);
