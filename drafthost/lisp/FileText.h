// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Text of files that people made with whatever editor they had: scripts, LISP files and what these read.

#include <string>

namespace drafthost::lisp {

/// UTF-8 of a file's bytes: UTF-8 or UTF-16 by their mark; without one each line in the encoding of the
/// locale, or where it is no text there, in the Windows page of the user's language.
std::string decodeFile(std::string bytes);

}  // namespace drafthost::lisp
