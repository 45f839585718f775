#pragma once
// Text as the host's LISP reader takes it. Paths reach the host only in this form, so whatever a file system
// allows in a name must pass: blanks, quotes, backslashes, line ends and control characters.
#include <string>
#include <string_view>
#include <vector>

/// A string literal: quotes, backslashes and control characters escaped, all else (UTF-8) as it stands.
std::string LispString(std::string_view text);

/// `(C:Tarnel (list …))` with one path a line, so that no line of a long queue grows without end.
std::string LispRunList(const std::vector<std::string>& paths);
