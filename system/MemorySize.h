// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A size of memory as users type it.
#include <cstddef>
#include <optional>
#include <string_view>

namespace files {

/// "512", "512M", "2G", "524288K": bytes. Nothing when it is no size, or less than a host can work with (64
/// MB).
std::optional<std::size_t> MemoryLimit(std::string_view text);

}  // namespace files
