// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Deals a queue out to several hosts. The split is made once, before the hosts start: a drawing that only one
// state file names can never be given to two hosts, whatever dies when. What makes it fair is the size of the
// files, since reading and saving take most of the time: the largest drawing goes first, each to the host
// that has least so far.
#include "app/QueueEntry.h"

#include <vector>

/// A host's share: its drawings by their places in the whole queue.
using JobShare = std::vector<std::size_t>;

/// The drawings of each host that are still ToDo, in the order of the queue. No host is left without one:
/// there are fewer shares when there are fewer drawings. One file under two names goes to one host, which
/// locks it but once.
std::vector<JobShare> SplitBySize(const RunQueue& queue, unsigned jobs);
