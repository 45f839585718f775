// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace drafthost {

/// Adds a tag to the text of an ASCII drawing, as most programs write it: the code in three columns, CR LF.
inline void appendDxfLine(std::string& text, int code, const std::string& value) {
    constexpr std::size_t Columns = 3;
    const std::string digits = std::to_string(code);
    text.append(digits.size() < Columns ? Columns - digits.size() : 0, ' ');
    text.append(digits).append("\r\n").append(value).append("\r\n");
}

}  // namespace drafthost
