// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace drafthost {

/// The lines of a paragraph without its codes for fonts, heights, colours and the like (help page of the
/// format, "MTEXT"): "\P" ends a line, "{" and "}" hold codes together, "\S1/2;" is a fraction.
std::vector<std::string> plainLines(std::string_view coded);

}  // namespace drafthost
