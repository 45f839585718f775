// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/ViewportLayers.h"

#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

namespace {

constexpr int FrozenByHandle = 1015;

/// Where a viewport of R14 and before names a frozen layer, in the extended data of the host.
std::optional<std::size_t> frozenName(const Record& record, const std::string& name) {
    for (std::size_t i = record.xdata(); i < record.size(); ++i) {
        if (record.code(i) == 1003 && foldCase(record.text(i)) == foldCase(name)) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> frozenHandle(const Record& record, std::uint64_t layer) {
    for (std::size_t i = 0; i < record.xdata(); ++i) {
        if ((record.code(i) == 331 || record.code(i) == 341) && record.handle(i) == layer) {
            return i;
        }
    }
    return std::nullopt;
}

/// Names stand between the braces that come last.
void addFrozenName(Drawing& drawing, RecordId viewport, const std::string& name) {
    const Record record = drawing.record(viewport);
    for (std::size_t i = record.size(); i-- > record.xdata();) {
        if (record.code(i) == 1002 && record.text(i) == "}") {
            drawing.insertTag(viewport,
                              i > 0 && record.code(i - 1) == 1002 && record.text(i - 1) == "}" ? i - 1 : i,
                              1003, name);
            return;
        }
    }
}

struct OverrideForm {
    const char* record;
    const char* group;
    int code;
};

OverrideForm formOf(LayerOverride kind) {
    switch (kind) {
        case LayerOverride::Color:
            return {"ADSK_XREC_LAYER_COLOR_OVR", "{ADSK_LYR_COLOR_OVERRIDE", 420};
        case LayerOverride::Linetype:
            return {"ADSK_XREC_LAYER_LINETYPE_OVR", "{ADSK_LYR_LINETYPE_OVERRIDE", 343};
        case LayerOverride::Lineweight:
            return {"ADSK_XREC_LAYER_LINEWT_OVR", "{ADSK_LYR_LINEWT_OVERRIDE", 91};
        case LayerOverride::Transparency:
            break;
    }
    return {"ADSK_XREC_LAYER_ALPHA_OVR", "{ADSK_LYR_ALPHA_OVERRIDE", 440};
}

/// Takes the group of a viewport out of an override's record.
void dropGroup(Drawing& drawing, RecordId id, std::uint64_t viewport) {
    const Record record = drawing.record(id);
    for (std::size_t i = 1; i + 1 < record.size(); ++i) {
        if (record.code(i) == 335 && record.handle(i) == viewport && record.code(i - 1) == 102) {
            for (int tag = 0; tag < 4; ++tag) {
                drawing.removeTag(id, i - 1);
            }
            return;
        }
    }
}

}  // namespace

bool isFrozenIn(const Drawing& drawing, RecordId viewport, RecordId layer) {
    const Record record = drawing.record(viewport);
    return drawing.versionNumber() >= FrozenByHandle
               ? frozenHandle(record, drawing.handle(layer)).has_value()
               : frozenName(record, entryName(drawing, layer)).has_value();
}

void setFrozenIn(Drawing& drawing, RecordId viewport, RecordId layer, bool frozen) {
    const Record record = drawing.record(viewport);
    const bool byHandle = drawing.versionNumber() >= FrozenByHandle;
    const auto there = byHandle ? frozenHandle(record, drawing.handle(layer))
                                : frozenName(record, entryName(drawing, layer));
    if (there.has_value() == frozen) {
        return;
    }
    if (!frozen) {
        drawing.removeTag(viewport, *there);
        return;
    }
    if (!byHandle) {
        addFrozenName(drawing, viewport, entryName(drawing, layer));
        return;
    }
    // Behind the last of them, else behind the zoom factor of circles, before the status.
    std::size_t at = record.xdata();
    for (std::size_t i = record.subclass("AcDbViewport"); i < record.xdata(); ++i) {
        if (record.code(i) == 72 || record.code(i) == 331 || record.code(i) == 341) {
            at = i + 1;
        }
    }
    drawing.insertTag(viewport, at, 331, formatHandle(drawing.handle(layer)));
}

bool setOverride(Drawing& drawing, RecordId viewport, RecordId layer, LayerOverride kind,
                 std::optional<std::uint32_t> value) {
    if (drawing.versionNumber() < FrozenByHandle || drawing.handle(viewport) == 0) {
        return false;
    }
    const OverrideForm form = formOf(kind);
    RecordId dictionary = extensionDictionary(drawing, layer);
    RecordId record = dictionary == NoRecord ? NoRecord : findInDictionary(drawing, dictionary, form.record);
    if (record != NoRecord) {
        dropGroup(drawing, record, drawing.handle(viewport));
    }
    if (!value) {
        return true;
    }
    if (dictionary == NoRecord) {
        dictionary = makeExtensionDictionary(drawing, layer);
    }
    if (record == NoRecord) {
        record = dictionary == NoRecord ? NoRecord : addObject(drawing, "XRECORD", "AcDbXrecord", dictionary);
        if (record == NoRecord) {
            return false;
        }
        drawing.appendTag(record, 280, std::int64_t{1});
        addDictionaryEntry(drawing, dictionary, form.record, record);
    }
    drawing.appendTag(record, 102, std::string(form.group));
    drawing.appendTag(record, 335, formatHandle(drawing.handle(viewport)));
    if (kind == LayerOverride::Linetype) {
        drawing.appendTag(record, form.code, formatHandle(*value));
    } else {
        drawing.appendTag(record, form.code, std::int64_t{static_cast<std::int32_t>(*value)});
    }
    drawing.appendTag(record, 102, std::string("}"));
    return true;
}

}  // namespace drafthost
