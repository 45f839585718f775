// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <unordered_set>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// Every name and handle by which a drawing refers to something, collected in one pass; names folded.
struct Usage {
    explicit Usage(const Drawing& drawing);

    std::unordered_set<std::string> layers;
    std::unordered_set<std::string> linetypes;
    std::unordered_set<std::string> styles;
    std::unordered_set<std::string> dimstyles;
    std::unordered_set<std::string> blocks;
    std::unordered_set<std::string> applications;
    std::unordered_set<std::string> mlineStyles;
    /// Of hard pointers, and of the extended data of dimensions.
    std::unordered_set<std::uint64_t> handles;

  private:
    void addRecord(const Drawing& drawing, RecordId id);
    void addEntity(const Record& record, std::string_view type);
    void addHandles(const Record& record, std::string_view type);
    void addHeader(const Drawing& drawing);
};

}  // namespace drafthost
