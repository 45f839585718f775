// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/EntityLooks.h"

#include <cmath>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/LayerTable.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/LinetypeFile.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Transparency.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

constexpr int ByLayer = 256;
constexpr int ByBlock = 0;

constexpr const char* Properties =
    "Color LAyer LType ltScale LWeight Thickness TRansparency Material Annotative Plotstyle";
constexpr const char* WithElevation =
    "Color Elev LAyer LType ltScale LWeight Thickness TRansparency Material Annotative Plotstyle";

void removeGroup(Drawing& drawing, RecordId id, int code) {
    const Record record = drawing.record(id);
    const auto at = record.find(code);
    if (at && *at < record.xdata()) {
        drawing.removeTag(id, *at);
    }
}

Task<LookChange> askColor(CommandContext& context) {
    LookChange change;
    for (;;) {
        auto answer = co_await context.word(
            "New color [Truecolor/COlorbook]",
            {.keywords = "Truecolor COlorbook BYLayer BYBlock", .defaultText = "BYLAYER", .bareText = true});
        change.kind = LookChange::Kind::Color;
        if (answer.isKeyword("BYLayer") || answer.isKeyword("BYBlock")) {
            change.color = Color{answer.isKeyword("BYLayer") ? ByLayer : ByBlock};
            co_return change;
        }
        if (answer.isKeyword("Truecolor")) {
            answer = co_await context.word("Red,Green,Blue", {.noEmpty = true});
        } else if (answer.isKeyword("COlorbook")) {
            context.complain("This host has no color books; give a number, a name or a true color.");
            continue;
        }
        if (const auto rgb = parseTrueColor(answer.text)) {
            if (!versionHolds(context, 1018, "true colors")) {
                continue;
            }
            change.color = *rgb;
            co_return change;
        }
        const auto index = parseColorIndex(answer.text, 0);
        if (index || answer.text == "256") {
            change.color = Color{index.value_or(ByLayer)};
            co_return change;
        }
        context.complain(inQuotes(answer.text) + " is no color.");
    }
}

Task<LookChange> askLinetype(CommandContext& context) {
    LookChange change;
    for (;;) {
        auto answer = co_await askName(context, "Enter new linetype name", "ByLayer");
        Drawing& drawing = context.document().drawing();
        change.kind = LookChange::Kind::Linetype;
        for (const char* standing : {"ByLayer", "ByBlock", "Continuous"}) {
            if (sameName(answer.text, standing)) {
                change.name = standing;
            }
        }
        if (change.name.empty()) {
            const RecordId entry = provideLinetype(drawing, answer.text);
            change.name = entry == NoRecord ? std::string() : entryName(drawing, entry);
        }
        if (!change.name.empty()) {
            co_return change;
        }
        context.complain("Cannot find linetype " + inQuotes(answer.text) + ". Use LINETYPE to load it.");
    }
}

Task<LookChange> askLineweight(CommandContext& context) {
    LookChange change;
    for (;;) {
        auto answer = co_await context.word(
            "Enter new lineweight",
            {.keywords = "BYLayer BYBlock DEFault", .defaultText = "BYLAYER", .bareText = true});
        change.kind = LookChange::Kind::Lineweight;
        if (answer.isKeyword()) {
            change.hundredths = answer.isKeyword("BYLayer") ? -1 : answer.isKeyword("BYBlock") ? -2 : -3;
            co_return change;
        }
        const auto millimetres = automation::readNumber(answer.text);
        const auto weight = millimetres ? nearestLineweight(*millimetres) : std::nullopt;
        if (weight) {
            change.hundredths = *weight;
            co_return change;
        }
        context.complain(inQuotes(answer.text) + " is no lineweight: give millimetres from 0 to 2.11.");
    }
}

Task<LookChange> askTransparency(CommandContext& context) {
    LookChange change;
    auto answer = co_await context.integer("Enter new transparency value", {.keywords = "BYLayer BYBlock",
                                                                            .defaultText = "BYLayer",
                                                                            .minimum = 0,
                                                                            .maximum = 90,
                                                                            .bareText = true});
    change.kind = LookChange::Kind::Transparency;
    if (answer.isKeyword("BYBlock")) {
        change.transparency = TransparencyByBlock;
    } else if (!answer.isKeyword()) {
        change.transparency = transparencyOf(answer.integer);
    }
    co_return change;
}

Task<LookChange> askNumber(CommandContext& context, LookChange::Kind kind) {
    LookChange change;
    change.kind = kind;
    for (;;) {
        if (kind == LookChange::Kind::LinetypeScale) {
            auto answer = co_await context.real("Specify new linetype scale", {.defaultText = "1"});
            change.number = answer.real;
            if (change.number > 0) {
                co_return change;
            }
            context.complain("Value must be positive and nonzero.");
            continue;
        }
        const bool thickness = kind == LookChange::Kind::Thickness;
        auto answer = co_await context.distance(thickness ? "Specify new thickness" : "Specify new elevation",
                                                {.defaultText = "0"});
        change.number = answer.real;
        co_return change;
    }
}

/// The layer; like in a dialog it must be there.
Task<LookChange> askLayer(CommandContext& context) {
    LookChange change;
    for (;;) {
        const std::string now = currentLayerName(context);
        auto answer = co_await askName(context, "Enter new layer name", now);
        const Drawing& drawing = context.document().drawing();
        const RecordId layer = findEntry(drawing, Table::Layer, answer.text);
        if (layer != NoRecord || answer.text == "0") {
            change.kind = LookChange::Kind::Layer;
            change.name = layer == NoRecord ? "0" : entryName(drawing, layer);
            co_return change;
        }
        context.complain("Cannot find layer " + inQuotes(answer.text) + ".");
    }
}

bool isFlat(std::string_view type) {
    return type == "LWPOLYLINE" || type == "HATCH" || type == "CIRCLE" || type == "ARC" || type == "TEXT" ||
           type == "INSERT" || type == "ATTDEF" || type == "SOLID" || type == "TRACE" || type == "LINE" ||
           type == "POINT" || type == "SHAPE";
}

bool hasThickness(std::string_view type) {
    return isFlat(type) ? type != "HATCH" && type != "INSERT" : type == "POLYLINE";
}

void setElevation(Drawing& drawing, RecordId id, double z) {
    const Record record = drawing.record(id);
    if (record.type() == "LWPOLYLINE") {
        setGroupInPlace(drawing, id, 38, z);
        return;
    }
    for (std::size_t i = 0; i < record.xdata(); ++i) {
        const int code = drawing.record(id).code(i);
        if (code >= 30 && code <= 33) {
            drawing.setTag(id, i, z);
        }
    }
}

/// Parts of an entity follow it onto its layer when they lie there already.
void setLayer(Drawing& drawing, RecordId id, const std::string& layer) {
    const std::string old = foldCase(drawing.record(id).textOr(8, "0"));
    drawing.put(id, 8, layer, {67, 100, 330, 5});
    for (RecordId part = drawing.next(id); part != NoRecord && isSubEntity(drawing, part);
         part = drawing.next(part)) {
        if (foldCase(drawing.record(part).textOr(8, "0")) == old || drawing.type(part) == "SEQEND") {
            drawing.put(part, 8, layer, {67, 100, 330, 5});
        }
    }
}

}  // namespace

Task<LookChange> askLookChange(CommandContext& context, bool elevation) {
    for (;;) {
        auto answer =
            co_await context.keyword("Enter property to change", elevation ? WithElevation : Properties);
        if (answer.isEnter()) {
            co_return LookChange();
        }
        if (answer.isKeyword("Color")) {
            co_return co_await askColor(context);
        }
        if (answer.isKeyword("LAyer")) {
            co_return co_await askLayer(context);
        }
        if (answer.isKeyword("LType")) {
            co_return co_await askLinetype(context);
        }
        if (answer.isKeyword("LWeight")) {
            bool holds = versionHolds(context, 1015, "lineweights");
            if (holds) {
                co_return co_await askLineweight(context);
            }
            continue;
        }
        if (answer.isKeyword("TRansparency")) {
            bool holds = versionHolds(context, 1018, "transparency");
            if (holds) {
                co_return co_await askTransparency(context);
            }
            continue;
        }
        if (answer.isKeyword("ltScale")) {
            co_return co_await askNumber(context, LookChange::Kind::LinetypeScale);
        }
        if (answer.isKeyword("Thickness") || answer.isKeyword("Elev")) {
            co_return co_await askNumber(context, answer.isKeyword("Elev") ? LookChange::Kind::Elevation
                                                                           : LookChange::Kind::Thickness);
        }
        context.complain("The property " + answer.keyword + " cannot be changed here.");
    }
}

void setEntityColor(Drawing& drawing, RecordId id, const Color& color) {
    removeGroup(drawing, id, 420);
    removeGroup(drawing, id, 430);
    if (color.index == ByLayer) {
        removeGroup(drawing, id, 62);
        return;
    }
    drawing.put(id, 62, std::int64_t{color.index}, {6, 8});
    if (color.rgb) {
        drawing.put(id, 420, std::int64_t{*color.rgb}, {62});
    }
}

bool applyLook(Drawing& drawing, RecordId id, const LookChange& change) {
    const std::string type(drawing.type(id));
    switch (change.kind) {
        case LookChange::Kind::None:
            break;
        case LookChange::Kind::Color:
            setEntityColor(drawing, id, change.color);
            break;
        case LookChange::Kind::Layer:
            setLayer(drawing, id, change.name);
            break;
        case LookChange::Kind::Linetype:
            if (sameName(change.name, "ByLayer")) {
                removeGroup(drawing, id, 6);
            } else {
                drawing.put(id, 6, change.name, {8});
            }
            break;
        case LookChange::Kind::LinetypeScale:
            if (drawing.versionNumber() < 1012) {
                return false;
            }
            if (change.number == 1) {
                removeGroup(drawing, id, 48);
            } else {
                drawing.put(id, 48, change.number, {62, 6, 8});
            }
            break;
        case LookChange::Kind::Lineweight:
            if (change.hundredths == -1) {
                removeGroup(drawing, id, 370);
            } else {
                drawing.put(id, 370, std::int64_t{change.hundredths}, {48, 420, 62, 6, 8});
            }
            break;
        case LookChange::Kind::Thickness:
            if (!hasThickness(type)) {
                return false;
            }
            setGroupInPlace(drawing, id, 39, change.number);
            break;
        case LookChange::Kind::Transparency:
            if (change.transparency) {
                drawing.put(id, 440, *change.transparency, {370, 48, 420, 62, 6, 8});
            } else {
                removeGroup(drawing, id, 440);
            }
            break;
        case LookChange::Kind::Elevation:
            if (!isFlat(type)) {
                return false;
            }
            setElevation(drawing, id, change.number);
            break;
    }
    return true;
}

}  // namespace drafthost::commands
