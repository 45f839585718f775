// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/LayerLook.h"

#include <cstdlib>

#include "drafthost/drawing/ApplicationData.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/LinetypeFile.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Transparency.h"

namespace drafthost {

namespace {

constexpr int VersionWithLineweights = 1015;
constexpr int VersionWithTrueColors = 1018;

bool sameText(std::string_view a, std::string_view b) {
    return foldCase(a) == foldCase(b);
}

/// Name of what a handle stands for, or of what a dictionary of the root holds.
std::string plotStyleOf(const Drawing& drawing, std::uint64_t handle) {
    const RecordId root = rootDictionary(drawing);
    const RecordId styles =
        root == NoRecord ? NoRecord : findInDictionary(drawing, root, "ACAD_PLOTSTYLENAME");
    if (styles != NoRecord) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, styles)) {
            if (entry.handle == handle) {
                return entry.name;
            }
        }
    }
    return {};
}

void setColor(Drawing& drawing, RecordId layer, const LayerLook& look) {
    const bool off = drawing.record(layer).integerOr(62, 7) < 0;
    drawing.put(layer, 62, std::int64_t{off ? -look.color : look.color}, {70, 2});
    for (const int code : {420, 430}) {
        const auto at = drawing.record(layer).find(code);
        if (at && *at < drawing.record(layer).xdata()) {
            drawing.removeTag(layer, *at);
        }
    }
    if (look.rgb && drawing.versionNumber() >= VersionWithTrueColors) {
        drawing.put(layer, 420, std::int64_t{*look.rgb}, {62});
    }
}

void setLinetype(Drawing& drawing, RecordId layer, const std::string& name) {
    const RecordId linetype = provideLinetype(drawing, name);
    if (linetype != NoRecord) {
        drawing.put(layer, 6, entryName(drawing, linetype), {420, 62, 70, 2});
    }
}

void setPlotStyle(Drawing& drawing, RecordId layer, const std::string& name) {
    const RecordId root = rootDictionary(drawing);
    const RecordId styles =
        root == NoRecord ? NoRecord : findInDictionary(drawing, root, "ACAD_PLOTSTYLENAME");
    // With plot styles by colour (1) the names say nothing.
    if (styles == NoRecord || headerInteger(drawing, "$PSTYLEMODE", 1) != 0) {
        return;
    }
    const RecordId style = findInDictionary(drawing, styles, name);
    if (style != NoRecord) {
        drawing.put(layer, 390, formatHandle(drawing.handle(style)), {370, 290, 6, 420, 62, 70, 2});
    }
}

}  // namespace

LayerLook lookOf(const Drawing& drawing, RecordId layer) {
    const Record record = drawing.record(layer);
    LayerLook look;
    look.layer = entryName(drawing, layer);
    const std::int64_t flags = record.integerOr(70, 0);
    const std::int64_t color = record.integerOr(62, 7);
    look.flags = (color < 0 ? LayerLook::Off : 0) | ((flags & 1) != 0 ? LayerLook::Frozen : 0) |
                 ((flags & 4) != 0 ? LayerLook::Locked : 0) |
                 (record.integerOr(290, 1) != 0 ? LayerLook::Plots : 0) |
                 ((flags & 2) != 0 ? LayerLook::FrozenInNew : 0);
    look.color = static_cast<int>(std::abs(color));
    if (record.find(420)) {
        look.rgb = static_cast<int>(record.integerOr(420, 0) & 0xFFFFFF);
    }
    look.lineweight = static_cast<int>(record.integerOr(370, -3));
    look.linetype = record.textOr(6, "Continuous");
    look.plotStyle = plotStyleOf(drawing, record.handleOr(390, 0));
    const auto [begin, end] = xdataRange(record, LayerTransparencyApplication);
    for (std::size_t i = begin; i < end; ++i) {
        if (record.code(i) == 1071) {
            look.transparency = record.integer(i);
        }
    }
    return look;
}

void setLayerBit(Drawing& drawing, RecordId layer, std::int64_t bit, bool on) {
    const std::int64_t flags = drawing.record(layer).integerOr(70, 0);
    const std::int64_t wanted = on ? flags | bit : flags & ~bit;
    if (wanted != flags) {
        drawing.put(layer, 70, wanted, {2});
    }
}

void switchLayerOff(Drawing& drawing, RecordId layer, bool off) {
    const std::int64_t color = drawing.record(layer).integerOr(62, 7);
    if ((color < 0) != off) {
        drawing.put(layer, 62, -color, {70, 2});
    }
}

void giveLook(Drawing& drawing, RecordId layer, const LayerLook& look, int mask) {
    const LayerLook now = lookOf(drawing, layer);
    if ((mask & RestoreColor) != 0 && (now.color != look.color || now.rgb != look.rgb)) {
        setColor(drawing, layer, look);
    }
    if ((mask & RestoreOn) != 0) {
        switchLayerOff(drawing, layer, (look.flags & LayerLook::Off) != 0);
    }
    if ((mask & RestoreFrozen) != 0) {
        const bool current = sameText(look.layer, headerText(drawing, "$CLAYER", "0"));
        setLayerBit(drawing, layer, 1, (look.flags & LayerLook::Frozen) != 0 && !current);
    }
    if ((mask & RestoreNewViewport) != 0) {
        setLayerBit(drawing, layer, 2, (look.flags & LayerLook::FrozenInNew) != 0);
    }
    if ((mask & RestoreLocked) != 0) {
        setLayerBit(drawing, layer, 4, (look.flags & LayerLook::Locked) != 0);
    }
    if ((mask & RestoreLinetype) != 0 && !sameText(now.linetype, look.linetype)) {
        setLinetype(drawing, layer, look.linetype);
    }
    if (drawing.versionNumber() < VersionWithLineweights) {
        return;
    }
    if ((mask & RestorePlot) != 0 && ((now.flags ^ look.flags) & LayerLook::Plots) != 0) {
        drawing.put(layer, 290, std::int64_t{(look.flags & LayerLook::Plots) != 0 ? 1 : 0},
                    {6, 420, 62, 70, 2});
    }
    if ((mask & RestoreLineweight) != 0 && now.lineweight != look.lineweight) {
        drawing.put(layer, 370, std::int64_t{look.lineweight}, {290, 6, 420, 62, 70, 2});
    }
    if ((mask & RestorePlotStyle) != 0 && !sameText(now.plotStyle, look.plotStyle)) {
        setPlotStyle(drawing, layer, look.plotStyle);
    }
    if ((mask & RestoreTransparency) != 0 && now.transparency != look.transparency &&
        drawing.versionNumber() >= VersionWithTrueColors) {
        const std::int64_t held = look.transparency == 0 ? transparencyOf(0) : look.transparency;
        if (now.transparency != 0 || held != transparencyOf(0)) {
            setXdata(drawing, layer, LayerTransparencyApplication, {{1071, held}});
        }
    }
}

}  // namespace drafthost
