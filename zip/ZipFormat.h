// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The numbers of the published ZIP format (.ZIP File Format Specification, version 6.3.x, section 4.3), and
// its little-endian fields.
#include <cstddef>
#include <cstdint>
#include <string>

namespace zip_format {

constexpr std::uint32_t LocalSignature = 0x04034b50;
constexpr std::uint32_t CentralSignature = 0x02014b50;
constexpr std::uint32_t EndSignature = 0x06054b50;
constexpr std::uint32_t Zip64LocatorSignature = 0x07064b50;

constexpr std::size_t LocalSize = 30;
constexpr std::size_t CentralSize = 46;
constexpr std::size_t EndSize = 22;
constexpr std::size_t Zip64LocatorSize = 20;

constexpr std::uint16_t FlagEncrypted = 1U << 0U;
constexpr std::uint16_t FlagDescriptor = 1U << 3U;
constexpr std::uint16_t FlagStrongEncryption = 1U << 6U;
constexpr std::uint16_t FlagUtf8 = 1U << 11U;
constexpr std::uint16_t FlagMasked = 1U << 13U;

/// High byte of "made by": the attributes' upper half is a mode of this system.
constexpr std::uint16_t MadeOnUnix = 3U << 8U;
constexpr std::uint16_t MadeOnMac = 19U << 8U;
/// A plain file that its owner may write and everybody read.
constexpr std::uint32_t PlainFileMode = 0100644;

constexpr std::uint16_t Stored = 0;
constexpr std::uint16_t Deflated = 8;

/// Extra field with the name in UTF-8.
constexpr std::uint16_t ExtraUnicodePath = 0x7075;

/// Values that say "see the ZIP64 record".
constexpr std::uint16_t Zip64Count = 0xFFFF;
constexpr std::uint32_t Zip64Size = 0xFFFFFFFF;

constexpr std::size_t MaxEntries = 65535;
constexpr std::size_t MaxName = 65535;

inline std::uint16_t Get16(const char* at) {
    const auto* byte = reinterpret_cast<const unsigned char*>(at);
    return static_cast<std::uint16_t>(byte[0] | byte[1] << 8);
}

inline std::uint32_t Get32(const char* at) {
    return Get16(at) | static_cast<std::uint32_t>(Get16(at + 2)) << 16U;
}

inline void Put16(std::string& to, std::uint32_t value) {
    to.push_back(static_cast<char>(value & 0xFFU));
    to.push_back(static_cast<char>(value >> 8U & 0xFFU));
}

inline void Put32(std::string& to, std::uint32_t value) {
    Put16(to, value & 0xFFFFU);
    Put16(to, value >> 16U);
}

}  // namespace zip_format
