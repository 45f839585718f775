// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Xref.h"

#include <algorithm>
#include <filesystem>

#include "drafthost/drawing/BlockEdit.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/Import.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t External = 4;
constexpr std::int64_t Overlay = 8;
constexpr std::int64_t Resolved = 32;
constexpr Table Dependent[] = {Table::Layer, Table::Ltype, Table::Style, Table::Dimstyle};

/// A name that neither drawing has: "reference$0$name", with a higher number when that is taken.
std::string boundName(const Drawing& to, Table table, const std::string& xref, const std::string& name) {
    for (int number = 0;; ++number) {
        std::string candidate = xref;
        candidate.append("$").append(std::to_string(number)).append("$").append(name);
        const bool taken = table == Table::BlockRecord ? findBlock(to, candidate) != nullptr
                                                       : findEntry(to, table, candidate) != NoRecord;
        if (!taken) {
            return candidate;
        }
    }
}

/// Names that mean the same in every drawing.
bool isCommon(Table table, const std::string& name) {
    const std::string folded = foldCase(name);
    switch (table) {
        case Table::Layer:
            return name == "0" || folded == foldCase("Defpoints");
        case Table::Ltype:
            return folded == foldCase("ByLayer") || folded == foldCase("ByBlock") ||
                   folded == foldCase("Continuous");
        case Table::Style:
        case Table::Dimstyle:
            return name.empty();
        default:
            return name.starts_with('*') || name.starts_with('$') || name.starts_with('_');
    }
}

/// Gives the drawing that comes in the names under which its things will stand.
void renameForBinding(Drawing& other, const Drawing& to, const std::string& xref) {
    for (const Table table : Dependent) {
        for (const RecordId id : tableEntries(other, table)) {
            const std::string name = entryName(other, id);
            if (!isCommon(table, name)) {
                renameEntry(other, table, id, boundName(to, table, xref, name));
            }
        }
    }
    const std::vector<Block> all = blocks(other);
    for (const Block& block : all) {
        if (!isCommon(Table::BlockRecord, block.name)) {
            renameEntry(other, Table::BlockRecord,
                        block.blockRecord != NoRecord ? block.blockRecord : block.begin,
                        boundName(to, Table::BlockRecord, xref, block.name));
        }
    }
}

void dropDependent(Drawing& drawing, const std::string& name) {
    const std::string head = foldCase(name) + "|";
    for (const Table table : Dependent) {
        for (const RecordId id : tableEntries(drawing, table)) {
            if (foldCase(entryName(drawing, id)).starts_with(head)) {
                deleteEntry(drawing, table, id);
            }
        }
    }
    const std::vector<Block> all = blocks(drawing);
    for (const Block& block : all) {
        if (foldCase(block.name).starts_with(head)) {
            deleteBlock(drawing, block.name);
        }
    }
}

}  // namespace

std::vector<Xref> xrefs(const Drawing& drawing) {
    std::vector<Xref> result;
    for (const Block& block : blocks(drawing)) {
        const Record record = drawing.record(block.begin);
        const std::int64_t flags = record.integerOr(70, 0);
        if ((flags & External) != 0) {
            result.push_back({block.name, record.textOr(1, ""), (flags & Overlay) != 0, block.begin});
        }
    }
    return result;
}

std::string xrefFile(const std::string& stored, const std::string& folder) {
    std::string path = stored;
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.empty()) {
        return {};
    }
    const fs::path given(path);
    std::vector<fs::path> places{given.is_absolute() ? given : fs::path(folder) / given,
                                 fs::path(folder) / given.filename()};
    const std::size_t count = places.size();
    for (std::size_t i = 0; i < count; ++i) {
        for (const char* extension : {".dxf", ".DXF", ".dwg"}) {
            places.push_back(fs::path(places[i]).replace_extension(extension));
        }
    }
    std::error_code code;
    for (const fs::path& place : places) {
        if (fs::is_regular_file(place, code)) {
            return place.lexically_normal().string();
        }
    }
    return {};
}

bool addXref(Drawing& drawing, const std::string& name, const std::string& path, bool overlay) {
    if (!addBlock(drawing, name, {})) {
        return false;
    }
    const RecordId begin = findBlock(drawing, name)->begin;
    drawing.put(begin, 70, External | Resolved | (overlay ? Overlay : 0), {2});
    drawing.put(begin, 1, path, {3});
    return true;
}

void setXrefPath(Drawing& drawing, const Xref& xref, const std::string& path) {
    drawing.put(xref.block, 1, path, {3});
}

void setXrefLoaded(Drawing& drawing, const Xref& xref, bool loaded) {
    const std::int64_t flags = drawing.record(xref.block).integerOr(70, 0);
    drawing.put(xref.block, 70, loaded ? flags | Resolved : flags & ~Resolved, {2});
}

void detachXref(Drawing& drawing, const std::string& name) {
    const std::vector<RecordId> inserts = referencesTo(drawing, name);
    for (const RecordId id : inserts) {
        deleteEntity(drawing, id);
    }
    deleteBlock(drawing, name);
    dropDependent(drawing, name);
}

bool bindXref(Drawing& drawing, const std::string& name, const std::string& file, bool merge,
              std::string& error) {
    const auto other = Drawing::open(file, error);
    if (other == nullptr) {
        return false;
    }
    if (!merge) {
        renameForBinding(*other, drawing, name);
    }
    const Block* block = findBlock(drawing, name);
    if (block == nullptr) {
        error = "There is no reference \"" + name + "\" in the drawing.";
        return false;
    }
    const std::string own = block->name;
    const RecordId begin = block->begin;
    const std::string aside = anonymousName(drawing, 'X');
    if (!Importer(*other, drawing).drawingAsBlock(aside)) {
        error = file + ": the drawing has no section for blocks";
        return false;
    }
    const std::vector<RecordId> contents = entitiesOf(drawing, *findBlock(drawing, aside));
    clearBlock(drawing, own);
    for (const RecordId id : contents) {
        copyEntity(drawing, id, {own});
    }
    deleteBlock(drawing, aside);
    drawing.put(begin, 70,
                drawing.record(begin).integerOr(70, 0) & ~(External | Overlay | Resolved | 16 | 64), {2});
    drawing.put(begin, 1, std::string(), {3});
    drawing.putPoint(begin, 10, headerPoint(*other, "$INSBASE", {}), true, {70, 2});
    dropDependent(drawing, own);
    return true;
}

}  // namespace drafthost
