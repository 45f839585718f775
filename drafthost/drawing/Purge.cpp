// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Purge.h"

#include <algorithm>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Usage.h"

namespace drafthost {

namespace {

constexpr std::int64_t External = 4 | 8;
constexpr std::int64_t FromExternal = 16;
constexpr std::int64_t ShapeFile = 1;

bool isOne(const std::string& folded, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char* name) { return folded == foldCase(name); });
}

/// A record that a table keeps whatever refers to it.
bool isKept(Table table, const std::string& folded) {
    switch (table) {
        case Table::Layer:
            return isOne(folded, {"0", "Defpoints"});
        case Table::Ltype:
            return isOne(folded, {"ByLayer", "ByBlock", "Continuous"});
        case Table::Style:
        case Table::Dimstyle:
            return isOne(folded, {"Standard"});
        case Table::Appid:
            return isOne(folded, {"ACAD"});
        default:
            return false;
    }
}

const std::unordered_set<std::string>& namesOf(const Usage& usage, Table table) {
    switch (table) {
        case Table::Layer:
            return usage.layers;
        case Table::Ltype:
            return usage.linetypes;
        case Table::Style:
            return usage.styles;
        case Table::Dimstyle:
            return usage.dimstyles;
        case Table::Appid:
            return usage.applications;
        default:
            return usage.blocks;
    }
}

bool isUsed(const Drawing& drawing, const Usage& usage, Table table, RecordId id) {
    const std::string name = foldCase(entryName(drawing, id));
    // Layers of external references carry a bar.
    return isKept(table, name) || namesOf(usage, table).contains(name) ||
           usage.handles.contains(drawing.handle(id)) || name.find('|') != std::string::npos ||
           (drawing.record(id).integerOr(70, 0) & FromExternal) != 0;
}

std::vector<Purgeable> unusedEntries(const Drawing& drawing, Table table) {
    const Usage usage(drawing);
    std::vector<Purgeable> result;
    for (const RecordId id : tableEntries(drawing, table)) {
        if (table == Table::Style && (drawing.record(id).integerOr(70, 0) & ShapeFile) != 0) {
            continue;
        }
        if (!isUsed(drawing, usage, table, id)) {
            result.push_back({entryName(drawing, id), id});
        }
    }
    return result;
}

bool isLayoutBlock(const Drawing& drawing, const Block& block) {
    const std::string name = foldCase(block.name);
    if (name.starts_with(foldCase("*Model_Space")) || name.starts_with(foldCase("*Paper_Space")) ||
        isOne(name, {"$MODEL_SPACE", "$PAPER_SPACE"})) {
        return true;
    }
    return std::any_of(layouts(drawing).begin(), layouts(drawing).end(),
                       [&](const Layout& layout) { return foldCase(layout.blockName) == name; });
}

std::vector<Purgeable> unusedBlocks(const Drawing& drawing) {
    const Usage usage(drawing);
    std::vector<Purgeable> result;
    for (const Block& block : blocks(drawing)) {
        const std::string name = foldCase(block.name);
        const std::int64_t flags = drawing.record(block.begin).integerOr(70, 0);
        const bool byHandle =
            block.blockRecord != NoRecord && usage.handles.contains(drawing.handle(block.blockRecord));
        if (!isLayoutBlock(drawing, block) && (name.empty() || !usage.blocks.contains(name)) && !byHandle &&
            (flags & (External | FromExternal)) == 0 && name.find('|') == std::string::npos) {
            result.push_back({block.name, block.begin});
        }
    }
    return result;
}

struct StyleDictionary {
    PurgeKind kind;
    const char* dictionary;
    std::vector<const char*> kept;
};

const StyleDictionary* styleDictionary(PurgeKind kind) {
    static const std::vector<StyleDictionary> known = {
        {PurgeKind::Material, "ACAD_MATERIAL", {"ByBlock", "ByLayer", "Global"}},
        {PurgeKind::MultileaderStyle, "ACAD_MLEADERSTYLE", {"Standard"}},
        {PurgeKind::PlotStyle, "ACAD_PLOTSTYLENAME", {"Normal"}},
        {PurgeKind::MlineStyle, "ACAD_MLINESTYLE", {"Standard"}},
        {PurgeKind::TableStyle, "ACAD_TABLESTYLE", {"Standard"}},
    };
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const StyleDictionary& one) { return one.kind == kind; });
    return found == known.end() ? nullptr : &*found;
}

std::vector<Purgeable> unusedStyles(const Drawing& drawing, const StyleDictionary& style) {
    std::vector<Purgeable> result;
    const RecordId dictionary = findInDictionary(drawing, rootDictionary(drawing), style.dictionary);
    if (dictionary == NoRecord) {
        return result;
    }
    const Usage usage(drawing);
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, dictionary)) {
        const bool kept = std::any_of(style.kept.begin(), style.kept.end(), [&](const char* name) {
            return foldCase(name) == foldCase(entry.name);
        });
        if (!kept && !usage.handles.contains(entry.handle) &&
            !(style.kind == PurgeKind::MlineStyle && usage.mlineStyles.contains(foldCase(entry.name)))) {
            result.push_back({entry.name, drawing.findHandle(entry.handle)});
        }
    }
    return result;
}

std::vector<Purgeable> emptyGroups(const Drawing& drawing) {
    std::vector<Purgeable> result;
    const RecordId dictionary = findInDictionary(drawing, rootDictionary(drawing), "ACAD_GROUP");
    if (dictionary == NoRecord) {
        return result;
    }
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, dictionary)) {
        const RecordId group = drawing.findHandle(entry.handle);
        bool holds = false;
        for (std::size_t i = 0; group != NoRecord && i < drawing.record(group).size(); ++i) {
            holds |= drawing.record(group).code(i) == 340 &&
                     drawing.findHandle(drawing.record(group).handle(i)) != NoRecord;
        }
        if (!holds && group != NoRecord) {
            result.push_back({entry.name, group});
        }
    }
    return result;
}

bool isLockedEntity(const Drawing& drawing, RecordId id) {
    constexpr std::int64_t Locked = 4;
    const RecordId layer = findEntry(drawing, Table::Layer, drawing.record(id).textOr(8, "0"));
    return layer != NoRecord && (drawing.record(layer).integerOr(70, 0) & Locked) != 0;
}

bool isZeroLength(const Record& record) {
    const std::string_view type = record.type();
    const Point first = record.pointOr(10, {});
    if (type == "LINE") {
        return record.pointOr(11, {}) == first;
    }
    if (type == "ARC") {
        return record.realOr(40, 1) == 0;
    }
    if (type != "LWPOLYLINE") {
        return false;
    }
    for (std::size_t i = 1; i < record.xdata(); ++i) {
        if (record.code(i) == 10 && !(record.point(i) == first)) {
            return false;
        }
    }
    return true;
}

bool isEmptyText(const Record& record) {
    const std::string_view type = record.type();
    if (type != "TEXT" && type != "MTEXT") {
        return false;
    }
    const std::string text = record.textOr(3, "") + record.textOr(1, "");
    return text.find_first_not_of(" \t") == std::string::npos;
}

std::vector<Purgeable> geometry(const Drawing& drawing, bool (*matches)(const Record&)) {
    std::vector<Purgeable> result;
    for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
        if (matches(drawing.record(id)) && !isLockedEntity(drawing, id)) {
            result.push_back({"", id});
        }
    }
    return result;
}

Table tableOfKind(PurgeKind kind) {
    switch (kind) {
        case PurgeKind::Dimstyle:
            return Table::Dimstyle;
        case PurgeKind::Layer:
            return Table::Layer;
        case PurgeKind::Linetype:
            return Table::Ltype;
        case PurgeKind::Regapp:
            return Table::Appid;
        default:
            return Table::Style;
    }
}

/// Takes an object and what it owns out of its dictionary.
void removeFromDictionary(Drawing& drawing, const char* name, RecordId object) {
    const RecordId dictionary = findInDictionary(drawing, rootDictionary(drawing), name);
    const std::uint64_t handle = drawing.handle(object);
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, dictionary)) {
        if (entry.handle == handle) {
            drawing.removeTag(dictionary, entry.tag + 1);
            drawing.removeTag(dictionary, entry.tag);
            break;
        }
    }
    for (const RecordId owned : ownedObjects(drawing, object)) {
        drawing.deleteRecord(owned);
    }
    drawing.deleteRecord(object);
}

}  // namespace

std::vector<Purgeable> purgeable(const Drawing& drawing, PurgeKind kind) {
    switch (kind) {
        case PurgeKind::Block:
            return unusedBlocks(drawing);
        case PurgeKind::Group:
            return emptyGroups(drawing);
        case PurgeKind::Shape:
        case PurgeKind::VisualStyle:
            // A shape names no file, and what shows a visual style is not told by the drawing alone.
            return {};
        case PurgeKind::ZeroLength:
            return geometry(drawing, isZeroLength);
        case PurgeKind::EmptyText:
            return geometry(drawing, isEmptyText);
        case PurgeKind::Dimstyle:
        case PurgeKind::Layer:
        case PurgeKind::Linetype:
        case PurgeKind::TextStyle:
        case PurgeKind::Regapp:
            return unusedEntries(drawing, tableOfKind(kind));
        default:
            return unusedStyles(drawing, *styleDictionary(kind));
    }
}

void purge(Drawing& drawing, PurgeKind kind, const Purgeable& what) {
    switch (kind) {
        case PurgeKind::Block:
            deleteBlock(drawing, what.name);
            break;
        case PurgeKind::Group:
            removeFromDictionary(drawing, "ACAD_GROUP", what.record);
            break;
        case PurgeKind::ZeroLength:
        case PurgeKind::EmptyText:
            deleteEntity(drawing, what.record);
            break;
        case PurgeKind::Dimstyle:
        case PurgeKind::Layer:
        case PurgeKind::Linetype:
        case PurgeKind::TextStyle:
        case PurgeKind::Regapp:
            deleteEntry(drawing, tableOfKind(kind), what.record);
            break;
        case PurgeKind::Shape:
        case PurgeKind::VisualStyle:
            break;
        default:
            removeFromDictionary(drawing, styleDictionary(kind)->dictionary, what.record);
            break;
    }
}

std::size_t purgeAll(Drawing& drawing) {
    std::size_t total = 0;
    for (std::size_t before = 1; before != 0;) {
        before = 0;
        for (int kind = 0; kind < static_cast<int>(PurgeKind::Regapp); ++kind) {
            for (const Purgeable& what : purgeable(drawing, static_cast<PurgeKind>(kind))) {
                purge(drawing, static_cast<PurgeKind>(kind), what);
                ++before;
            }
        }
        total += before;
    }
    return total;
}

bool isReferenced(const Drawing& drawing, RecordId record) {
    const std::string_view type = drawing.type(record);
    if (type == "BLOCK_RECORD" || type == "BLOCK") {
        const std::vector<Purgeable> unused = unusedBlocks(drawing);
        const std::string name = foldCase(drawing.record(record).textOr(2, ""));
        return std::none_of(unused.begin(), unused.end(),
                            [&](const Purgeable& one) { return foldCase(one.name) == name; });
    }
    const auto table = tableOf(type);
    return table && isUsed(drawing, Usage(drawing), *table, record);
}

}  // namespace drafthost
