// SPDX-License-Identifier: GPL-3.0-or-later
// The object that plots layouts of the document.

#include <algorithm>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/RunCommand.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/PageSetup.h"

namespace drafthost::activex {
namespace {

constexpr char Quiet[] = "QUIETERRORMODE", Copies[] = "NUMBEROFCOPIES", Progress[] = "BATCHPLOTPROGRESS";
constexpr const char* Chosen = "LAYOUTS";

template <const char* name>
Result kept(Call& call) {
    const auto found = call.self.kept.find(name);
    if (found != call.self.kept.end()) {
        return found->second;
    }
    return std::string_view(name) == Copies ? Result::integer(1) : Result::boolean(false);
}
template <const char* name>
void keep(Call& call, const Value& value) {
    call.self.kept[name] = value;
}

std::string currentLayout(const Call& call) {
    const auto value = call.session().host.getVar("CTAB");
    return value && value->isString() ? value->toString() : "Model";
}

std::vector<std::string> textsOf(const Value& list) {
    std::vector<std::string> texts;
    for (const Value& item : itemsOf(unwrapped(list))) {
        texts.push_back(textOf(item));
    }
    return texts;
}

Result setLayouts(Call& call) {
    const std::vector<std::string> names = textsOf(call.arg(0));
    for (const std::string& name : names) {
        const auto& all = layouts(call.drawing());
        if (std::ranges::none_of(all, [&](const Layout& l) { return foldCase(l.name) == foldCase(name); })) {
            failAutomation("Key not found");
        }
    }
    call.self.kept[Chosen] = call.arg(0);
    return {};
}

/// One file for each layout; of several each gets the layout's name behind the file's.
Result plotToFile(Call& call) {
    const auto chosen = call.self.kept.find(Chosen);
    std::vector<std::string> names{currentLayout(call)};
    if (chosen != call.self.kept.end()) {
        names = textsOf(chosen->second);
        call.self.kept.erase(chosen);
    }
    const std::string file = call.text(0);
    bool done = !names.empty();
    for (const std::string& name : names) {
        std::string device = call.has(1) ? call.text(1) : "";
        for (const Layout& layout : layouts(call.drawing())) {
            if (device.empty() && foldCase(layout.name) == foldCase(name) && layout.object != NoRecord) {
                device = readPageSetup(call.drawing(), layout.object).device;
            }
        }
        std::string target = file;
        if (names.size() > 1) {
            const std::size_t dot = target.rfind('.');
            const bool extended = dot != std::string::npos && target.find('/', dot) == std::string::npos;
            target.insert(extended ? dot : target.size(), "-" + name);
        }
        done = isPdfDevice(device) &&
               runCommand(call, {"_.-PLOT", "_N", name, "", device, target, "_N", "_Y"}) && done;
    }
    return Result::boolean(done);
}
Result plotToDevice(Call&) {
    return Result::boolean(false);
}
Result nothing(Call&) {
    return {};
}

constexpr Property PlotProperty[] = {
    {"QuietErrorMode", Access::Custom, 0, 0, kept<Quiet>, keep<Quiet>},
    {"NumberOfCopies", Access::Custom, 0, 0, kept<Copies>, keep<Copies>},
    {"BatchPlotProgress", Access::Custom, 0, 0, kept<Progress>, keep<Progress>},
};
constexpr Method PlotMethod[] = {
    {"PlotToFile", 1, 2, plotToFile},
    {"PlotToDevice", 0, 1, plotToDevice},
    {"SetLayoutsToPlot", 1, 1, setLayouts},
    {"StartBatchMode", 1, 1, nothing},
};

}  // namespace

const Class& plotClass() {
    static const Class kClass{"IAcadPlot", "", {PlotProperty}, {PlotMethod}};
    return kClass;
}

}  // namespace drafthost::activex
