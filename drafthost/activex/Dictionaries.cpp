// SPDX-License-Identifier: GPL-3.0-or-later
// Dictionaries and the objects that they name: records of programs, groups, orders of drawing.

#include <algorithm>
#include <map>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/ExtensionData.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/drawing/DrawOrder.h"
#include "drafthost/drawing/Objects.h"

namespace drafthost::activex {

std::vector<Value> dictionaryMembers(Call& call) {
    std::vector<Value> all;
    for (const DictionaryEntry& entry : dictionaryEntries(call.drawing(), call.id())) {
        if (const RecordId id = call.drawing().findHandle(entry.handle); id != NoRecord) {
            all.push_back(call.object(id));
        }
    }
    return all;
}

Value dictionaryMember(Call& call, const std::string& name) {
    return call.object(findInDictionary(call.drawing(), call.id(), name));
}

std::vector<Value> groupMembers(Call& call) {
    std::vector<Value> all;
    const Record r = call.record();
    for (std::size_t i = 1; i < r.xdata(); ++i) {
        if (r.code(i) == 340) {
            if (const RecordId id = call.drawing().findHandle(r.handle(i)); id != NoRecord) {
                all.push_back(call.object(id));
            }
        }
    }
    return all;
}

namespace {

/// The key under which a dictionary names an object.
std::string keyOf(const Drawing& drawing, RecordId id) {
    const RecordId owner = drawing.findHandle(drawing.record(id).handleOr(330, 0));
    if (owner != NoRecord && drawing.type(owner).find("DICTIONARY") != std::string_view::npos) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, owner)) {
            if (entry.handle == drawing.handle(id)) {
                return entry.name;
            }
        }
    }
    return "";
}

Result getName(Call& call) {
    return Result::text(keyOf(call.drawing(), call.id()));
}
void renameKey(Call& call, RecordId dictionary, const std::string& from, const std::string& to) {
    const auto entries = dictionaryEntries(call.drawing(), dictionary);
    for (const DictionaryEntry& entry : entries) {
        if (foldCase(entry.name) == foldCase(from)) {
            call.drawing().setTag(dictionary, entry.tag, to);
            call.changed();
            return;
        }
    }
    failAutomation("Key not found");
}
void putName(Call& call, const Value& value) {
    const RecordId owner = call.drawing().findHandle(call.record().handleOr(330, 0));
    if (owner == NoRecord) {
        failAutomation("Not applicable");
    }
    renameKey(call, owner, keyOf(call.drawing(), call.id()), textOf(value));
}

RecordId memberNamed(Call& call, const std::string& key) {
    const RecordId id = findInDictionary(call.drawing(), call.id(), key);
    if (id == NoRecord) {
        failAutomation("Key not found");
    }
    return id;
}

RecordId addMember(Call& call, const std::string& key, std::string_view type, std::string_view subclass) {
    if (const RecordId known = findInDictionary(call.drawing(), call.id(), key); known != NoRecord) {
        return known;
    }
    const RecordId made = addObject(call.drawing(), type, subclass, call.id());
    if (made == NoRecord) {
        failAutomation("Not applicable");
    }
    addDictionaryEntry(call.drawing(), call.id(), key, made);
    call.changed();
    return made;
}

Result getObject(Call& call) {
    return call.object(memberNamed(call, call.text(0)));
}
Result getKey(Call& call) {
    return Result::text(keyOf(call.drawing(), call.objectArg(0).record));
}
Result addXrecord(Call& call) {
    const RecordId made = addMember(call, call.text(0), "XRECORD", "AcDbXrecord");
    if (!call.drawing().record(made).find(280)) {
        call.drawing().appendTag(made, 280, std::int64_t{1});
    }
    return call.object(made);
}

struct ObjectType {
    std::string_view type;
    std::string_view subclass;
};

ObjectType objectType(const std::string& name) {
    static const std::map<std::string, ObjectType, std::less<>> known = {
        {foldCase("AcDbSortentsTable"), {"SORTENTSTABLE", "AcDbSortentsTable"}},
        {foldCase("AcDbDictionary"), {"DICTIONARY", "AcDbDictionary"}},
        {foldCase("AcDbXrecord"), {"XRECORD", "AcDbXrecord"}},
        {foldCase("AcDbPlaceHolder"), {"ACDBPLACEHOLDER", ""}},
    };
    const auto found = known.find(foldCase(name));
    if (found == known.end()) {
        failAutomation("Invalid input");
    }
    return found->second;
}

Result addAnObject(Call& call) {
    const ObjectType type = objectType(call.text(1));
    const RecordId made = addMember(call, call.text(0), type.type, type.subclass);
    Drawing& drawing = call.drawing();
    if (type.type == "SORTENTSTABLE" && drawing.record(made).size() <= 4) {
        const RecordId owner = drawing.findHandle(drawing.record(call.id()).handleOr(330, 0));
        drawing.appendTag(made, 330, formatHandle(owner == NoRecord ? 0 : drawing.handle(owner)));
    } else if (type.type == "DICTIONARY" && !drawing.record(made).find(281)) {
        drawing.appendTag(made, 281, std::int64_t{1});
    }
    return call.object(made);
}
Result addDictionary(Call& call) {
    return call.object(addMember(call, call.text(0), "DICTIONARY", "AcDbDictionary"));
}
Result removeMember(Call& call) {
    const RecordId id = memberNamed(call, call.text(0));
    const Value removed = call.object(id);
    for (const DictionaryEntry& entry : dictionaryEntries(call.drawing(), call.id())) {
        if (entry.handle == call.drawing().handle(id)) {
            call.drawing().removeTag(call.id(), entry.tag + 1);
            call.drawing().removeTag(call.id(), entry.tag);
            break;
        }
    }
    call.drawing().deleteRecord(id);
    call.changed();
    return removed;
}
Result renameMember(Call& call) {
    renameKey(call, call.id(), call.text(0), call.text(1));
    return {};
}

constexpr Property DictionaryProperty[] = {{"Name", Access::Custom, 0, 0, getName, putName}};
constexpr Method DictionaryMethod[] = {
    {"GetObject", 1, 1, getObject},   {"GetName", 1, 1, getKey},    {"AddXRecord", 1, 1, addXrecord},
    {"AddObject", 2, 2, addAnObject}, {"Add", 1, 1, addDictionary}, {"Remove", 1, 1, removeMember},
    {"Rename", 2, 2, renameMember},
};

Result getData(Call& call) {
    const Record r = call.record();
    std::vector<Value> types;
    std::vector<Value> values;
    std::size_t i = r.subclass("AcDbXrecord") + 1;
    while (i < r.size()) {
        std::size_t width = 1;
        const Value value = tagForModel(call.drawing(), r, i, width);
        if (r.code(i) != 280 || !types.empty()) {
            types.push_back(Value::integer(r.code(i)));
            values.push_back(value.isCons()    ? makeArrayVariant(VbDouble, value.items())
                             : value.isEname() ? makeVariant(VbString, Value::string(r.text(i)))
                                               : makeVariant(value));
        }
        i += width;
    }
    call.put(0, types.empty() ? Value() : makeArray(VbInteger, types));
    call.put(1, types.empty() ? Value() : makeArray(VbVariant, values));
    return {};
}
Result setData(Call& call) {
    const std::vector<Value> types = itemsOf(call.arg(0));
    const std::vector<Value> values = itemsOf(call.arg(1));
    if (types.size() != values.size()) {
        fail("ActiveX Server returned an error: Invalid argument");
    }
    Drawing& drawing = call.drawing();
    const std::size_t first = drawing.record(call.id()).subclass("AcDbXrecord") + 1;
    for (std::size_t i = drawing.record(call.id()).size(); i-- > first;) {
        if (i != first || drawing.record(call.id()).code(i) != 280) {
            drawing.removeTag(call.id(), i);
        }
    }
    for (std::size_t i = 0; i < types.size(); ++i) {
        appendFromModel(drawing, call.id(), integerOf(types[i]), values[i]);
    }
    call.changed();
    return {};
}

constexpr Property XrecordProperty[] = {
    {"Name", Access::Custom, 0, 0, getName, putName},
    {"TranslateIDs", Access::Bool, 280, 1},
};
constexpr Method XrecordMethod[] = {
    {"GetXRecordData", 2, 2, getData},
    {"SetXRecordData", 2, 2, setData},
};

Result appendItems(Call& call) {
    for (const Value& item : itemsOf(call.arg(0))) {
        const Object& member = objectOf(unwrapped(item));
        call.drawing().appendTag(call.id(), 340, formatHandle(call.drawing().handle(member.record)));
    }
    call.changed();
    return {};
}
Result removeItems(Call& call) {
    for (const Value& item : itemsOf(call.arg(0))) {
        const std::uint64_t handle = call.drawing().handle(objectOf(unwrapped(item)).record);
        for (std::size_t i = call.drawing().record(call.id()).size(); i-- > 1;) {
            const Record r = call.record();
            if (r.code(i) == 340 && r.handle(i) == handle) {
                call.drawing().removeTag(call.id(), i);
            }
        }
    }
    call.changed();
    return {};
}
Result nothing(Call&) {
    return {};
}

constexpr Method GroupMethod[] = {
    {"AppendItems", 1, 1, appendItems},
    {"RemoveItems", 1, 1, removeItems},
    {"Highlight", 1, 1, nothing},
};

std::vector<RecordId> drawOrder(Call& call) {
    return readDrawOrder(call.drawing(), call.id());
}

void writeOrder(Call& call, const std::vector<RecordId>& order) {
    writeDrawOrder(call.drawing(), call.id(), order);
    call.changed();
}

std::vector<RecordId> recordsArg(Call& call, std::size_t i) {
    std::vector<RecordId> ids;
    for (const Value& item : itemsOf(call.arg(i))) {
        ids.push_back(objectOf(unwrapped(item)).record);
    }
    return ids;
}

void move(Call& call, const std::vector<RecordId>& moved, RecordId target, bool above) {
    std::vector<RecordId> order = drawOrder(call);
    reorder(order, moved, target, above);
    writeOrder(call, order);
}
Result moveToTop(Call& call) {
    move(call, recordsArg(call, 0), NoRecord, true);
    return {};
}
Result moveToBottom(Call& call) {
    move(call, recordsArg(call, 0), NoRecord, false);
    return {};
}
Result moveAbove(Call& call) {
    move(call, recordsArg(call, 0), call.objectArg(1).record, true);
    return {};
}
Result moveBelow(Call& call) {
    move(call, recordsArg(call, 0), call.objectArg(1).record, false);
    return {};
}
Result swapOrder(Call& call) {
    std::vector<RecordId> order = drawOrder(call);
    const auto a = std::find(order.begin(), order.end(), call.objectArg(0).record);
    const auto b = std::find(order.begin(), order.end(), call.objectArg(1).record);
    if (a == order.end() || b == order.end()) {
        failAutomation("Invalid input");
    }
    std::iter_swap(a, b);
    writeOrder(call, order);
    return {};
}
Result fullOrder(Call& call) {
    std::vector<Value> all;
    for (const RecordId id : drawOrder(call)) {
        all.push_back(call.object(id));
    }
    call.put(0, makeArray(VbObject, all));
    return {};
}
Result setOrder(Call& call) {
    const std::vector<RecordId> wanted = recordsArg(call, 0);
    std::vector<RecordId> order = drawOrder(call);
    std::size_t next = 0;
    for (RecordId& id : order) {
        if (std::find(wanted.begin(), wanted.end(), id) != wanted.end()) {
            id = wanted[next++];
        }
    }
    writeOrder(call, order);
    return {};
}

constexpr Method SortentsMethod[] = {
    {"MoveToTop", 1, 1, moveToTop},           {"MoveToBottom", 1, 1, moveToBottom},
    {"MoveAbove", 2, 2, moveAbove},           {"MoveBelow", 2, 2, moveBelow},
    {"SwapOrder", 2, 2, swapOrder},           {"GetFullDrawOrder", 1, 2, fullOrder},
    {"SetRelativeDrawOrder", 1, 1, setOrder},
};

}  // namespace

Properties dictionaryProperties() {
    return DictionaryProperty;
}
Methods dictionaryMethods() {
    return DictionaryMethod;
}
Properties xrecordProperties() {
    return XrecordProperty;
}
Methods xrecordMethods() {
    return XrecordMethod;
}
Methods groupMethods() {
    return GroupMethod;
}
Methods sortentsMethods() {
    return SortentsMethod;
}

}  // namespace drafthost::activex
