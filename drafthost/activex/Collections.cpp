// SPDX-License-Identifier: GPL-3.0-or-later
// The collections of a drawing: its tables, its blocks and layouts, and the dictionaries that it names.

#include <algorithm>
#include <map>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/ExtensionData.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/EntityGroups.h"
#include "drafthost/drawing/NewLayout.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

std::vector<Value> entriesOf(Call& call, Table table) {
    std::vector<Value> all;
    for (const RecordId id : tableEntries(call.drawing(), table)) {
        all.push_back(call.object(id));
    }
    return all;
}

template <Table table>
std::vector<Value> tableMembers(Call& call) {
    return entriesOf(call, table);
}

template <Table table>
Value tableMember(Call& call, const std::string& name) {
    return call.object(findEntry(call.drawing(), table, name));
}

void checkName(const std::string& name) {
    if (name.empty() || name.find_first_of("<>/\\\":;?*|,=`") != std::string::npos) {
        failAutomation("Invalid input");
    }
}

template <Table table>
Result addEntryNamed(Call& call) {
    const std::string& name = call.text(0);
    RecordId id = findEntry(call.drawing(), table, name);
    if (id == NoRecord) {
        checkName(name);
        id = addEntry(call.drawing(), table, name);
        call.changed(true);
    }
    return call.object(id);
}

Result addUcs(Call& call) {
    const std::string& name = call.text(3);
    RecordId id = findEntry(call.drawing(), Table::Ucs, name);
    if (id == NoRecord) {
        checkName(name);
        id = addEntry(call.drawing(), Table::Ucs, name);
    }
    const Point origin = call.point(0);
    setGroupPoint(call.drawing(), id, 10, origin);
    setGroupPoint(call.drawing(), id, 11, normalised(call.point(1) - origin));
    setGroupPoint(call.drawing(), id, 12, normalised(call.point(2) - origin));
    call.changed(true);
    return call.object(id);
}

// Model and paper space come first, as in the table of a drawing.
std::vector<Value> blocksOf(Call& call) {
    std::vector<Value> all;
    for (const Block& block : blocks(call.drawing())) {
        all.push_back(call.object(blockObject(call.drawing(), block.name)));
    }
    return all;
}
Value blockNamed(Call& call, const std::string& name) {
    return call.object(findBlock(call.drawing(), name) == nullptr ? NoRecord
                                                                  : blockObject(call.drawing(), name));
}
Result addBlockNamed(Call& call) {
    std::string name = call.text(1);
    const Point base = call.point(0);
    if (name == "*U") {
        name = anonymousName(call.drawing(), 'U');
    } else if (findBlock(call.drawing(), name) == nullptr) {
        checkName(name);
    }
    if (findBlock(call.drawing(), name) == nullptr) {
        if (!addBlock(call.drawing(), name, base)) {
            failAutomation("The drawing has no section for blocks.");
        }
        call.changed(true);
    }
    return call.object(blockObject(call.drawing(), name));
}

std::vector<Value> layoutsOf(Call& call) {
    std::vector<std::pair<std::string, Value>> named;
    for (const Layout& layout : layouts(call.drawing())) {
        if (layout.object != NoRecord) {
            named.emplace_back(foldCase(layout.name), call.object(layout.object));
        }
    }
    // A dictionary keeps its entries by name.
    std::stable_sort(named.begin(), named.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<Value> all;
    all.reserve(named.size());
    for (auto& [name, value] : named) {
        all.push_back(std::move(value));
    }
    return all;
}
Value layoutNamed(Call& call, const std::string& name) {
    for (const Layout& layout : layouts(call.drawing())) {
        if (foldCase(layout.name) == foldCase(name) && layout.object != NoRecord) {
            return call.object(layout.object);
        }
    }
    return {};
}
Result addLayout(Call& call) {
    const std::string& name = call.text(0);
    checkName(name);
    if (layoutNamed(call, name)) {
        failAutomation("Duplicate key");
    }
    const RecordId made = makeLayout(call.drawing(), name);
    if (made == NoRecord) {
        failAutomation("The drawing has no dictionary for layouts.");
    }
    call.changed(true);
    return call.object(made);
}

RecordId namedDictionary(const Call& call, const char* name) {
    return findInDictionary(call.drawing(), rootDictionary(call.drawing()), name);
}

std::vector<Value> membersOf(Call& call, RecordId dictionary) {
    std::vector<Value> all;
    if (dictionary == NoRecord) {
        return all;
    }
    for (const DictionaryEntry& entry : dictionaryEntries(call.drawing(), dictionary)) {
        if (const RecordId id = call.drawing().findHandle(entry.handle); id != NoRecord) {
            all.push_back(call.object(id));
        }
    }
    return all;
}

std::vector<Value> groupsOf(Call& call) {
    return membersOf(call, namedDictionary(call, "ACAD_GROUP"));
}
Value groupNamed(Call& call, const std::string& name) {
    return call.object(findInDictionary(call.drawing(), namedDictionary(call, "ACAD_GROUP"), name));
}
Result addGroup(Call& call) {
    const std::string& name = call.text(0);
    if (const Value known = groupNamed(call, name)) {
        return known;
    }
    checkName(name);
    const RecordId made = makeGroup(call.drawing(), name, "");
    if (made == NoRecord) {
        failAutomation("Not applicable");
    }
    call.changed();
    return call.object(made);
}

std::vector<Value> plotSetupsOf(Call& call) {
    return membersOf(call, namedDictionary(call, "ACAD_PLOTSETTINGS"));
}
Value plotSetupNamed(Call& call, const std::string& name) {
    return call.object(findInDictionary(call.drawing(), namedDictionary(call, "ACAD_PLOTSETTINGS"), name));
}
std::vector<Value> materialsOf(Call& call) {
    return membersOf(call, namedDictionary(call, "ACAD_MATERIAL"));
}
Value materialNamed(Call& call, const std::string& name) {
    return call.object(findInDictionary(call.drawing(), namedDictionary(call, "ACAD_MATERIAL"), name));
}

std::vector<Value> dictionariesOf(Call& call) {
    const RecordId root = rootDictionary(call.drawing());
    return membersOf(call, root);
}
Value dictionaryNamed(Call& call, const std::string& name) {
    return call.object(findInDictionary(call.drawing(), rootDictionary(call.drawing()), name));
}
Result addDictionary(Call& call) {
    const std::string& name = call.text(0);
    if (const Value known = dictionaryNamed(call, name)) {
        return known;
    }
    const RecordId root = rootDictionary(call.drawing());
    const RecordId made =
        root == NoRecord ? NoRecord : addObject(call.drawing(), "DICTIONARY", "AcDbDictionary", root);
    if (made == NoRecord) {
        failAutomation("Not applicable");
    }
    addDictionaryEntry(call.drawing(), root, name, made);
    call.changed();
    return call.object(made);
}

Result loadLinetype(Call& call) {
    // What is there already is no failure for those who load to be sure.
    if (findEntry(call.drawing(), Table::Ltype, call.text(0)) != NoRecord) {
        failAutomation("Duplicate key");
    }
    failAutomation("Key not found");
}

/// The members of a collection are asked for their names.
Value memberByName(Call& call, const std::string& name) {
    static const lisp::Symbol* const kName = lisp::Symbol::intern("NAME");
    for (const Value& member : call.self.cls->members(call)) {
        Object& object = objectOf(member);
        if (const Property* property = object.cls->property(kName)) {
            Call ask{call.e, object, {}};
            const Value held = getProperty(ask, *property).value;
            if (held.isString() && foldCase(held.toString()) == foldCase(name)) {
                return member;
            }
        }
    }
    return {};
}

Result count(Call& call) {
    return Result::integer(static_cast<std::int64_t>(call.self.cls->members(call).size()));
}

Result item(Call& call) {
    const Value& key = unwrapped(call.arg(0));
    if (key.isString()) {
        const Value found = call.self.cls->named != nullptr ? call.self.cls->named(call, key.toString())
                                                            : memberByName(call, key.toString());
        if (!found) {
            failAutomation("Key not found");
        }
        return found;
    }
    const int index = integerOf(key);
    const std::vector<Value> all = call.self.cls->members(call);
    if (index < 0 || static_cast<std::size_t>(index) >= all.size()) {
        failAutomation("Invalid index");
    }
    return all[static_cast<std::size_t>(index)];
}

Result neverErased(Call&) {
    failAutomation("Cannot be erased by caller");
}

Result getDocument(Call& call) {
    return singleObject(call.e, documentClass());
}
Result getApplication(Call& call) {
    return singleObject(call.e, applicationClass());
}
Result objectName(Call& call) {
    return Result::text(call.self.cls->objectName);
}

constexpr Property CollectionProperty[] = {{"Count", Access::Custom, 0, 0, count}};
constexpr Property OwnCollection[] = {
    {"Document", Access::Custom, 0, 0, getDocument},
    {"Application", Access::Custom, 0, 0, getApplication},
    {"ObjectName", Access::Custom, 0, 0, objectName},
};
constexpr Method CollectionMethod[] = {{"Item", 1, 1, item}};
constexpr Method NeverErased[] = {{"Delete", 0, 0, neverErased}};

using Members = std::vector<Value> (*)(Call&);
using Named = Value (*)(Call&, const std::string&);

Class collection(const char* interface, const char* objectName, Members members, Named named,
                 Methods own = {}) {
    Class c{interface, objectName, {CollectionProperty, OwnCollection}, {own, CollectionMethod, NeverErased}};
    c.members = members;
    c.named = named;
    return c;
}

template <Table table>
Class tableCollection(const char* interface, const char* objectName) {
    static constexpr Method Add[] = {{"Add", 1, 1, addEntryNamed<table>}};
    return collection(interface, objectName, tableMembers<table>, tableMember<table>, Add);
}

std::map<std::string, Class, std::less<>> makeCollections() {
    static constexpr Method AddUcs[] = {{"Add", 4, 4, addUcs}};
    static constexpr Method AddBlock[] = {{"Add", 2, 2, addBlockNamed}};
    static constexpr Method AddLayout[] = {{"Add", 1, 1, addLayout}};
    static constexpr Method AddGroup[] = {{"Add", 1, 1, addGroup}};
    static constexpr Method AddDictionary[] = {{"Add", 1, 1, addDictionary}};
    static constexpr Method Load[] = {{"Load", 2, 2, loadLinetype},
                                      {"Add", 1, 1, addEntryNamed<Table::Ltype>}};
    std::map<std::string, Class, std::less<>> m;
    m.emplace("LAYERS", tableCollection<Table::Layer>("IAcadLayers", "AcDbLayerTable"));
    m.emplace("LINETYPES", collection("IAcadLineTypes", "AcDbLinetypeTable", tableMembers<Table::Ltype>,
                                      tableMember<Table::Ltype>, Load));
    m.emplace("TEXTSTYLES", tableCollection<Table::Style>("IAcadTextStyles", "AcDbTextStyleTable"));
    m.emplace("DIMSTYLES", tableCollection<Table::Dimstyle>("IAcadDimStyles", "AcDbDimStyleTable"));
    m.emplace("VIEWS", tableCollection<Table::View>("IAcadViews", "AcDbViewTable"));
    m.emplace("VIEWPORTS", tableCollection<Table::Vport>("IAcadViewports", "AcDbViewportTable"));
    m.emplace("REGISTEREDAPPLICATIONS",
              tableCollection<Table::Appid>("IAcadRegisteredApplications", "AcDbRegAppTable"));
    m.emplace("USERCOORDINATESYSTEMS", collection("IAcadUCSs", "AcDbUCSTable", tableMembers<Table::Ucs>,
                                                  tableMember<Table::Ucs>, AddUcs));
    m.emplace("BLOCKS", collection("IAcadBlocks", "AcDbBlockTable", blocksOf, blockNamed, AddBlock));
    m.emplace("LAYOUTS", collection("IAcadLayouts", "AcDbDictionary", layoutsOf, layoutNamed, AddLayout));
    m.emplace("GROUPS", collection("IAcadGroups", "AcDbDictionary", groupsOf, groupNamed, AddGroup));
    m.emplace("PLOTCONFIGURATIONS",
              collection("IAcadPlotConfigurations", "AcDbDictionary", plotSetupsOf, plotSetupNamed));
    m.emplace("MATERIALS", collection("IAcadMaterials", "AcDbDictionary", materialsOf, materialNamed));
    m.emplace("DICTIONARIES", collection("IAcadDictionaries", "AcDbDictionary", dictionariesOf,
                                         dictionaryNamed, AddDictionary));
    return m;
}

}  // namespace

const Class* collectionClass(std::string_view name) {
    static const auto kCollections = makeCollections();
    const auto found = kCollections.find(name);
    return found == kCollections.end() ? nullptr : &found->second;
}

Properties collectionProperties() {
    return CollectionProperty;
}
Methods collectionMethods() {
    return CollectionMethod;
}

}  // namespace drafthost::activex
