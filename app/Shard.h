// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A run over many machines: each takes every N-th drawing of the same list, with a data folder of its own.
// The description of its run keeps which share of which list it has, so that the results cannot be joined
// with one share missing or there twice.
#include <optional>
#include <string>
#include <vector>

struct Shard {
    /// From 1 to Count.
    unsigned Number = 1;
    unsigned Count = 1;
};

/// Reads "2/4". Nothing when it is no such pair.
std::optional<Shard> ParseShard(const std::string& text);
/// "2/4".
std::string ShardText(const Shard& shard);

/// The drawings of a share, in their order. May be none.
std::vector<std::string> TakeShare(const std::vector<std::string>& drawings, const Shard& shard);
