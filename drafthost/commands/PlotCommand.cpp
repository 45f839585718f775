// SPDX-License-Identifier: GPL-3.0-or-later
// -PLOT, -PAGESETUP.

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/PlotPage.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/UserSystem.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr double MillimetresPerInch = 25.4;

struct PlotJob {
    Layout layout;
    PageSetup setup;
};

std::string currentLayout(CommandContext& context) {
    const auto value = context.host().variables().get("CTAB");
    const auto* name = value ? std::get_if<std::string>(&*value) : nullptr;
    return name != nullptr ? *name : "Model";
}

/// The setup of a layout; a sheet of A4 where the drawing keeps none.
PageSetup setupOf(const Drawing& drawing, const Layout& layout) {
    PageSetup setup;
    if (layout.object != NoRecord) {
        setup = readPageSetup(drawing, layout.object);
    } else {
        setup.area = layout.model ? PlotArea::Display : PlotArea::Layout;
        setup.fit = layout.model;
    }
    if (!(setup.paper.width > 0) || !(setup.paper.height > 0)) {
        setup.paper = *paperByName("ISO A4");
    }
    if (layout.model && setup.area == PlotArea::Layout) {
        setup.area = PlotArea::Display;
    }
    return setup;
}

Task<std::optional<Layout>> askLayout(CommandContext& context) {
    const Drawing& drawing = context.document().drawing();
    std::string standard = currentLayout(context);
    for (;;) {
        auto name = co_await context.text("Enter a layout name or [?]", standard);
        if (name.text == "?") {
            for (const Layout& layout : layouts(drawing)) {
                context.printLine(layout.name);
            }
            continue;
        }
        const std::string wanted = unquoted(name.text);
        for (const Layout& layout : layouts(drawing)) {
            if (sameName(layout.name, wanted)) {
                std::optional<Layout> found = layout;
                co_return found;
            }
        }
        context.complain("Layout " + inQuotes(wanted) + " not found.");
    }
}

bool hasDevice(const std::string& device) {
    return !device.empty() && !sameName(device, "none_device") && !sameName(device, "None");
}

Task<bool> askDevice(CommandContext& context, PageSetup& setup) {
    std::string standard = hasDevice(setup.device) ? setup.device : "None";
    for (;;) {
        auto name = co_await context.text("Enter an output device name or [?]", standard);
        const std::string device = unquoted(name.text);
        if (device == "?") {
            context.printLine(PdfDevice);
        } else if (isPdfDevice(device)) {
            setup.device = device;
            co_return true;
        } else if (sameName(device, "None")) {
            setup.device = "none_device";
            co_return true;
        } else {
            context.complain("<" + device + "> not found. This host writes PDF files: " + PdfDevice + ".");
        }
    }
}

Task<bool> askPaper(CommandContext& context, PageSetup& setup) {
    std::string standard = setup.paper.name;
    for (;;) {
        auto name = co_await context.text("Enter paper size or [?]", standard);
        const std::string paper = unquoted(name.text);
        if (paper == "?") {
            for (const PaperSize& known : paperSizes()) {
                context.printLine(known.name);
            }
            continue;
        }
        if (sameName(paper, setup.paper.name)) {
            co_return true;
        }
        if (auto found = paperByName(paper)) {
            setup.paper = *found;
            co_return true;
        }
        context.complain("Paper size " + inQuotes(paper) + " not found.");
    }
}

/// "1:50", "1=50", "0.5"; false for anything else.
bool readScale(const std::string& text, PageSetup& setup) {
    double plotted = 0;
    double drawn = 1;
    char divider = '=';
    char rest = 0;
    const int parts = std::sscanf(text.c_str(), "%lf %c %lf %c", &plotted, &divider, &drawn, &rest);
    if ((parts != 1 && parts != 3) || (divider != ':' && divider != '=') || !(plotted > 0) || !(drawn > 0) ||
        !std::isfinite(plotted) || !std::isfinite(drawn)) {
        return false;
    }
    setup.fit = false;
    setup.plotted = plotted;
    setup.drawn = drawn;
    return true;
}

std::string shown(double value, const char* form = "%.2f") {
    char text[64];
    std::snprintf(text, sizeof text, form, value);
    return text;
}

Task<bool> askScale(CommandContext& context, PageSetup& setup) {
    std::string standard = setup.fit ? "Fit" : shown(setup.plotted, "%g") + "=" + shown(setup.drawn, "%g");
    std::string prompt = std::string("Enter plot scale (Plotted ") +
                         (setup.inches ? "Inches" : "Millimeters") + "=Drawing Units) or [Fit]";
    for (;;) {
        auto answer = co_await context.word(prompt, {.defaultText = standard, .bareText = true});
        if (isWord(answer.text, "fit", 1)) {
            setup.fit = true;
            co_return true;
        }
        if (readScale(answer.text, setup)) {
            co_return true;
        }
        context.complain("A scale like 1:50 or Fit is needed here, not " + inQuotes(answer.text) + ".");
    }
}

Task<bool> askOffset(CommandContext& context, PageSetup& setup) {
    const double unit = setup.inches ? MillimetresPerInch : 1;
    const bool mayCenter = setup.area != PlotArea::Layout;
    std::string standard = setup.centered && mayCenter
                               ? "Center"
                               : shown(setup.originX / unit) + "," + shown(setup.originY / unit);
    std::string prompt = mayCenter ? "Enter plot offset (x,y) or [Center]" : "Enter plot offset (x,y)";
    for (;;) {
        auto answer = co_await context.word(prompt, {.defaultText = standard, .bareText = true});
        double x = 0;
        double y = 0;
        char rest = 0;
        if (mayCenter && isWord(answer.text, "center", 1)) {
            setup.centered = true;
            co_return true;
        }
        if (std::sscanf(answer.text.c_str(), "%lf , %lf %c", &x, &y, &rest) == 2 && std::isfinite(x) &&
            std::isfinite(y)) {
            setup.centered = false;
            setup.originX = x * unit;
            setup.originY = y * unit;
            co_return true;
        }
        context.complain("An offset like 0,0 is needed here, not " + inQuotes(answer.text) + ".");
    }
}

Task<bool> askArea(CommandContext& context, PageSetup& setup, bool model) {
    const Drawing& drawing = context.document().drawing();
    constexpr std::pair<PlotArea, const char*> Words[] = {
        {PlotArea::Display, "Display"}, {PlotArea::Extents, "Extents"}, {PlotArea::Limits, "Limits"},
        {PlotArea::Layout, "Layout"},   {PlotArea::View, "View"},       {PlotArea::Window, "Window"}};
    std::string keywords;
    std::string standard = model ? "Display" : "Layout";
    for (const auto& [area, word] : Words) {
        const bool offered = area != (model ? PlotArea::Layout : PlotArea::Limits);
        keywords += offered ? (keywords.empty() ? "" : " ") + std::string(word) : "";
        standard = offered && area == setup.area ? word : standard;
    }
    auto answer = co_await context.keyword("Enter plot area", keywords, standard);
    for (const auto& [area, word] : Words) {
        setup.area = answer.isKeyword(word) ? area : setup.area;
    }
    if (setup.area == PlotArea::View) {
        for (;;) {
            auto name = co_await context.text("Enter view name", setup.view);
            const std::string view = unquoted(name.text);
            if (findEntry(drawing, Table::View, view) != NoRecord) {
                setup.view = view;
                break;
            }
            context.complain("Cannot find view " + inQuotes(view) + ".");
        }
    } else if (setup.area == PlotArea::Window) {
        auto low = co_await context.point("Enter lower left corner of window", {.noEmpty = true});
        auto high = co_await context.point("Enter upper right corner of window", {.noEmpty = true});
        setup.low = worldFromUcs(drawing, low.point);
        setup.high = worldFromUcs(drawing, high.point);
    }
    co_return true;
}

Task<bool> askStyles(CommandContext& context, PageSetup& setup) {
    setup.plotStyles = co_await askYesNo(context, "Plot with plot styles?", setup.plotStyles);
    while (setup.plotStyles) {
        auto name =
            co_await context.text("Enter plot style table name or [?] (enter . for none)", setup.styles);
        if (name.text == "?") {
            context.printLine("monochrome.ctb");
            context.printLine("grayscale.ctb");
            continue;
        }
        std::string styles = unquoted(name.text);
        const bool bare =
            !styles.empty() && styles != "." && std::filesystem::path(styles).extension().empty();
        setup.styles = styles == "." ? "" : bare ? styles + ".ctb" : styles;
        break;
    }
    co_return true;
}

/// Everything between the device and the question about the file.
Task<bool> askDetails(CommandContext& context, PageSetup& setup, bool model) {
    const bool swapped = setup.rotation % 2 == 1;
    const bool lying =
        swapped ? setup.paper.height > setup.paper.width : setup.paper.width > setup.paper.height;
    co_await askPaper(context, setup);
    auto units = co_await context.keyword("Enter paper units", "Inches Millimeters",
                                          setup.inches ? "Inches" : "Millimeters");
    setup.inches = units.isKeyword("Inches");
    auto orientation = co_await context.keyword("Enter drawing orientation", "Portrait Landscape",
                                                lying ? "Landscape" : "Portrait");
    const bool landscape = orientation.isKeyword("Landscape");
    const bool upsideDown = co_await askYesNo(context, "Plot upside down?", setup.rotation >= 2);
    setup.rotation = (landscape != (setup.paper.width > setup.paper.height) ? 1 : 0) + (upsideDown ? 2 : 0);
    co_await askArea(context, setup, model);
    co_await askScale(context, setup);
    co_await askOffset(context, setup);
    co_await askStyles(context, setup);
    setup.lineweights = co_await askYesNo(context, "Plot with lineweights?", setup.lineweights);
    if (model) {
        auto shade = co_await context.word(
            "Enter shade plot setting [As displayed/legacy Wireframe/legacy Hidden/Visual styles/Rendered]",
            {.defaultText = "As displayed", .bareText = true});
        if (isWord(shade.text, "visual", 1)) {
            co_await context.word("Enter an option", {.defaultText = "Realistic"});
        }
    } else {
        setup.scaleLineweights =
            co_await askYesNo(context, "Scale lineweights with plot scale?", setup.scaleLineweights);
        setup.paperSpaceFirst = co_await askYesNo(context, "Plot paper space first?", setup.paperSpaceFirst);
        setup.hidden = co_await askYesNo(context, "Hide paperspace objects?", setup.hidden);
    }
    co_return true;
}

/// The name of a page setup that is saved in the drawing; Enter keeps the layout's own.
Task<bool> askSetup(CommandContext& context, PageSetup& setup) {
    const Drawing& drawing = context.document().drawing();
    for (;;) {
        auto name = co_await context.text("Enter a page setup name", "");
        const std::string wanted = unquoted(name.text);
        if (wanted.empty()) {
            co_return true;
        }
        for (const auto& [saved, object] : savedPageSetups(drawing)) {
            if (wanted == "?") {
                context.printLine(saved);
            } else if (sameName(saved, wanted)) {
                setup = readPageSetup(drawing, object);
                co_return true;
            }
        }
        if (wanted != "?") {
            context.complain("Page setup " + inQuotes(wanted) + " not found.");
        }
    }
}

/// Where the page goes; nothing when it is not to be written to a file.
Task<std::optional<std::string>> askFile(CommandContext& context, const PlotJob& job) {
    const bool onlyFiles = isPdfDevice(job.setup.device);
    const Document& document = context.document();
    const std::filesystem::path own(document.hasName() ? document.path() : document.title());
    std::string standard = own.stem().string() + "-" + job.layout.name + (onlyFiles ? ".pdf" : ".plt");
    std::optional<std::string> file;
    if (!onlyFiles) {
        const bool wanted = co_await askYesNo(context, "Write the plot to a file?", false);
        if (!wanted) {
            co_return file;
        }
    }
    auto name = co_await context.fileName("Enter file name", (own.parent_path() / standard).string());
    file = absolutePath(name.text, onlyFiles ? ".pdf" : ".plt");
    co_return file;
}

void save(CommandContext& context, const PlotJob& job) {
    Document& document = context.document();
    if (job.layout.object == NoRecord) {
        context.printLine("A drawing of version " + document.drawing().version() + " keeps no page setups.");
        return;
    }
    ChangeWatch watch(document, ModifiedObjects);
    writePageSetup(document.drawing(), job.layout.object, job.setup);
}

void plot(CommandContext& context, const PlotJob& job, const std::optional<std::string>& file) {
    if (!isPdfDevice(job.setup.device) || !file) {
        context.fail(std::string("Nothing is plotted: this host only writes PDF files, with the device ") +
                     PdfDevice + ".");
        return;
    }
    PagePlan plan;
    std::string error;
    if (!planPage(context.document().drawing(), job.layout.name, job.setup, plan, error)) {
        context.fail(error);
        return;
    }
    const double unit = job.setup.inches ? MillimetresPerInch : 1;
    context.printLine("Effective plotting area:  " + shown((plan.high.x - plan.low.x) * plan.scale / unit) +
                      " wide by " + shown((plan.high.y - plan.low.y) * plan.scale / unit) + " high");
    std::vector<std::string> notes;
    const bool written = writePage(context.document(), job.layout.name, job.setup, plan, *file, notes, error);
    for (const std::string& note : notes) {
        context.printLine(note);
    }
    if (!written) {
        context.fail(error);
        return;
    }
    context.printLine("Plotted to " + *file + ".");
}

}  // namespace

CommandTask plotCommand(CommandContext& context) {
    const bool detailed = co_await askYesNo(context, "Detailed plot configuration?", false);
    auto layout = co_await askLayout(context);
    PlotJob job{*layout, setupOf(context.document().drawing(), *layout)};
    if (detailed) {
        co_await askDevice(context, job.setup);
        co_await askDetails(context, job.setup, job.layout.model);
    } else {
        co_await askSetup(context, job.setup);
        co_await askDevice(context, job.setup);
    }
    std::optional<std::string> file = co_await askFile(context, job);
    const bool offersQuality = detailed && job.layout.model;
    auto keep =
        co_await context.keyword(offersQuality ? "Save changes to page setup? Or set shade plot quality?"
                                 : detailed    ? "Save changes to page setup"
                                               : "Save changes to layout",
                                 offersQuality ? "Yes No Quality" : "Yes No", "No");
    bool saves = keep.isKeyword("Yes");
    if (keep.isKeyword("Quality")) {
        auto quality = co_await context.keyword("Enter shade plot quality",
                                                "Draft Preview Normal pResentation Maximum Custom", "Normal");
        if (quality.isKeyword("Custom")) {
            co_await context.integer("Enter custom DPI", {.defaultText = "150", .minimum = 1});
        }
        saves = co_await askYesNo(context, "Save changes to page setup?", false);
    }
    if (saves) {
        save(context, job);
    }
    const bool proceeds = co_await askYesNo(context, "Proceed with plot", true);
    if (proceeds) {
        plot(context, job, file);
    }
}

CommandTask pageSetupCommand(CommandContext& context) {
    const Drawing& drawing = context.document().drawing();
    PlotJob job;
    for (const Layout& layout : layouts(drawing)) {
        if (sameName(layout.name, currentLayout(context))) {
            job.layout = layout;
        }
    }
    job.setup = setupOf(drawing, job.layout);
    co_await askDevice(context, job.setup);
    co_await askDetails(context, job.setup, job.layout.model);
    save(context, job);
}

}  // namespace drafthost::commands
