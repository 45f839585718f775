// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Text of files that people made with whatever editor they had: scripts, LISP files and what these read.

#include <cstddef>
#include <optional>
#include <string>

namespace drafthost::lisp {

/// UTF-8 of a file's bytes: UTF-8 or UTF-16 by their mark; without one each line in the encoding of the
/// locale, or where it is no text there, in the Windows page of the user's language. A line that is no text
/// in either is taken as Latin-1; the first such line, from 1, that is no comment goes to `unknownLine`, or
/// 0.
std::string decodeFile(std::string bytes, std::size_t* unknownLine = nullptr);

/// The same of a script or LISP file, whose text goes into drawings: what is no text in either encoding is
/// refused, with a cause that names the line.
std::optional<std::string> decodeProgram(std::string bytes, std::string& cause);

}  // namespace drafthost::lisp
