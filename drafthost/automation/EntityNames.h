// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Entity names and records: a name is made of its record's number, which stays the same while the drawing is
// open, so drawings without handles have names for their entities too. All who hand names to LISP or get
// them from it (selections, modules) must convert them here.

#include <optional>

#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Record.h"

namespace drafthost::automation {

inline constexpr EntityName FirstEntityName = 0x7ff400000000;

inline EntityName nameOf(RecordId id) {
    return id == NoRecord ? 0 : FirstEntityName + (static_cast<EntityName>(id) << 4);
}

/// The record of a name, whether it is deleted or not; nothing for what cannot be a record's name.
inline std::optional<RecordId> recordOf(EntityName name) {
    if (name < FirstEntityName || ((name - FirstEntityName) & 15) != 0 ||
        ((name - FirstEntityName) >> 4) >= NoRecord) {
        return std::nullopt;
    }
    return static_cast<RecordId>((name - FirstEntityName) >> 4);
}

}  // namespace drafthost::automation
