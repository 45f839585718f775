// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The host's wildcard patterns, used by (wcmatch), selection filters, lists of layer names and the
// modules' matching calls alike:
//   #  a digit    @  a letter    .  neither    *  any run    ?  any character    ~  first: not
//   [set] [~set]  one of, none of    ,  or    `  the next character as it is

#include <string_view>

namespace drafthost::lisp {

/// Whether the text fits one of the pattern's alternatives. Both are UTF-8.
bool wildcardMatch(std::string_view text, std::string_view pattern, bool ignoreCase = false);

/// Whether the pattern holds any character with a special meaning.
bool hasWildcards(std::string_view pattern);

}  // namespace drafthost::lisp
