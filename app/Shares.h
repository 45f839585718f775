// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How a list is dealt out. A run over many machines: each takes every N-th drawing of the same list, with a
// data folder of its own. The description of its run keeps which share of which list it has, so that the
// results cannot be joined with one share missing or there twice.
// A run with several hosts: the split is made once, before they start, since a drawing that only one state
// file names can never be given to two hosts, whatever dies when. What makes it fair is the size of the
// files, since reading and saving take most of the time: the largest drawing goes first, each to the host
// that has least so far.
#include "app/QueueEntry.h"

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

/// A host's share: its drawings by their places in the whole queue.
using JobShare = std::vector<std::size_t>;

/// The drawings of each host that are still ToDo, in the order of the queue. No host is left without one:
/// there are fewer shares when there are fewer drawings. One file under two names goes to one host, which
/// locks it but once.
std::vector<JobShare> SplitBySize(const RunQueue& queue, unsigned jobs);
