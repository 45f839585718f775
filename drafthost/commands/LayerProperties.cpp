// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/AnswerReader.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerTable.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/LayerLook.h"
#include "drafthost/drawing/LinetypeFile.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

constexpr int Version2000 = 1015;
constexpr int Version2004 = 1018;
constexpr int Version2007 = 1021;

Task<std::optional<Color>> askTrueColor(CommandContext& context) {
    if (!versionHolds(context, Version2004, "true colors")) {
        co_return std::nullopt;
    }
    for (;;) {
        auto answer = co_await context.word("Red,Green,Blue");
        if (answer.isEnter()) {
            co_return std::nullopt;
        }
        if (auto color = parseTrueColor(answer.text)) {
            co_return color;
        }
        context.complain(inQuotes(answer.text) +
                         " is no true color: give three numbers from 0 to 255 as r,g,b.");
    }
}

void listNames(CommandContext& context, std::string_view what, const std::vector<std::string>& names) {
    context.printLine(names.empty() ? "The drawing has no " + std::string(what) + "." : std::string());
    for (const std::string& name : names) {
        context.printLine(name);
    }
}

/// Asks for the name of an object of one of the drawing's dictionaries; "?" lists them. 0 when there is no
/// answer.
Task<std::uint64_t> askNamedObject(CommandContext& context, std::string prompt, std::string standard,
                                   std::string_view dictionary, std::string_view what, std::string& name) {
    const Drawing& drawing = context.document().drawing();
    for (;;) {
        auto answer = co_await askName(context, prompt, standard);
        if (answer.text.empty()) {
            co_return 0;
        }
        if (answer.text == "?") {
            listNames(context, std::string(what) + "s", namedObjects(drawing, dictionary));
            continue;
        }
        if (std::uint64_t handle = namedObject(drawing, dictionary, answer.text)) {
            name = answer.text;
            co_return handle;
        }
        context.complain("There is no " + std::string(what) + " " + inQuotes(answer.text) +
                         " in the drawing.");
        // The default itself may be missing; asking again would then never end.
        if (sameName(answer.text, standard)) {
            co_return 0;
        }
    }
}

}  // namespace

Task<bool> colorLayers(CommandContext& context) {
    std::optional<Color> color;
    bool off = false;
    while (!color) {
        auto answer =
            co_await context.word("New color [Truecolor/COlorbook]",
                                  {.keywords = "Truecolor COlorbook", .defaultText = "7", .bareText = true});
        if (answer.isKeyword("Truecolor")) {
            color = co_await askTrueColor(context);
            if (!color) {
                co_return false;
            }
        } else if (answer.isKeyword("COlorbook")) {
            context.complain("This host has no color books; give a number, a name or a true color.");
        } else if (auto index = parseColorIndex(answer.text, -255)) {
            off = *index < 0;
            color = Color{std::abs(*index)};
        } else {
            context.complain(inQuotes(answer.text) +
                             " is no color: give a number from 1 to 255 or red, yellow, green, cyan, blue, "
                             "magenta or white.");
        }
    }
    co_return co_await forLayers(context, "Enter name list of layer(s) for color " + colorText(*color), true,
                                 [color = *color, off](Drawing& drawing, RecordId layer) {
                                     setLayerColor(drawing, layer, color);
                                     switchLayerOff(drawing, layer, off);
                                 });
}

Task<bool> linetypeLayers(CommandContext& context) {
    const Drawing& drawing = context.document().drawing();
    for (;;) {
        auto answer = co_await askName(context, "Enter loaded linetype name or [?]", "Continuous");
        if (answer.text == "?") {
            std::vector<std::string> names;
            for (RecordId entry : tableEntries(drawing, Table::Ltype)) {
                names.push_back(entryName(drawing, entry));
            }
            listNames(context, "linetypes", names);
            continue;
        }
        RecordId entry = provideLinetype(context.document().drawing(), answer.text);
        bool continuous = sameName(answer.text, "Continuous");
        if (sameName(answer.text, "ByLayer") || sameName(answer.text, "ByBlock") ||
            (entry == NoRecord && !continuous)) {
            context.complain(
                "Linetype " + inQuotes(answer.text) +
                (entry == NoRecord ? " is not in the drawing." : " cannot be given to a layer."));
            continue;
        }
        std::string name = entry == NoRecord ? "Continuous" : entryName(drawing, entry);
        std::function<void(Drawing&, RecordId)> change = [name](Drawing& target, RecordId layer) {
            setLayerLinetype(target, layer, name);
        };
        co_return co_await forLayers(context, "Enter name list of layer(s) for linetype " + inQuotes(name),
                                     true, change);
    }
}

Task<bool> lineweightLayers(CommandContext& context) {
    if (!versionHolds(context, Version2000, "lineweights")) {
        co_return false;
    }
    for (;;) {
        auto answer = co_await context.word("Enter lineweight (0.0mm - 2.11mm) or [Default]",
                                            {.keywords = "Default", .bareText = true});
        if (answer.isEnter()) {
            co_return false;
        }
        std::optional<int> weight;
        if (answer.isKeyword("Default")) {
            weight = -3;
        } else if (auto millimetres = automation::readNumber(answer.text)) {
            weight = nearestLineweight(*millimetres);
        }
        if (!weight) {
            context.complain(inQuotes(answer.text) + " is no lineweight: give millimetres from 0 to 2.11.");
            continue;
        }
        co_return co_await forLayers(context,
                                     "Enter name list of layer(s) for lineweight " + lineweightText(*weight),
                                     true, [weight = *weight](Drawing& drawing, RecordId layer) {
                                         setLayerLineweight(drawing, layer, weight);
                                     });
    }
}

Task<bool> transparencyLayers(CommandContext& context) {
    if (!versionHolds(context, Version2000, "transparency")) {
        co_return false;
    }
    auto answer = co_await context.integer("Enter transparency value (0 - 90)",
                                           {.defaultText = "0", .minimum = 0, .maximum = 90});
    co_return co_await forLayers(
        context, "Enter name list of layer(s) for transparency " + std::to_string(answer.integer), true,
        [percent = answer.integer](Drawing& drawing, RecordId layer) {
            setLayerTransparency(drawing, layer, percent);
        });
}

Task<bool> materialLayers(CommandContext& context) {
    if (!versionHolds(context, Version2007, "materials")) {
        co_return false;
    }
    std::string name;
    std::uint64_t handle = co_await askNamedObject(context, "Enter material name or [?]", "Global",
                                                   "ACAD_MATERIAL", "material", name);
    if (handle == 0) {
        co_return false;
    }
    co_return co_await forLayers(
        context, "Enter name list of layer(s) for material " + inQuotes(name), true,
        [handle](Drawing& drawing, RecordId layer) { setLayerMaterial(drawing, layer, handle); });
}

Task<bool> plotLayers(CommandContext& context) {
    if (!versionHolds(context, Version2000, "a plotting preference")) {
        co_return false;
    }
    auto answer = co_await context.keyword("Enter a plotting preference", "Plot No", "Plot");
    bool plots = answer.isKeyword("Plot");
    co_return co_await forLayers(
        context, plots ? "Enter name list of layer(s) to plot" : "Enter name list of layer(s) not to plot",
        true, [plots](Drawing& drawing, RecordId layer) { setLayerPlots(drawing, layer, plots); });
}

Task<bool> plotStyleLayers(CommandContext& context) {
    if (!versionHolds(context, Version2000, "plot styles")) {
        co_return false;
    }
    if (headerInteger(context.document().drawing(), "$PSTYLEMODE", 1) != 0) {
        context.complain(
            "This drawing uses color-dependent plot styles, which layers cannot be given by name.");
        co_return false;
    }
    std::string name;
    std::uint64_t handle = co_await askNamedObject(context, "Enter plot style name or [?]", "Normal",
                                                   "ACAD_PLOTSTYLENAME", "plot style", name);
    if (handle == 0) {
        co_return false;
    }
    co_return co_await forLayers(
        context, "Enter name list of layer(s) for plot style " + inQuotes(name), true,
        [handle](Drawing& drawing, RecordId layer) { setLayerPlotStyle(drawing, layer, handle); });
}

Task<bool> describeLayers(CommandContext& context) {
    if (!versionHolds(context, Version2000, "descriptions")) {
        co_return false;
    }
    auto answer = co_await context.text("Enter layer description");
    std::function<void(Drawing&, RecordId)> change = [text = answer.text](Drawing& drawing, RecordId layer) {
        setLayerDescription(drawing, layer, text);
    };
    co_return co_await forLayers(context, "Enter name list of layer(s) for the description", false, change);
}

}  // namespace drafthost::commands
