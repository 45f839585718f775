// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/EntityGroups.h"

#include "drafthost/drawing/Objects.h"

namespace drafthost {

namespace {

constexpr const char* Groups = "ACAD_GROUP";

RecordId groupDictionary(const Drawing& drawing) {
    const RecordId root = rootDictionary(drawing);
    return root == NoRecord ? NoRecord : findInDictionary(drawing, root, Groups);
}

}  // namespace

std::vector<EntityGroup> entityGroups(const Drawing& drawing) {
    std::vector<EntityGroup> result;
    const RecordId dictionary = groupDictionary(drawing);
    if (dictionary == NoRecord) {
        return result;
    }
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, dictionary)) {
        const RecordId id = drawing.findHandle(entry.handle);
        if (id == NoRecord) {
            continue;
        }
        const Record record = drawing.record(id);
        EntityGroup group{entry.name, record.textOr(300, ""), {}, id};
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            const RecordId member = record.code(i) == 340 ? drawing.findHandle(record.handle(i)) : NoRecord;
            if (member != NoRecord) {
                group.members.push_back(member);
            }
        }
        result.push_back(std::move(group));
    }
    return result;
}

std::optional<EntityGroup> findGroup(const Drawing& drawing, const std::string& name) {
    for (EntityGroup& group : entityGroups(drawing)) {
        if (foldCase(group.name) == foldCase(name)) {
            return std::move(group);
        }
    }
    return std::nullopt;
}

RecordId makeGroup(Drawing& drawing, const std::string& name, const std::string& description) {
    std::string given = name;
    for (int number = 1; given.empty() || (name.empty() && findGroup(drawing, given)); ++number) {
        given = "*A" + std::to_string(number);
    }
    const RecordId dictionary = provideDictionary(drawing, Groups);
    const RecordId made =
        dictionary == NoRecord ? NoRecord : addObject(drawing, "GROUP", "AcDbGroup", dictionary);
    if (made == NoRecord) {
        return made;
    }
    drawing.appendTag(made, 300, description);
    drawing.appendTag(made, 70, std::int64_t{name.empty() ? 1 : 0});
    drawing.appendTag(made, 71, std::int64_t{1});
    addDictionaryEntry(drawing, dictionary, given, made);
    return made;
}

bool addGroup(Drawing& drawing, const std::string& name, const std::string& description,
              const std::vector<RecordId>& members) {
    const RecordId made = makeGroup(drawing, name, description);
    if (made == NoRecord) {
        return false;
    }
    setMembers(drawing, {name, description, {}, made}, members);
    return true;
}

void setMembers(Drawing& drawing, const EntityGroup& group, const std::vector<RecordId>& members) {
    for (std::size_t i = drawing.record(group.record).size(); i-- > 1;) {
        if (drawing.record(group.record).code(i) == 340) {
            drawing.removeTag(group.record, i);
        }
    }
    for (const RecordId member : members) {
        drawing.appendTag(group.record, 340, formatHandle(drawing.handle(member)));
    }
}

void removeGroup(Drawing& drawing, const EntityGroup& group) {
    removeDictionaryEntry(drawing, groupDictionary(drawing), group.name);
    drawing.deleteRecord(group.record);
}

void renameGroup(Drawing& drawing, const EntityGroup& group, const std::string& name) {
    const RecordId dictionary = groupDictionary(drawing);
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, dictionary)) {
        if (drawing.findHandle(entry.handle) == group.record) {
            drawing.setTag(dictionary, entry.tag, name);
        }
    }
}

}  // namespace drafthost
