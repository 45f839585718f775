// SPDX-License-Identifier: GPL-3.0-or-later
// The document, its database, and the application around them.

#include <filesystem>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/CopyObjects.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/activex/ModelState.h"
#include "drafthost/activex/RunCommand.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/automation/PickSet.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Purge.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/UndoLog.h"
#include "drafthost/drawing/View.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::activex {
namespace {

std::string variableText(const Call& call, const char* name) {
    const auto value = call.session().host.getVar(name);
    return value && value->isString() ? value->toString() : "";
}

template <const char* name>
Result collectionOf(Call& call) {
    const Class& c = *collectionClass(name);
    return call.self.database->own == nullptr ? singleObject(call.e, c) : makeObject(c, call.self.database);
}

Result space(Call& call, const char* name) {
    RecordId block = blockObject(call.drawing(), name);
    if (block == NoRecord && call.drawing().versionNumber() < 1012) {
        // R12 can do without blocks for the spaces; programs cannot do without an object.
        addBlock(call.drawing(), "$" + std::string(name).substr(1), {});
        block = blockObject(call.drawing(), name);
    }
    if (block == NoRecord) {
        failAutomation("Key not found");
    }
    return call.object(block);
}
Result modelSpace(Call& call) {
    return space(call, "*Model_Space");
}
Result paperSpace(Call& call) {
    return space(call, "*Paper_Space");
}

Result current(Call& call, Table table, const char* variable) {
    const RecordId id = findEntry(call.drawing(), table, variableText(call, variable));
    if (id == NoRecord) {
        failAutomation("Key not found");
    }
    return call.object(id);
}
void putCurrent(Call& call, const char* variable, const Value& value) {
    const Object& object = objectOf(unwrapped(value));
    checkUsable(object);
    if (!call.session().host.setVar(variable, Value::string(entryName(call.drawing(), object.record)))) {
        failAutomation("Invalid layer");
    }
}
Result activeLayer(Call& call) {
    return current(call, Table::Layer, "CLAYER");
}
void putActiveLayer(Call& call, const Value& value) {
    putCurrent(call, "CLAYER", value);
}
Result activeLinetype(Call& call) {
    return current(call, Table::Ltype, "CELTYPE");
}
void putActiveLinetype(Call& call, const Value& value) {
    putCurrent(call, "CELTYPE", value);
}
Result activeTextStyle(Call& call) {
    return current(call, Table::Style, "TEXTSTYLE");
}
void putActiveTextStyle(Call& call, const Value& value) {
    putCurrent(call, "TEXTSTYLE", value);
}
Result activeDimStyle(Call& call) {
    return current(call, Table::Dimstyle, "DIMSTYLE");
}
void putActiveDimStyle(Call& call, const Value& value) {
    const Object& object = objectOf(unwrapped(value));
    setHeader(call.drawing(), "$DIMSTYLE", 2, entryName(call.drawing(), object.record));
    call.changed();
}
Result activeLayout(Call& call) {
    for (const Layout& layout : layouts(call.drawing())) {
        if (foldCase(layout.name) == foldCase(variableText(call, "CTAB")) && layout.object != NoRecord) {
            return call.object(layout.object);
        }
    }
    failAutomation("Key not found");
}
void putActiveLayout(Call& call, const Value& value) {
    const Object& object = objectOf(unwrapped(value));
    for (const Layout& layout : layouts(call.drawing())) {
        if (layout.object == object.record) {
            call.session().host.setVar("CTAB", Value::string(layout.name));
            return;
        }
    }
    failMismatch();
}
Result activeSpace(Call& call) {
    return Result::integer(modelIsCurrent(call.drawing()) ? 1 : 0);
}
void putActiveSpace(Call& call, const Value& value) {
    call.session().host.setVar("TILEMODE", Value::integer(integerOf(value) == 1 ? 1 : 0));
}
Result inModelViewport(Call& call) {
    return Result::boolean(modelSpaceIsCurrent(call.drawing()));
}
void putModelViewport(Call& call, const Value& value) {
    if (modelIsCurrent(call.drawing())) {
        failAutomation("Not applicable");
    }
    mustRun(call, {booleanOf(value) ? "_.MSPACE" : "_.PSPACE"});
}

Result name(Call& call) {
    return Result::text(variableText(call, "DWGNAME"));
}
Result path(Call& call) {
    const auto titled = call.session().host.getVar("DWGTITLED");
    if (titled && titled->isInt() && titled->toInt() == 0) {
        return Result::text("");
    }
    std::string folder = variableText(call, "DWGPREFIX");
    while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) {
        folder.pop_back();
    }
    return Result::text(folder);
}
Result fullName(Call& call) {
    const std::string folder = path(call).value.toString();
    return Result::text(folder.empty() ? ""
                                       : (folder == "/" ? "" : folder) + "/" + variableText(call, "DWGNAME"));
}
Result isSaved(Call& call) {
    const auto modified = call.session().host.getVar("DBMOD");
    return Result::boolean(modified && modified->isInt() && modified->toInt() == 0);
}
Result isReadOnly(Call& call) {
    const auto value = call.session().host.getVar("WRITESTAT");
    return Result::boolean(value && value->isInt() && value->toInt() == 0);
}
Result isTrue(Call&) {
    return Result::boolean(true);
}
Result zero(Call&) {
    return Result::integer(0);
}
Result database(Call& call) {
    return singleObject(call.e, databaseClass());
}
Result utility(Call& call) {
    return singleObject(call.e, utilityClass());
}
Result application(Call& call) {
    return singleObject(call.e, applicationClass());
}
Result selectionSets(Call& call) {
    return singleObject(call.e, selectionSetsClass());
}
Result activeSelection(Call& call) {
    return objectOf(singleObject(call.e, selectionSetsClass())).cls->named(call, "ACTIVE");
}
Result pickfirst(Call& call) {
    return objectOf(singleObject(call.e, selectionSetsClass())).cls->named(call, "PICKFIRST");
}
Result summary(Call& call) {
    return call.self.database->own == nullptr ? singleObject(call.e, summaryClass())
                                              : makeObject(summaryClass(), call.self.database);
}
Result preferences(Call& call) {
    const Value made = singleObject(call.e, preferencesClass());
    return made;
}
Result limits(Call& call) {
    const Point low = headerPoint(call.drawing(), "$LIMMIN", {});
    const Point high = headerPoint(call.drawing(), "$LIMMAX", {12, 9, 0});
    return Result::reals({low.x, low.y, high.x, high.y});
}
void putLimits(Call& call, const Value& value) {
    const std::vector<double> p = numbersOf(value);
    if (p.size() != 4) {
        failMismatch();
    }
    setHeaderPoint(call.drawing(), "$LIMMIN", {p[0], p[1], 0}, 2);
    setHeaderPoint(call.drawing(), "$LIMMAX", {p[2], p[3], 0}, 2);
    call.changed();
}

Result regen(Call& call) {
    updateExtents(call.drawing());
    return {};
}
Result nothing(Call&) {
    return {};
}
/// What lies between the two is undone in one step.
Result startUndoMark(Call& call) {
    call.drawing().undo().beginGroup();
    return {};
}
Result endUndoMark(Call& call) {
    call.drawing().undo().endGroup();
    return {};
}
Result purgeEverything(Call& call) {
    purgeAll(call.drawing());
    call.changed(true);
    return {};
}
Result audit(Call& call) {
    mustRun(call, {"_.AUDIT", call.boolean(0) ? "_Y" : "_N"});
    return {};
}
Result save(Call& call) {
    mustRun(call, {"_.QSAVE"});
    return {};
}
Result saveAs(Call& call) {
    std::string file = call.text(0);
    if (lisp::lowerCase(file).ends_with(".dwg")) {
        failAutomation("This host writes DXF drawings: " + file);
    }
    mustRun(call, {"_.SAVEAS", "_DXF", "16", file});
    return {};
}
Result sendCommand(Call& call) {
    // As typed: what is sent waits until the program has ended.
    std::vector<Value> values;
    std::string word;
    for (const char c : call.text(0)) {
        if (c == ' ' || c == '\n' || c == '\r') {
            values.push_back(Value::string(word));
            word.clear();
        } else {
            word += c;
        }
    }
    if (!word.empty()) {
        values.push_back(Value::string(word));
    }
    if (call.session().host.command(values) != automation::CommandStatus::Done) {
        failAutomation("Description was not provided.");
    }
    call.e.checkDocument();
    return {};
}
Result getVariable(Call& call) {
    const auto value = call.session().host.getVar(call.text(0));
    if (!value) {
        failAutomation("Error getting system variable");
    }
    return {Shape::Variant, *value};
}
Result setVariable(Call& call) {
    const Value& given = unwrapped(call.arg(1));
    Value value = given;
    if (arrayOf(given) != nullptr) {
        const std::vector<double> p = numbersOf(given);
        value = p.size() == 2 ? Value::point2d(p[0], p[1]) : Value::point(pointOf(given));
    }
    if (!call.session().host.setVar(call.text(0), value)) {
        failAutomation("Error setting system variable");
    }
    call.e.checkDocument();
    return {};
}
Result handleToObject(Call& call) {
    const RecordId id = call.drawing().findHandle(parseHandle(call.text(0)));
    if (id == NoRecord) {
        failAutomation("Unknown handle");
    }
    return call.object(id);
}
Result idToObject(Call& call) {
    constexpr std::int64_t First = 0x10000000;
    const std::int64_t number = call.integer(0) - First;
    const RecordId id = number > 0 ? call.drawing().findHandle(static_cast<std::uint64_t>(number)) : NoRecord;
    if (id == NoRecord) {
        failAutomation("Unknown object ID");
    }
    return call.object(id);
}
Result closeDocument(Call&) {
    failAutomation("The drawing is busy: the program runs in it.");
}

Result plotOfDocument(Call& call) {
    return singleObject(call.e, plotClass());
}

constexpr char Layers[] = "LAYERS", Linetypes[] = "LINETYPES", TextStyles[] = "TEXTSTYLES",
               DimStyles[] = "DIMSTYLES", Views[] = "VIEWS", Viewports[] = "VIEWPORTS",
               Applications[] = "REGISTEREDAPPLICATIONS", Ucss[] = "USERCOORDINATESYSTEMS",
               BlocksName[] = "BLOCKS", LayoutsName[] = "LAYOUTS", Groups[] = "GROUPS",
               PlotSetups[] = "PLOTCONFIGURATIONS", Materials[] = "MATERIALS",
               DictionariesName[] = "DICTIONARIES";

constexpr Property Shared[] = {
    {"Layers", Access::Custom, 0, 0, collectionOf<Layers>},
    {"Linetypes", Access::Custom, 0, 0, collectionOf<Linetypes>},
    {"TextStyles", Access::Custom, 0, 0, collectionOf<TextStyles>},
    {"DimStyles", Access::Custom, 0, 0, collectionOf<DimStyles>},
    {"Views", Access::Custom, 0, 0, collectionOf<Views>},
    {"Viewports", Access::Custom, 0, 0, collectionOf<Viewports>},
    {"RegisteredApplications", Access::Custom, 0, 0, collectionOf<Applications>},
    {"UserCoordinateSystems", Access::Custom, 0, 0, collectionOf<Ucss>},
    {"Blocks", Access::Custom, 0, 0, collectionOf<BlocksName>},
    {"Layouts", Access::Custom, 0, 0, collectionOf<LayoutsName>},
    {"Groups", Access::Custom, 0, 0, collectionOf<Groups>},
    {"PlotConfigurations", Access::Custom, 0, 0, collectionOf<PlotSetups>},
    {"Materials", Access::Custom, 0, 0, collectionOf<Materials>},
    {"Dictionaries", Access::Custom, 0, 0, collectionOf<DictionariesName>},
    {"ModelSpace", Access::Custom, 0, 0, modelSpace},
    {"PaperSpace", Access::Custom, 0, 0, paperSpace},
    {"SummaryInfo", Access::Custom, 0, 0, summary},
    {"Limits", Access::Custom, 0, 0, limits, putLimits},
};
constexpr Method SharedMethods[] = {
    {"HandleToObject", 1, 1, handleToObject},
    {"ObjectIDToObject", 1, 1, idToObject},
    {"CopyObjects", 1, 3, copyObjects},
};
constexpr Property DocumentProperty[] = {
    {"Name", Access::Custom, 0, 0, name},
    {"FullName", Access::Custom, 0, 0, fullName},
    {"Path", Access::Custom, 0, 0, path},
    {"Plot", Access::Custom, 0, 0, plotOfDocument},
    {"WindowTitle", Access::Custom, 0, 0, name},
    {"Active", Access::Custom, 0, 0, isTrue},
    {"Saved", Access::Custom, 0, 0, isSaved},
    {"ReadOnly", Access::Custom, 0, 0, isReadOnly},
    {"HWND", Access::Custom, 0, 0, zero},
    {"ActiveLayer", Access::Custom, 0, 0, activeLayer, putActiveLayer},
    {"ActiveLinetype", Access::Custom, 0, 0, activeLinetype, putActiveLinetype},
    {"ActiveTextStyle", Access::Custom, 0, 0, activeTextStyle, putActiveTextStyle},
    {"ActiveDimStyle", Access::Custom, 0, 0, activeDimStyle, putActiveDimStyle},
    {"ActiveLayout", Access::Custom, 0, 0, activeLayout, putActiveLayout},
    {"ActiveSpace", Access::Custom, 0, 0, activeSpace, putActiveSpace},
    {"MSpace", Access::Custom, 0, 0, inModelViewport, putModelViewport},
    {"ActiveSelectionSet", Access::Custom, 0, 0, activeSelection},
    {"PickfirstSelectionSet", Access::Custom, 0, 0, pickfirst},
    {"SelectionSets", Access::Custom, 0, 0, selectionSets},
    {"Database", Access::Custom, 0, 0, database},
    {"Utility", Access::Custom, 0, 0, utility},
    {"Application", Access::Custom, 0, 0, application},
    {"Preferences", Access::Custom, 0, 0, preferences},
};
constexpr Method DocumentMethod[] = {
    {"StartUndoMark", 0, 0, startUndoMark},
    {"EndUndoMark", 0, 0, endUndoMark},
    {"Regen", 1, 1, regen},
    {"PurgeAll", 0, 0, purgeEverything},
    {"AuditInfo", 1, 1, audit},
    {"Save", 0, 0, save},
    {"SaveAs", 1, 3, saveAs},
    {"Close", 0, 2, closeDocument},
    {"Activate", 0, 0, nothing},
    {"SendCommand", 1, 1, sendCommand},
    {"PostCommand", 1, 1, sendCommand},
    {"GetVariable", 1, 1, getVariable},
    {"SetVariable", 2, 2, setVariable},
    {"LoadShapeFile", 1, 1, nothing},
};

}  // namespace

const Class& documentClass() {
    static const Class kClass{
        "IAcadDocument", "", {DocumentProperty, Shared}, {DocumentMethod, SharedMethods}};
    return kClass;
}

const Class& databaseClass() {
    static constexpr Property Own[] = {{"Preferences", Access::Custom, 0, 0, preferences},
                                       {"Application", Access::Custom, 0, 0, application}};
    static const Class kClass{"IAcadDatabase", "", {Shared, Own}, {SharedMethods}};
    return kClass;
}

Properties databaseProperties() {
    return Shared;
}
Methods databaseMethods() {
    return SharedMethods;
}

}  // namespace drafthost::activex
