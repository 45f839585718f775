// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/JobSplit.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <numeric>

namespace {

/// What a drawing costs beside its size: opening an empty one takes about as long as reading so many bytes.
constexpr std::uintmax_t kCostOfAny = std::uintmax_t{64} * 1024;

std::uintmax_t CostOf(const QueueEntry& entry) {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(entry.Path, failure);
    return kCostOfAny + (failure ? 0 : size);
}

}  // namespace

std::vector<JobShare> SplitBySize(const RunQueue& queue, unsigned jobs) {
    std::vector<std::size_t> waiting;
    std::vector<std::uintmax_t> costs;
    for (std::size_t place = 0; place < queue.size(); ++place) {
        if (queue[place].Status == DrawingStatus::ToDo) {
            waiting.push_back(place);
            costs.push_back(CostOf(queue[place]));
        }
    }
    const std::size_t count = std::min<std::size_t>(jobs, waiting.size());
    std::vector<std::size_t> order(waiting.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t left, std::size_t right) { return costs[left] > costs[right]; });
    std::vector<std::uintmax_t> loads(count);
    std::vector<std::size_t> owner(waiting.size());
    for (const std::size_t index : order) {
        const auto least = std::min_element(loads.begin(), loads.end());
        *least += costs[index];
        owner[index] = static_cast<std::size_t>(least - loads.begin());
    }
    std::vector<JobShare> shares(count);
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        shares[owner[i]].push_back(waiting[i]);
    }
    return shares;
}
