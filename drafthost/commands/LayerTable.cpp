// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/LayerTable.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>

#include "drafthost/drawing/ApplicationData.h"
#include "drafthost/drawing/LayerLook.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Transparency.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

namespace {

constexpr const char* DescriptionApplication = "AcAecLayerStandard";

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

void removeCode(Drawing& drawing, RecordId id, int code) {
    Record record = drawing.record(id);
    auto tag = record.find(code);
    if (tag && *tag < record.xdata()) {
        drawing.removeTag(id, *tag);
    }
}

}  // namespace

std::vector<RecordId> matchingLayers(const Drawing& drawing, std::string_view list) {
    std::vector<std::string> wanted;
    std::vector<std::string> patterns;
    while (true) {
        size_t comma = std::min(list.find(','), list.size());
        std::string_view part = trimmed(list.substr(0, comma));
        if (!part.empty()) {
            if (findEntry(drawing, Table::Layer, part) != NoRecord) {
                wanted.push_back(foldCase(part));
            } else {
                patterns.emplace_back(part);
            }
        }
        if (comma == list.size()) {
            break;
        }
        list.remove_prefix(comma + 1);
    }
    std::vector<RecordId> result;
    for (RecordId layer : tableEntries(drawing, Table::Layer)) {
        std::string name = entryName(drawing, layer);
        bool matches = std::find(wanted.begin(), wanted.end(), foldCase(name)) != wanted.end() ||
                       std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
                           return lisp::wildcardMatch(name, pattern, true);
                       });
        if (matches) {
            result.push_back(layer);
        }
    }
    return result;
}

void provideLayerZero(Drawing& drawing, std::string_view list) {
    if (findEntry(drawing, Table::Layer, "0") != NoRecord) {
        return;
    }
    for (bool more = true; more;) {
        size_t comma = list.find(',');
        more = comma != std::string_view::npos;
        if (trimmed(list.substr(0, comma)) == "0") {
            addEntry(drawing, Table::Layer, "0");
            return;
        }
        list.remove_prefix(more ? comma + 1 : 0);
    }
}

std::string layerNameFault(const Drawing& drawing, std::string_view name) {
    std::string quoted = "\"" + std::string(name) + "\"";
    if (name.empty()) {
        return "A layer needs a name.";
    }
    bool longNames = drawing.versionNumber() >= 1015;
    auto allowed = [&](unsigned char c) {
        return longNames ? c >= ' ' && std::string_view("<>/\\\":;?*|,=`").find(static_cast<char>(c)) ==
                                           std::string_view::npos
                         : std::isalnum(c) != 0 || c == '$' || c == '-' || c == '_';
    };
    size_t length = static_cast<size_t>(
        std::count_if(name.begin(), name.end(), [](unsigned char c) { return (c & 0xC0) != 0x80; }));
    if (length > (longNames ? 255u : 31u)) {
        return "The layer name " + quoted + " is longer than " + (longNames ? "255" : "31") + " characters.";
    }
    if (!std::all_of(name.begin(), name.end(), allowed)) {
        return "The layer name " + quoted +
               " holds a character that this version of the drawing does not allow.";
    }
    return {};
}

Color layerColor(const Drawing& drawing, RecordId layer) {
    Record record = drawing.record(layer);
    Color color{static_cast<int>(std::abs(record.integerOr(62, 7)))};
    std::int64_t rgb = record.integerOr(420, -1);
    if (rgb >= 0) {
        color.rgb = static_cast<int>(rgb & 0xFFFFFF);
    }
    return color;
}

void setLayerColor(Drawing& drawing, RecordId layer, const Color& color) {
    int sign = layerIsOff(drawing, layer) ? -1 : 1;
    drawing.put(layer, 62, std::int64_t{sign} * color.index, {70, 2});
    // The name of a colour book's colour does not outlive a new colour.
    removeCode(drawing, layer, 430);
    if (color.rgb) {
        drawing.put(layer, 420, std::int64_t{*color.rgb}, {62});
    } else {
        removeCode(drawing, layer, 420);
    }
}

bool layerIsOff(const Drawing& drawing, RecordId layer) {
    return drawing.record(layer).integerOr(62, 7) < 0;
}

bool layerHas(const Drawing& drawing, RecordId layer, LayerFlag flag) {
    return (drawing.record(layer).integerOr(70, 0) & flag) != 0;
}

void setLayerFlag(Drawing& drawing, RecordId layer, LayerFlag flag, bool on) {
    setLayerBit(drawing, layer, flag, on);
}

void setLayerLinetype(Drawing& drawing, RecordId layer, std::string_view linetype) {
    drawing.put(layer, 6, std::string(linetype), {420, 62, 70, 2});
}

void setLayerLineweight(Drawing& drawing, RecordId layer, int hundredths) {
    drawing.put(layer, 370, std::int64_t{hundredths}, {290, 6, 420, 62, 70, 2});
}

void setLayerPlots(Drawing& drawing, RecordId layer, bool plots) {
    if ((drawing.record(layer).integerOr(290, 1) != 0) != plots) {
        drawing.put(layer, 290, std::int64_t{plots}, {6, 420, 62, 70, 2});
    }
}

void setLayerPlotStyle(Drawing& drawing, RecordId layer, std::uint64_t handle) {
    drawing.put(layer, 390, formatHandle(handle), {370, 290, 6, 420, 62, 70, 2});
}

void setLayerMaterial(Drawing& drawing, RecordId layer, std::uint64_t handle) {
    drawing.put(layer, 347, formatHandle(handle), {390, 370, 290, 6, 420, 62, 70, 2});
}

int layerTransparency(const Drawing& drawing, RecordId layer) {
    Record record = drawing.record(layer);
    auto [begin, end] = xdataRange(record, LayerTransparencyApplication);
    for (size_t i = begin; i < end; ++i) {
        if (record.code(i) == 1071) {
            std::int64_t alpha = record.integer(i) & 0xFF;
            return static_cast<int>(std::lround(100.0 - static_cast<double>(alpha) * 100.0 / 255.0));
        }
    }
    return 0;
}

void setLayerTransparency(Drawing& drawing, RecordId layer, int percent) {
    if (layerTransparency(drawing, layer) == percent) {
        return;
    }
    setXdata(drawing, layer, LayerTransparencyApplication, {{1071, transparencyOf(percent)}});
}

std::string layerDescription(const Drawing& drawing, RecordId layer) {
    Record record = drawing.record(layer);
    auto [begin, end] = xdataRange(record, DescriptionApplication);
    std::string last;
    size_t texts = 0;
    for (size_t i = begin; i < end; ++i) {
        if (record.code(i) == 1000) {
            last = record.text(i);
            ++texts;
        }
    }
    // The first text is the name of a layer standard, the second the description.
    return texts >= 2 ? last : std::string();
}

void setLayerDescription(Drawing& drawing, RecordId layer, std::string_view description) {
    if (layerDescription(drawing, layer) == description) {
        return;
    }
    Record record = drawing.record(layer);
    auto [begin, end] = xdataRange(record, DescriptionApplication);
    std::string standard = begin < end && record.code(begin) == 1000 ? record.text(begin) : std::string();
    setXdata(drawing, layer, DescriptionApplication, {{1000, standard}, {1000, std::string(description)}});
}

bool reconcileLayer(Drawing& drawing, RecordId layer) {
    Record record = drawing.record(layer);
    std::uint64_t extension = 0;
    for (size_t i = 0; i + 1 < record.size(); ++i) {
        if (record.code(i) == 102 && record.text(i) == "{ACAD_XDICTIONARY" && record.code(i + 1) == 360) {
            extension = record.handle(i + 1);
        }
    }
    RecordId dictionary = extension ? drawing.findHandle(extension) : NoRecord;
    RecordId note = dictionary == NoRecord
                        ? NoRecord
                        : findInDictionary(drawing, dictionary, "ADSK_XREC_LAYER_RECONCILED");
    if (note == NoRecord || drawing.record(note).integerOr(290, 1) != 0) {
        return false;
    }
    drawing.put(note, 290, std::int64_t{1});
    return true;
}

std::uint64_t namedObject(const Drawing& drawing, std::string_view dictionary, std::string_view name) {
    RecordId root = rootDictionary(drawing);
    RecordId group = root == NoRecord ? NoRecord : findInDictionary(drawing, root, dictionary);
    if (group != NoRecord) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, group)) {
            if (foldCase(entry.name) == foldCase(name)) {
                return entry.handle;
            }
        }
    }
    return 0;
}

std::vector<std::string> namedObjects(const Drawing& drawing, std::string_view dictionary) {
    std::vector<std::string> names;
    RecordId root = rootDictionary(drawing);
    RecordId group = root == NoRecord ? NoRecord : findInDictionary(drawing, root, dictionary);
    if (group != NoRecord) {
        for (const DictionaryEntry& entry : dictionaryEntries(drawing, group)) {
            names.push_back(entry.name);
        }
    }
    return names;
}

}  // namespace drafthost::commands
