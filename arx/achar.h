// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The host's text: UTF-16 units, so that QString::utf16() goes through without a copy.
#include <cstdint>

using ACHAR = char16_t;
/// A literal of the host's text type.
#define ACRX_T(text) u##text

/// Marks what the host's executable and a module offer to each other by name.
#define ARX_EXPORT __attribute__((visibility("default")))

namespace Adesk {
using Int16 = std::int16_t;
using Int32 = std::int32_t;
using Int64 = std::int64_t;
using IntPtr = std::intptr_t;
}  // namespace Adesk
