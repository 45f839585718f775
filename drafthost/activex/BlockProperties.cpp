// SPDX-License-Identifier: GPL-3.0-or-later
// Definitions of blocks, and layouts with their page setups.

#include <algorithm>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/ExtensionData.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/NewLayout.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Xref.h"

namespace drafthost::activex {

RecordId blockObject(const Drawing& drawing, std::string_view name) {
    const Block* block = findBlock(drawing, name);
    if (block == nullptr && name.starts_with('*')) {
        // R12 has the two spaces under names of its own.
        block = findBlock(drawing, "$" + std::string(name.substr(1)));
    }
    if (block == nullptr) {
        return findEntry(drawing, Table::BlockRecord, name);
    }
    return block->blockRecord != NoRecord ? block->blockRecord : block->begin;
}

const Block* blockOf(const Drawing& drawing, RecordId object) {
    return findBlock(drawing, drawing.record(object).textOr(2, ""));
}

std::vector<Value> blockMembers(Call& call) {
    std::vector<Value> all;
    const Drawing& drawing = call.drawing();
    if (const Block* block = blockOf(drawing, call.id())) {
        for (const RecordId id : entitiesOf(drawing, *block)) {
            all.push_back(call.object(id));
        }
    }
    return all;
}

namespace {

constexpr std::int64_t External = 4 | 8;

Record begin(const Call& call) {
    const Block* block = blockOf(call.drawing(), call.id());
    if (block == nullptr) {
        failAutomation("Key not found");
    }
    return call.drawing().record(block->begin);
}

// Programs know the spaces of an R12 drawing by the names that they have had since.
std::string modelName(const Record& record) {
    const std::string name = record.textOr(2, "");
    return foldCase(name) == foldCase("$Model_Space")   ? "*Model_Space"
           : foldCase(name) == foldCase("$Paper_Space") ? "*Paper_Space"
                                                        : name;
}

const Layout* layoutOfBlock(const Call& call) {
    const std::string name = foldCase(modelName(call.record()));
    for (const Layout& layout : layouts(call.drawing())) {
        if (foldCase(layout.blockName) == name) {
            return &layout;
        }
    }
    return nullptr;
}

Result getName(Call& call) {
    return Result::text(modelName(call.record()));
}
void putName(Call& call, const Value& value) {
    Drawing& drawing = call.drawing();
    const std::string old = entryName(drawing, call.id());
    const std::string& name = textOf(value);
    if (layoutOfBlock(call) != nullptr || old.find('|') != std::string::npos ||
        name.find_first_of("<>/\\\":;?*|,=`") != std::string::npos || name.empty()) {
        failAutomation("Invalid input");
    }
    if (foldCase(name) != foldCase(old) && findBlock(drawing, name) != nullptr) {
        failAutomation("Duplicate key");
    }
    renameEntry(drawing, Table::BlockRecord, call.id(), name);
    call.changed(true);
}
Result origin(Call& call) {
    return Result::point(begin(call).pointOr(10, {}));
}
void putOrigin(Call& call, const Value& value) {
    call.drawing().putPoint(begin(call).id(), 10, pointOf(value), true, {70});
    call.changed(true);
}
Result isLayout(Call& call) {
    return Result::boolean(layoutOfBlock(call) != nullptr);
}
Result isXref(Call& call) {
    const Block* block = blockOf(call.drawing(), call.id());
    return Result::boolean(block != nullptr &&
                           (call.drawing().record(block->begin).integerOr(70, 0) & External) != 0);
}
Result isDynamic(Call& call) {
    const RecordId dictionary = extensionDictionary(call.drawing(), call.id());
    return Result::boolean(dictionary != NoRecord &&
                           findInDictionary(call.drawing(), dictionary, "ACAD_ENHANCEDBLOCK") != NoRecord);
}
Result getLayout(Call& call) {
    const Layout* layout = layoutOfBlock(call);
    if (layout == nullptr || layout->object == NoRecord) {
        failAutomation("Not applicable");
    }
    return call.object(layout->object);
}
Result path(Call& call) {
    return Result::text(begin(call).textOr(1, ""));
}
void putPath(Call& call, const Value& value) {
    if ((begin(call).integerOr(70, 0) & External) == 0) {
        failAutomation("Not applicable");
    }
    call.drawing().put(begin(call).id(), 1, textOf(value), {3});
    call.changed(true);
}
Result comments(Call& call) {
    return Result::text(begin(call).textOr(4, ""));
}
void putComments(Call& call, const Value& value) {
    call.drawing().put(begin(call).id(), 4, textOf(value), {1});
    call.changed(true);
}
/// A reference that cannot be resolved has no drawing behind it.
Result xrefDatabase(Call&) {
    return Value();
}

Xref xrefOf(Call& call) {
    const RecordId block = begin(call).id();
    for (const Xref& xref : xrefs(call.drawing())) {
        if (xref.block == block) {
            return xref;
        }
    }
    failAutomation("Not applicable");
}
std::string xrefFileOf(Call& call, const Xref& xref) {
    const auto folder = call.session().host.getVar("DWGPREFIX");
    std::string file = xrefFile(xref.path, folder && folder->isString() ? folder->toString() : "");
    if (file.empty()) {
        failAutomation("File not found");
    }
    return file;
}
Result detach(Call& call) {
    detachXref(call.drawing(), xrefOf(call).name);
    call.changed(true);
    return {};
}
Result unload(Call& call) {
    setXrefLoaded(call.drawing(), xrefOf(call), false);
    call.changed(true);
    return {};
}
Result reload(Call& call) {
    const Xref xref = xrefOf(call);
    xrefFileOf(call, xref);
    setXrefLoaded(call.drawing(), xref, true);
    call.changed(true);
    return {};
}
Result bind(Call& call) {
    const Xref xref = xrefOf(call);
    std::string error;
    if (!bindXref(call.drawing(), xref.name, xrefFileOf(call, xref), booleanOf(call.arg(0)), error)) {
        failAutomation(error);
    }
    call.changed(true);
    return {};
}

constexpr Property BlockProperty[] = {
    {"Name", Access::Custom, 2, 0, getName, putName},
    {"Origin", Access::Custom, 10, 0, origin, putOrigin},
    {"IsLayout", Access::Custom, 0, 0, isLayout},
    {"IsXRef", Access::Custom, 0, 0, isXref},
    {"IsDynamicBlock", Access::Custom, 0, 0, isDynamic},
    {"Layout", Access::Custom, 0, 0, getLayout},
    {"Path", Access::Custom, 0, 0, path, putPath},
    {"Comments", Access::Custom, 0, 0, comments, putComments},
    {"Explodable", Access::Bool, 280, 1},
    {"BlockScaling", Access::Integer, 281, 0},
    {"Units", Access::Integer, 70, 0},
    {"XRefDatabase", Access::Custom, 0, 0, xrefDatabase},
};
constexpr Method BlockMethods[] = {
    {"Detach", 0, 0, detach},
    {"Unload", 0, 0, unload},
    {"Reload", 0, 0, reload},
    {"Bind", 1, 1, bind},
};

constexpr const char* LayoutPart = "AcDbLayout";

Result layoutName(Call& call) {
    const Record r = call.record();
    const auto i = groupTag(r, 1, LayoutPart);
    return Result::text(i ? r.text(*i) : "");
}
bool isModel(const Call& call) {
    for (const Layout& layout : layouts(call.drawing())) {
        if (layout.object == call.self.record) {
            return layout.model;
        }
    }
    return false;
}
void putLayoutName(Call& call, const Value& value) {
    Drawing& drawing = call.drawing();
    const std::string& name = textOf(value);
    if (isModel(call) || name.empty() || name.find_first_of("<>/\\\":;?*|,=`") != std::string::npos) {
        failAutomation("Invalid input");
    }
    for (const Layout& layout : layouts(drawing)) {
        if (layout.object != call.id() && foldCase(layout.name) == foldCase(name)) {
            failAutomation("Duplicate key");
        }
    }
    renameLayout(drawing, call.id(), name);
    call.changed();
}
Result layoutBlock(Call& call) {
    for (const Layout& layout : layouts(call.drawing())) {
        if (layout.object == call.id() && layout.blockRecord != NoRecord) {
            return call.object(layout.blockRecord);
        }
    }
    failAutomation("Key not found");
}
Result modelType(Call& call) {
    return Result::boolean(isModel(call));
}

constexpr const char* Setup = "AcDbPlotSettings";

Result plotOrigin(Call& call) {
    return Result::reals({groupReal(call.record(), 46, 0, Setup), groupReal(call.record(), 47, 0, Setup)});
}
void putPlotOrigin(Call& call, const Value& value) {
    const std::vector<double> p = numbersOf(value);
    if (p.size() < 2) {
        failMismatch();
    }
    setGroup(call.drawing(), call.id(), 46, p[0], Setup);
    setGroup(call.drawing(), call.id(), 47, p[1], Setup);
    call.changed();
}
void putDevice(Call& call, const Value& value) {
    setGroup(call.drawing(), call.id(), 2, textOf(value), Setup);
    call.changed();
}
Result setupName(Call& call) {
    const auto i = groupTag(call.record(), 1, Setup);
    return Result::text(i ? call.record().text(*i) : "");
}
void putSetupName(Call& call, const Value& value) {
    setGroup(call.drawing(), call.id(), 1, textOf(value), Setup);
    call.changed();
}

Result setReals(Call& call, std::initializer_list<int> codes, const std::vector<double>& values) {
    std::size_t i = 0;
    for (const int code : codes) {
        setGroup(call.drawing(), call.id(), code, values.at(i++), Setup);
    }
    call.changed();
    return {};
}
Result setCustomScale(Call& call) {
    return setReals(call, {142, 143}, {call.real(0), call.real(1)});
}
Result getCustomScale(Call& call) {
    call.put(0, Value::real(groupReal(call.record(), 142, 1, Setup)));
    call.put(1, Value::real(groupReal(call.record(), 143, 1, Setup)));
    return {};
}
Result setWindow(Call& call) {
    const std::vector<double> low = numbersOf(call.arg(0));
    const std::vector<double> high = numbersOf(call.arg(1));
    if (low.size() < 2 || high.size() < 2) {
        failMismatch();
    }
    return setReals(call, {48, 49, 140, 141}, {low[0], low[1], high[0], high[1]});
}
Value pair(const Call& call, int first, int second) {
    return makeArray(VbDouble, {Value::real(groupReal(call.record(), first, 0, Setup)),
                                Value::real(groupReal(call.record(), second, 0, Setup))});
}
Result getWindow(Call& call) {
    call.put(0, pair(call, 48, 49));
    call.put(1, pair(call, 140, 141));
    return {};
}
Result getPaperSize(Call& call) {
    call.put(0, Value::real(groupReal(call.record(), 44, 0, Setup)));
    call.put(1, Value::real(groupReal(call.record(), 45, 0, Setup)));
    return {};
}
Result getMargins(Call& call) {
    call.put(0, pair(call, 40, 41));
    call.put(1, pair(call, 42, 43));
    return {};
}
Result refresh(Call&) {
    return {};
}
/// This host has no plotters.
Result devices(Call&) {
    return Result::strings({"None"});
}
Result noNames(Call&) {
    return Result::strings({});
}
/// The page setup of another layout or of a saved setup.
Result copySetup(Call& call) {
    const Object& other = call.objectArg(0);
    const Record source = other.database->drawing->record(other.record);
    Drawing& drawing = call.drawing();
    const std::size_t from = source.subclass(Setup);
    if (from == source.size()) {
        failAutomation("Not applicable");
    }
    std::size_t at = drawing.record(call.id()).subclass(Setup) + 1;
    while (at < drawing.record(call.id()).xdata() && drawing.record(call.id()).code(at) != 100) {
        drawing.removeTag(call.id(), at);
    }
    for (std::size_t i = from + 1; i < source.xdata() && source.code(i) != 100; ++i) {
        drawing.insertTag(call.id(), at++, source.code(i), source.value(i));
    }
    call.changed();
    return {};
}

constexpr Property LayoutProperty[] = {
    {"Name", Access::Custom, 1, 0, layoutName, putLayoutName},
    {"TabOrder", Access::Integer, 71, 0, nullptr, nullptr, false, "", LayoutPart},
    {"Block", Access::Custom, 0, 0, layoutBlock},
    {"ModelType", Access::Custom, 0, 0, modelType},
};
constexpr Property Plot[] = {
    {"Name", Access::Custom, 1, 0, setupName, putSetupName},
    {"ConfigName", Access::Text, 2, 0, nullptr, putDevice, false, "", Setup},
    {"CanonicalMediaName", Access::Text, 4, 0, nullptr, nullptr, false, "", Setup},
    {"ViewToPlot", Access::Text, 6, 0, nullptr, nullptr, false, "", Setup},
    {"StyleSheet", Access::Text, 7, 0, nullptr, nullptr, false, "", Setup},
    {"PaperUnits", Access::Integer, 72, 0, nullptr, nullptr, false, "", Setup},
    {"PlotRotation", Access::Integer, 73, 0, nullptr, nullptr, false, "", Setup},
    {"PlotType", Access::Integer, 74, 0, nullptr, nullptr, false, "", Setup},
    {"StandardScale", Access::Integer, 75, 0, nullptr, nullptr, false, "", Setup},
    {"PlotOrigin", Access::Custom, 46, 0, plotOrigin, putPlotOrigin},
    {"PlotViewportBorders", Access::Flag, 70, 1, nullptr, nullptr, false, "", Setup},
    {"ShowPlotStyles", Access::Flag, 70, 2, nullptr, nullptr, false, "", Setup},
    {"CenterPlot", Access::Flag, 70, 4, nullptr, nullptr, false, "", Setup},
    {"PlotHidden", Access::Flag, 70, 8, nullptr, nullptr, false, "", Setup},
    {"UseStandardScale", Access::Flag, 70, 16, nullptr, nullptr, false, "", Setup},
    {"PlotWithPlotStyles", Access::Flag, 70, 32, nullptr, nullptr, false, "", Setup},
    {"ScaleLineweights", Access::Flag, 70, 64, nullptr, nullptr, false, "", Setup},
    {"PlotWithLineweights", Access::Flag, 70, 128, nullptr, nullptr, false, "", Setup},
    {"PlotViewportsFirst", Access::Flag, 70, 512, nullptr, nullptr, false, "", Setup},
    {"ModelType", Access::Flag, 70, 1024, nullptr, nullptr, true, "", Setup},
};
constexpr Method LayoutMethods[] = {
    {"SetCustomScale", 2, 2, setCustomScale},
    {"GetCustomScale", 2, 2, getCustomScale},
    {"SetWindowToPlot", 2, 2, setWindow},
    {"GetWindowToPlot", 2, 2, getWindow},
    {"GetPaperSize", 2, 2, getPaperSize},
    {"GetPaperMargins", 2, 2, getMargins},
    {"RefreshPlotDeviceInfo", 0, 0, refresh},
    {"GetPlotDeviceNames", 0, 0, devices},
    {"GetPlotStyleTableNames", 0, 0, noNames},
    {"GetCanonicalMediaNames", 0, 0, noNames},
    {"CopyFrom", 1, 1, copySetup},
};

}  // namespace

void deleteLayout(Call& call) {
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    std::vector<Layout> all = layouts(drawing);
    const auto found = std::find_if(all.begin(), all.end(), [&](const Layout& l) { return l.object == id; });
    const auto papers = std::count_if(all.begin(), all.end(), [](const Layout& l) { return !l.model; });
    if (found == all.end() || found->model || papers < 2) {
        failAutomation("Cannot be erased by caller");
    }
    if (isActivePaper(*found)) {
        // Another sheet takes its place first, so that the one that goes is a block like any other.
        const auto other =
            std::find_if(all.begin(), all.end(), [&](const Layout& l) { return !l.model && l.object != id; });
        const bool model = call.session().host.getVar("CTAB")->toString() == "Model";
        call.session().host.setVar("CTAB", Value::string(other->name));
        if (model) {
            call.session().host.setVar("CTAB", Value::string("Model"));
        }
    }
    removeLayout(drawing, id);
    call.changed(true);
}

Properties blockProperties() {
    return BlockProperty;
}
Methods blockMethods() {
    return BlockMethods;
}
Properties layoutProperties() {
    return LayoutProperty;
}
Methods layoutMethods() {
    return LayoutMethods;
}
Properties plotProperties() {
    return Plot;
}

}  // namespace drafthost::activex
