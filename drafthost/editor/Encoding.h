#pragma once
// Text of files that people made with whatever editor they had.

#include <string>
#include <string_view>

namespace drafthost {

/// UTF-8 of the bytes: UTF-8 or UTF-16 by their mark, UTF-8 without one when it is valid, else Windows 1252.
std::string toUtf8(std::string_view bytes);

}  // namespace drafthost
