// SPDX-License-Identifier: GPL-3.0-or-later
#include "zip/FileHeader.h"

void CFileHeader::SetTime(std::time_t time) {
    std::tm local{};
    localtime_r(&time, &local);
    const int year = local.tm_year + 1900;
    if (year < 1980) {
        ModDate = (1U << 5U) | 1U;
        ModTime = 0;
        return;
    }
    if (year > 2107) {
        ModDate = 0xFF9F;
        ModTime = 0xBF7D;
        return;
    }
    ModDate = static_cast<std::uint16_t>((year - 1980) << 9 | (local.tm_mon + 1) << 5 | local.tm_mday);
    ModTime = static_cast<std::uint16_t>(local.tm_hour << 11 | local.tm_min << 5 | local.tm_sec / 2);
}
