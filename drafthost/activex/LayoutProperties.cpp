// SPDX-License-Identifier: GPL-3.0-or-later
// Layouts with their page setups.

#include <algorithm>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/NewLayout.h"
#include "drafthost/drawing/PageSetup.h"

namespace drafthost::activex {
namespace {

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
Result devices(Call&) {
    return Result::strings({"None", PdfDevice});
}
Result styleTables(Call&) {
    return Result::strings({"monochrome.ctb", "grayscale.ctb"});
}
Result mediaNames(Call&) {
    std::vector<std::string> names;
    for (const PaperSize& paper : paperSizes()) {
        names.push_back(paper.name);
    }
    return Result::strings(names);
}
void putMedia(Call& call, const Value& value) {
    PageSetup setup = readPageSetup(call.drawing(), call.id());
    setup.paper.name = textOf(value);
    if (const auto known = paperByName(setup.paper.name)) {
        setup.paper = *known;
    }
    writePageSetup(call.drawing(), call.id(), setup);
    call.changed();
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
    {"CanonicalMediaName", Access::Text, 4, 0, nullptr, putMedia, false, "", Setup},
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
    {"GetPlotStyleTableNames", 0, 0, styleTables},
    {"GetCanonicalMediaNames", 0, 0, mediaNames},
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
