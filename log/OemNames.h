#pragma once
// Names of entries between UTF-8 and the bytes in an archive. The page is IBM 437: it is the one that the
// format names for entries without the UTF-8 flag, so that every reader agrees on it, which the page of the
// machine's locale would not give. A name that it cannot hold is written in UTF-8 with the flag instead of
// losing characters, because the names tie the run log to the logs in the archive.
#include <cstdint>
#include <string>
#include <string_view>

struct StoredName {
    std::string Bytes;
    bool Utf8 = false;
};

/// UTF-8 to the bytes of an archive; what is no UTF-8 becomes U+FFFD. Without oem always UTF-8.
StoredName EncodeEntryName(const std::string& name, bool oem);

/// The other way. The flag or an extra field with the name in UTF-8 is honoured; without either, a name made
/// on Unix (madeBy, high byte 3 or 19) is UTF-8 if it can be, and every other is of the OEM page.
std::string DecodeEntryName(std::string_view bytes, std::uint16_t flags, std::uint16_t madeBy,
                            std::string_view extra);

/// Same name: canonically equivalent, or so without regard to case.
bool SameEntryName(const std::string& left, const std::string& right, bool caseSensitive);
