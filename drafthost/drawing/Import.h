// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <unordered_map>

#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

/// Brings entities and definitions from one drawing into another, with all that they name: layers, linetypes,
/// styles, blocks. What the target has under a name stays as it is there.
class Importer {
  public:
    Importer(const Drawing& from, Drawing& to) : from_(from), to_(to) {}

    /// The entity at the end of a place; NoRecord for kinds that lean on objects which cannot be brought
    /// along (images, tables, multileaders, proxies).
    RecordId entity(RecordId id, const BlockTarget& target);
    /// The entry of that name, of the target or copied; NoRecord when neither drawing has it.
    RecordId entry(Table table, const std::string& name);
    /// A block with its contents; false when neither drawing has it.
    bool block(const std::string& name);
    /// What stands in a drawing's model space as a block of the target.
    bool drawingAsBlock(const std::string& name);
    /// How many entities could not be brought along.
    std::size_t left() const { return left_; }

  private:
    void need(const Record& record, int code, std::size_t i);
    void appendBody(RecordId source, RecordId made);
    bool appendPointer(RecordId made, int code, std::uint64_t handle);

    const Drawing& from_;
    Drawing& to_;
    std::size_t left_ = 0;
    std::vector<std::string> open_;
};

}  // namespace drafthost
