// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// Extended data: what an application has hung on a record, behind its name (1001).

using XdataTag = std::pair<int, Value>;

/// The first tag behind an application's name and the end of its tags; both the record's size when it has
/// none.
std::pair<std::size_t, std::size_t> xdataRange(const Record& record, std::string_view application);
/// Puts tags in the place of those that the application has there, and registers it.
void setXdata(Drawing& drawing, RecordId id, const char* application, const std::vector<XdataTag>& tags);

}  // namespace drafthost
