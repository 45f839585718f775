// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/LayerSnapshot.h"

#include <algorithm>

#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

namespace {

/// Flags, colour, linetype, plotting, lineweight, plot style, material, true colour.
constexpr int Kept[] = {70, 62, 6, 290, 370, 390, 347, 420};

}  // namespace

LayerSnapshot layerSnapshot(const Drawing& drawing) {
    LayerSnapshot snapshot;
    snapshot.current = headerText(drawing, "$CLAYER", "0");
    for (const RecordId id : tableEntries(drawing, Table::Layer)) {
        const Record record = drawing.record(id);
        auto& groups = snapshot.layers[foldCase(entryName(drawing, id))];
        for (const int code : Kept) {
            if (const auto at = record.find(code)) {
                groups.emplace_back(code, record.value(*at));
            }
        }
    }
    return snapshot;
}

void restoreLayers(Drawing& drawing, const LayerSnapshot& snapshot) {
    for (const RecordId id : tableEntries(drawing, Table::Layer)) {
        const auto found = snapshot.layers.find(foldCase(entryName(drawing, id)));
        if (found == snapshot.layers.end()) {
            continue;
        }
        for (const int code : Kept) {
            const auto had = std::find_if(found->second.begin(), found->second.end(),
                                          [&](const auto& group) { return group.first == code; });
            const auto at = drawing.record(id).find(code);
            if (had != found->second.end()) {
                drawing.put(id, code, had->second, {6, 62, 70});
            } else if (at) {
                drawing.removeTag(id, *at);
            }
        }
    }
    if (findEntry(drawing, Table::Layer, snapshot.current) != NoRecord) {
        setHeader(drawing, "$CLAYER", 8, snapshot.current);
    }
}

}  // namespace drafthost
