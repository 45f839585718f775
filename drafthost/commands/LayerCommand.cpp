// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerWatch.h"

namespace drafthost::commands {

namespace {

struct LayerOption {
    std::string_view keyword;
    Task<bool> (*run)(CommandContext&);
};

constexpr LayerOption Options[] = {
    {"?", listLayers},
    {"Make", makeLayer},
    {"Set", setLayer},
    {"New", newLayers},
    {"Rename", renameLayer},
    {"ON", layersOn},
    {"OFF", layersOff},
    {"Color", colorLayers},
    {"Ltype", linetypeLayers},
    {"LWeight", lineweightLayers},
    {"TRansparency", transparencyLayers},
    {"MATerial", materialLayers},
    {"Plot", plotLayers},
    {"PStyle", plotStyleLayers},
    {"Freeze", freezeLayers},
    {"Thaw", thawLayers},
    {"LOck", lockLayers},
    {"Unlock", unlockLayers},
    {"Description", describeLayers},
    {"rEconcile", reconcileLayers},
    {"Xref", xrefLayers},
    {"stAte", layerStates},
};

}  // namespace

CommandTask layerCommand(CommandContext& context) {
    std::string keywords;
    for (const LayerOption& option : Options) {
        keywords += (keywords.empty() ? "" : " ") + std::string(option.keyword);
    }
    LayerWatch before(context.document());
    for (;;) {
        context.printLine("Current layer: \"" + currentLayerName(context) + "\"");
        auto answer = co_await context.keyword("Enter an option", keywords);
        if (answer.isEnter()) {
            co_return;
        }
        for (const LayerOption& option : Options) {
            if (answer.keyword == option.keyword) {
                co_await option.run(context);
                break;
            }
        }
    }
}

}  // namespace drafthost::commands
