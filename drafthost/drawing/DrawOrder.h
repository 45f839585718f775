// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// The order in which the entities of a block are drawn, where it is not that of their handles: a
// SORTENTSTABLE in the extension dictionary of the block's record.

/// The entities of the table's block in their order of drawing: those named with another handle stand where
/// that one is.
std::vector<RecordId> readDrawOrder(const Drawing& drawing, RecordId table);
void writeDrawOrder(Drawing& drawing, RecordId table, const std::vector<RecordId>& order);
/// Moves entities in an order: behind all others or before all, or beside `target`.
void reorder(std::vector<RecordId>& order, const std::vector<RecordId>& moved, RecordId target, bool above);

enum class OrderPlace { Front, Back, Above, Under };
/// Changes the order of the block in which the entities lie, making its table when it has none. False in
/// drawings that keep no such tables (before 2000).
bool changeDrawOrder(Drawing& drawing, const std::vector<RecordId>& moved, OrderPlace place,
                     const std::vector<RecordId>& references);

}  // namespace drafthost
