// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// The OBJECTS section of R13 and newer drawings: dictionaries that name other objects by handle, with one
// root.

struct DictionaryEntry {
    std::string name;
    std::uint64_t handle = 0;
    std::size_t tag = 0;  ///< index of the name's tag (3) in the dictionary
};

/// All records of the section in the order of the file.
std::vector<RecordId> objects(const Drawing& drawing);
/// The root dictionary, or NoRecord.
RecordId rootDictionary(const Drawing& drawing);
std::vector<DictionaryEntry> dictionaryEntries(const Drawing& drawing, RecordId dictionary);
/// The object that a dictionary names, or NoRecord.
RecordId findInDictionary(const Drawing& drawing, RecordId dictionary, std::string_view name);

/// The extension dictionary of a record, or NoRecord.
RecordId extensionDictionary(const Drawing& drawing, RecordId id);
/// The extension dictionary of a record and all objects in it that name it as their owner, in any depth: what
/// goes when the record goes.
std::vector<RecordId> ownedObjects(const Drawing& drawing, RecordId id);

}  // namespace drafthost
