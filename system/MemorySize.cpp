// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/MemorySize.h"

#include <charconv>

namespace files {

std::optional<std::size_t> MemoryLimit(std::string_view text) {
    std::size_t number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    const int shift = unit == "K" || unit == "k"                   ? 10
                      : unit.empty() || unit == "M" || unit == "m" ? 20
                      : unit == "G" || unit == "g"                 ? 30
                                                                   : -1;
    constexpr std::size_t Most = std::size_t{1} << 32;
    constexpr std::size_t Least = std::size_t{64} << 20;
    if (code != std::errc() || shift < 0 || number > Most || number << shift < Least) {
        return std::nullopt;
    }
    return number << shift;
}

}  // namespace files
