// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Shard.h"

#include <charconv>

std::optional<Shard> ParseShard(const std::string& text) {
    Shard shard;
    const char* end = text.data() + text.size();
    const auto number = std::from_chars(text.data(), end, shard.Number);
    if (number.ec != std::errc() || number.ptr == end || *number.ptr != '/') {
        return std::nullopt;
    }
    const auto count = std::from_chars(number.ptr + 1, end, shard.Count);
    if (count.ec != std::errc() || count.ptr != end || shard.Number < 1 || shard.Number > shard.Count) {
        return std::nullopt;
    }
    return shard;
}

std::string ShardText(const Shard& shard) {
    return std::to_string(shard.Number) + "/" + std::to_string(shard.Count);
}

std::vector<std::string> TakeShare(const std::vector<std::string>& drawings, const Shard& shard) {
    std::vector<std::string> share;
    for (std::size_t i = shard.Number - 1; i < drawings.size(); i += shard.Count) {
        share.push_back(drawings[i]);
    }
    return share;
}
