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

/// An empty object of the OBJECTS section, owned by `owner`; NoRecord where the drawing has no such section.
RecordId addObject(Drawing& drawing, std::string_view type, std::string_view subclass, RecordId owner);
void addDictionaryEntry(Drawing& drawing, RecordId dictionary, const std::string& name, RecordId object);
/// The entry goes, the object that it names stays.
void removeDictionaryEntry(Drawing& drawing, RecordId dictionary, const std::string& name);
/// A dictionary of the root by its name, made when it is missing; NoRecord in drawings without objects.
RecordId provideDictionary(Drawing& drawing, const std::string& name);
/// Gives a record an extension dictionary; NoRecord in drawings that cannot have one (before R13).
RecordId makeExtensionDictionary(Drawing& drawing, RecordId id);

}  // namespace drafthost
