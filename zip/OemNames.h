// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Names of entries between UTF-8 and the bytes in an archive. A name outside ASCII is written in UTF-8 with
// the format's flag for that, the one form that the tools of all systems read alike; without the flag, some
// take the page of their locale and some IBM 437, which the format names. That page is known here for
// reading.
#include <cstdint>
#include <string>
#include <string_view>

struct StoredName {
    std::string Bytes;
    bool Utf8 = false;
};

/// UTF-8 to the bytes of an archive; what is no UTF-8 becomes U+FFFD.
StoredName EncodeEntryName(const std::string& name);

/// The other way. The flag or an extra field with the name in UTF-8 is honoured; without either, a name made
/// on Unix (madeBy, high byte 3 or 19) is UTF-8 if it can be, and every other is of the OEM page.
std::string DecodeEntryName(std::string_view bytes, std::uint16_t flags, std::uint16_t madeBy,
                            std::string_view extra);

/// Same name: canonically equivalent, or so without regard to case.
bool SameEntryName(const std::string& left, const std::string& right, bool caseSensitive);
