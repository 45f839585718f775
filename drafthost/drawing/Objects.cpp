// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Objects.h"

#include "drafthost/drawing/Structure.h"

#include <algorithm>

namespace drafthost {

std::vector<RecordId> objects(const Drawing& drawing) {
    std::vector<RecordId> result;
    const Structure::Section& section = drawing.structure().objectsSection;
    if (section.begin == NoRecord) {
        return result;
    }
    for (RecordId id = drawing.next(section.begin); id != NoRecord; id = drawing.next(id)) {
        const std::string_view type = drawing.type(id);
        if (type == "ENDSEC" || type == "SECTION" || type == "EOF") {
            break;
        }
        result.push_back(id);
    }
    return result;
}

RecordId rootDictionary(const Drawing& drawing) {
    for (const RecordId id : objects(drawing)) {
        if (drawing.type(id) == "DICTIONARY") {
            return id;
        }
    }
    return NoRecord;
}

std::vector<DictionaryEntry> dictionaryEntries(const Drawing& drawing, RecordId dictionary) {
    std::vector<DictionaryEntry> entries;
    const Record record = drawing.record(dictionary);
    for (std::size_t i = 0; i + 1 < record.size(); ++i) {
        const int next = record.code(i + 1);
        if (record.code(i) == 3 && (next == 350 || next == 360)) {
            entries.push_back({record.text(i), record.handle(i + 1), i});
        }
    }
    return entries;
}

RecordId findInDictionary(const Drawing& drawing, RecordId dictionary, std::string_view name) {
    if (dictionary == NoRecord) {
        return NoRecord;
    }
    const std::string folded = foldCase(name);
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, dictionary)) {
        if (foldCase(entry.name) == folded) {
            return drawing.findHandle(entry.handle);
        }
    }
    return NoRecord;
}

RecordId extensionDictionary(const Drawing& drawing, RecordId id) {
    const Record record = drawing.record(id);
    for (std::size_t i = 0; i + 1 < record.xdata(); ++i) {
        if (record.code(i) == 102 && record.text(i) == "{ACAD_XDICTIONARY") {
            return drawing.findHandle(record.handle(i + 1));
        }
    }
    return NoRecord;
}

std::vector<RecordId> ownedObjects(const Drawing& drawing, RecordId id) {
    std::vector<RecordId> owned;
    const RecordId first = extensionDictionary(drawing, id);
    // Two records that claim one dictionary do not both own it.
    if (first == NoRecord || drawing.record(first).handleOr(330, 0) != drawing.handle(id)) {
        return owned;
    }
    owned.push_back(first);
    for (std::size_t next = 0; next < owned.size(); ++next) {
        const RecordId owner = owned[next];
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, owner)) {
            const RecordId object = drawing.findHandle(entry.handle);
            const bool known = std::find(owned.begin(), owned.end(), object) != owned.end();
            if (object != NoRecord && !known &&
                drawing.record(object).handleOr(330, 0) == drawing.handle(owner)) {
                owned.push_back(object);
            }
        }
        if (const RecordId own = extensionDictionary(drawing, owner);
            own != NoRecord && std::find(owned.begin(), owned.end(), own) == owned.end()) {
            owned.push_back(own);
        }
    }
    return owned;
}

RecordId addObject(Drawing& drawing, std::string_view type, std::string_view subclass, RecordId owner) {
    const std::vector<RecordId> all = objects(drawing);
    if (all.empty() || !drawing.hasHandles()) {
        return NoRecord;
    }
    const RecordId made = drawing.insertRecord(all.back(), type);
    drawing.appendTag(made, 5, formatHandle(drawing.allocateHandle()));
    drawing.appendTag(made, 330, formatHandle(owner == NoRecord ? 0 : drawing.handle(owner)));
    if (!subclass.empty()) {
        drawing.appendTag(made, 100, std::string(subclass));
    }
    return made;
}

void addDictionaryEntry(Drawing& drawing, RecordId dictionary, const std::string& name, RecordId object) {
    const std::size_t end = drawing.record(dictionary).xdata();
    drawing.insertTag(dictionary, end, 3, name);
    drawing.insertTag(dictionary, end + 1, 350, formatHandle(drawing.handle(object)));
}

RecordId makeExtensionDictionary(Drawing& drawing, RecordId id) {
    if (drawing.versionNumber() < 1012 || drawing.handle(id) == 0) {
        return NoRecord;
    }
    const RecordId made = addObject(drawing, "DICTIONARY", "AcDbDictionary", id);
    if (made == NoRecord) {
        return NoRecord;
    }
    drawing.appendTag(made, 280, std::int64_t{1});
    drawing.appendTag(made, 281, std::int64_t{1});
    const Record record = drawing.record(id);
    const int handleCode = record.type() == "DIMSTYLE" ? 105 : 5;
    const std::size_t place = record.find(handleCode).value_or(0) + 1;
    drawing.insertTag(id, place, 102, "{ACAD_XDICTIONARY");
    drawing.insertTag(id, place + 1, 360, formatHandle(drawing.handle(made)));
    drawing.insertTag(id, place + 2, 102, "}");
    return made;
}

RecordId provideDictionary(Drawing& drawing, const std::string& name) {
    const RecordId root = rootDictionary(drawing);
    if (root == NoRecord) {
        return NoRecord;
    }
    const RecordId there = findInDictionary(drawing, root, name);
    if (there != NoRecord) {
        return there;
    }
    const RecordId made = addObject(drawing, "DICTIONARY", "AcDbDictionary", root);
    if (made != NoRecord) {
        drawing.appendTag(made, 281, std::int64_t{1});
        addDictionaryEntry(drawing, root, name, made);
    }
    return made;
}

void removeDictionaryEntry(Drawing& drawing, RecordId dictionary, const std::string& name) {
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, dictionary)) {
        if (foldCase(entry.name) == foldCase(name)) {
            drawing.removeTag(dictionary, entry.tag + 1);
            drawing.removeTag(dictionary, entry.tag);
            return;
        }
    }
}

}  // namespace drafthost
