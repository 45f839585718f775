// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Shares.h"

#include <sys/stat.h>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <map>
#include <numeric>
#include <utility>

namespace {

/// What a drawing costs beside its size: opening an empty one takes about as long as reading so many bytes.
constexpr std::uintmax_t CostOfAny = std::uintmax_t{64} * 1024;

std::uintmax_t costOf(const QueueEntry& entry) {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(entry.Path, failure);
    return CostOfAny + (failure ? 0 : size);
}

}  // namespace

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

std::vector<JobShare> SplitBySize(const RunQueue& queue, unsigned jobs) {
    std::vector<std::size_t> waiting;
    std::vector<std::uintmax_t> costs;
    for (std::size_t place = 0; place < queue.size(); ++place) {
        if (queue[place].Status == DrawingStatus::ToDo) {
            waiting.push_back(place);
            costs.push_back(costOf(queue[place]));
        }
    }
    const std::size_t count = std::min<std::size_t>(jobs, waiting.size());
    std::vector<std::size_t> order(waiting.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t left, std::size_t right) { return costs[left] > costs[right]; });
    std::vector<std::uintmax_t> loads(count);
    std::vector<std::size_t> owner(waiting.size());
    std::map<std::pair<dev_t, ino_t>, std::size_t> owners;
    for (const std::size_t index : order) {
        struct stat file {};
        const bool isKnown = stat(queue[waiting[index]].Path.c_str(), &file) == 0;
        const auto twin = isKnown ? owners.find({file.st_dev, file.st_ino}) : owners.end();
        owner[index] =
            twin != owners.end()
                ? twin->second
                : static_cast<std::size_t>(std::min_element(loads.begin(), loads.end()) - loads.begin());
        loads[owner[index]] += costs[index];
        if (isKnown) {
            owners.emplace(std::pair(file.st_dev, file.st_ino), owner[index]);
        }
    }
    std::vector<JobShare> shares(count);
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        shares[owner[i]].push_back(waiting[i]);
    }
    std::erase_if(shares, [](const JobShare& share) { return share.empty(); });
    return shares;
}
