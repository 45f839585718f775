// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/LayerStates.h"

#include <algorithm>

#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/LinetypeFile.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

namespace {

constexpr const char* States = "ACAD_LAYERSTATES";
/// The high byte of a true colour in one number.
constexpr std::int64_t TrueColor = 0xC2000000;

bool sameText(std::string_view a, std::string_view b) {
    return foldCase(a) == foldCase(b);
}

RecordId layerTable(const Drawing& drawing) {
    const auto layers = tableEntries(drawing, Table::Layer);
    for (RecordId id = layers.empty() ? NoRecord : drawing.previous(layers.front()); id != NoRecord;
         id = drawing.previous(id)) {
        if (drawing.type(id) == "TABLE") {
            return id;
        }
    }
    return NoRecord;
}

RecordId statesDictionary(const Drawing& drawing) {
    const RecordId table = layerTable(drawing);
    const RecordId extension = table == NoRecord ? NoRecord : extensionDictionary(drawing, table);
    return extension == NoRecord ? NoRecord : findInDictionary(drawing, extension, States);
}

RecordId provideStates(Drawing& drawing) {
    const RecordId there = statesDictionary(drawing);
    const RecordId table = layerTable(drawing);
    if (there != NoRecord || table == NoRecord) {
        return there;
    }
    RecordId extension = extensionDictionary(drawing, table);
    if (extension == NoRecord) {
        extension = makeExtensionDictionary(drawing, table);
    }
    const RecordId made =
        extension == NoRecord ? NoRecord : addObject(drawing, "DICTIONARY", "AcDbDictionary", extension);
    if (made != NoRecord) {
        drawing.appendTag(made, 281, std::int64_t{1});
        addDictionaryEntry(drawing, extension, States, made);
    }
    return made;
}

LayerState readState(const Drawing& drawing, RecordId id, const std::string& name) {
    const Record record = drawing.record(id);
    LayerState state;
    state.name = name;
    state.mask = 0;
    for (std::size_t i = record.subclass("AcDbXrecord"); i < record.xdata(); ++i) {
        const int code = record.code(i);
        if (code == 330 || code == 8) {
            LayerLook look;
            const RecordId layer = code == 330 ? drawing.findHandle(record.handle(i)) : NoRecord;
            look.layer = code == 8           ? record.text(i)
                         : layer != NoRecord ? entryName(drawing, layer)
                                             : std::string();
            state.layers.push_back(look);
        } else if (code == 91) {
            state.mask = static_cast<int>(record.integer(i));
        } else if (code == 301) {
            state.description = record.text(i);
        } else if (code == 302) {
            state.current = record.text(i);
        }
        if (state.layers.empty()) {
            continue;
        }
        LayerLook& look = state.layers.back();
        if (code == 90) {
            look.flags = static_cast<int>(record.integer(i));
        } else if (code == 62) {
            look.color = static_cast<int>(record.integer(i));
        } else if (code == 92) {
            look.rgb = static_cast<int>(record.integer(i) & 0xFFFFFF);
        } else if (code == 370) {
            look.lineweight = static_cast<int>(record.integer(i));
        } else if (code == 331) {
            const RecordId linetype = drawing.findHandle(record.handle(i));
            look.linetype = linetype == NoRecord ? "Continuous" : entryName(drawing, linetype);
        } else if (code == 1) {
            look.plotStyle = record.text(i);
        } else if (code == 440) {
            look.transparency = record.integer(i);
        }
    }
    // A layer that has been purged since.
    std::erase_if(state.layers, [](const LayerLook& look) { return look.layer.empty(); });
    return state;
}

void writeState(Drawing& drawing, RecordId record, const LayerState& state) {
    const auto whole = [&](int code, std::int64_t value) { drawing.appendTag(record, code, value); };
    const auto handle = [&](int code, RecordId id) {
        drawing.appendTag(record, code, formatHandle(drawing.handle(id)));
    };
    whole(280, 1);
    whole(91, state.mask);
    drawing.appendTag(record, 301, state.description);
    whole(290, 0);
    drawing.appendTag(record, 302, state.current);
    for (const LayerLook& look : state.layers) {
        const RecordId layer = findEntry(drawing, Table::Layer, look.layer);
        if (layer == NoRecord) {
            drawing.appendTag(record, 8, look.layer);
        } else {
            handle(330, layer);
        }
        whole(90, look.flags);
        whole(62, look.color);
        whole(370, look.lineweight);
        const RecordId linetype = provideLinetype(drawing, look.linetype);
        if (linetype != NoRecord) {
            handle(331, linetype);
        }
        drawing.appendTag(record, 1, look.plotStyle);
        whole(440, look.transparency);
        if (look.rgb) {
            whole(92, static_cast<std::int32_t>(TrueColor | *look.rgb));
        }
    }
}

}  // namespace

LayerLook* LayerState::find(std::string_view layer) {
    const auto at =
        std::ranges::find_if(layers, [&](const LayerLook& look) { return sameText(look.layer, layer); });
    return at == layers.end() ? nullptr : &*at;
}

bool isLayerStateName(std::string_view name) {
    return !name.empty() && name.find_first_of("<>/\\\":;?*|,=`") == std::string_view::npos;
}

std::vector<std::string> layerStateNames(const Drawing& drawing) {
    std::vector<std::string> names;
    const RecordId states = statesDictionary(drawing);
    if (states != NoRecord) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, states)) {
            names.push_back(entry.name);
        }
    }
    return names;
}

std::optional<LayerState> findLayerState(const Drawing& drawing, std::string_view name) {
    const RecordId states = statesDictionary(drawing);
    if (states != NoRecord) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, states)) {
            const RecordId id = drawing.findHandle(entry.handle);
            if (id != NoRecord && sameText(entry.name, name)) {
                return readState(drawing, id, entry.name);
            }
        }
    }
    return std::nullopt;
}

LayerState currentLayerState(const Drawing& drawing, std::string name) {
    LayerState state;
    state.name = std::move(name);
    state.current = headerText(drawing, "$CLAYER", "0");
    for (const RecordId layer : tableEntries(drawing, Table::Layer)) {
        state.layers.push_back(lookOf(drawing, layer));
    }
    return state;
}

bool putLayerState(Drawing& drawing, const LayerState& state) {
    removeLayerState(drawing, state.name);
    const RecordId states = provideStates(drawing);
    const RecordId made =
        states == NoRecord ? NoRecord : addObject(drawing, "XRECORD", "AcDbXrecord", states);
    if (made == NoRecord) {
        return false;
    }
    writeState(drawing, made, state);
    addDictionaryEntry(drawing, states, state.name, made);
    return true;
}

bool removeLayerState(Drawing& drawing, std::string_view name) {
    const RecordId states = statesDictionary(drawing);
    if (states == NoRecord) {
        return false;
    }
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, states)) {
        if (sameText(entry.name, name)) {
            const RecordId record = drawing.findHandle(entry.handle);
            removeDictionaryEntry(drawing, states, entry.name);
            if (record != NoRecord) {
                drawing.deleteRecord(record);
            }
            return true;
        }
    }
    return false;
}

bool renameLayerState(Drawing& drawing, std::string_view name, const std::string& to) {
    const RecordId states = statesDictionary(drawing);
    if (states != NoRecord) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, states)) {
            if (sameText(entry.name, name)) {
                drawing.setTag(states, entry.tag, to);
                return true;
            }
        }
    }
    return false;
}

std::vector<std::string> restoreLayerState(Drawing& drawing, const LayerState& state, int others) {
    LayerState wanted = state;
    std::vector<std::string> names;
    const RecordId current = findEntry(drawing, Table::Layer, state.current);
    if (current != NoRecord) {
        setHeader(drawing, "$CLAYER", 8, entryName(drawing, current));
    }
    for (const RecordId layer : tableEntries(drawing, Table::Layer)) {
        const std::string name = entryName(drawing, layer);
        if (const LayerLook* look = wanted.find(name)) {
            giveLook(drawing, layer, *look, state.mask);
            names.push_back(name);
            continue;
        }
        if ((others & OthersOff) != 0) {
            switchLayerOff(drawing, layer, true);
        }
        if ((others & OthersFrozen) != 0 && !sameText(name, headerText(drawing, "$CLAYER", "0"))) {
            setLayerBit(drawing, layer, 1, true);
        }
    }
    return names;
}

bool agreesWith(const Drawing& drawing, const LayerState& state) {
    const LayerState now = currentLayerState(drawing, state.name);
    return std::ranges::all_of(now.layers, [&](const LayerLook& look) {
        const auto kept = std::ranges::find_if(
            state.layers, [&](const LayerLook& other) { return sameText(other.layer, look.layer); });
        return kept == state.layers.end() || *kept == look;
    });
}

void provideLayers(Drawing& drawing, const LayerState& state) {
    for (const LayerLook& look : state.layers) {
        if (findEntry(drawing, Table::Layer, look.layer) == NoRecord) {
            const RecordId made = addEntry(drawing, Table::Layer, look.layer);
            if (made != NoRecord) {
                giveLook(drawing, made, look, RestoreAll);
            }
        }
    }
}

}  // namespace drafthost
