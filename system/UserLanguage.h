// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the user's locale says of text: the encoding that files are in here, and the page in which files from
// other systems of users of this language most likely are.

#include <string>

namespace files {

/// The encoding that LC_ALL, LC_CTYPE or LANG name; "UTF-8" for a locale without one ("C", or nothing set).
std::string LocaleCodeset();

/// The locale that they name; empty when none is set.
std::string LocaleName();

/// The Windows page of the language that they name; where they name the plain "C" locale, of the first
/// language of LANGUAGE. 1252 without one.
int LanguagePage();

}  // namespace files
