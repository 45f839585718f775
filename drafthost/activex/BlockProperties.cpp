// SPDX-License-Identifier: GPL-3.0-or-later
// Definitions of blocks.

#include <algorithm>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/ExtensionData.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/NewLayout.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/Xref.h"

namespace drafthost::activex {

RecordId blockObject(const Drawing& drawing, std::string_view name) {
    const Block* block = findBlock(drawing, name);
    if (block == nullptr && name.starts_with('*')) {
        // R12 has the two spaces under names of its own.
        block = findBlock(drawing, "$" + std::string(name.substr(1)));
    }
    if (block == nullptr) {
        return findEntry(drawing, Table::BlockRecord, name);
    }
    return block->blockRecord != NoRecord ? block->blockRecord : block->begin;
}

const Block* blockOf(const Drawing& drawing, RecordId object) {
    return findBlock(drawing, drawing.record(object).textOr(2, ""));
}

std::vector<Value> blockMembers(Call& call) {
    std::vector<Value> all;
    const Drawing& drawing = call.drawing();
    if (const Block* block = blockOf(drawing, call.id())) {
        for (const RecordId id : entitiesOf(drawing, *block)) {
            all.push_back(call.object(id));
        }
    }
    return all;
}

namespace {

constexpr std::int64_t External = 4 | 8;

Record begin(const Call& call) {
    const Block* block = blockOf(call.drawing(), call.id());
    if (block == nullptr) {
        failAutomation("Key not found");
    }
    return call.drawing().record(block->begin);
}

// Programs know the spaces of an R12 drawing by the names that they have had since.
std::string modelName(const Record& record) {
    const std::string name = record.textOr(2, "");
    return foldCase(name) == foldCase("$Model_Space")   ? "*Model_Space"
           : foldCase(name) == foldCase("$Paper_Space") ? "*Paper_Space"
                                                        : name;
}

const Layout* layoutOfBlock(const Call& call) {
    const std::string name = foldCase(modelName(call.record()));
    for (const Layout& layout : layouts(call.drawing())) {
        if (foldCase(layout.blockName) == name) {
            return &layout;
        }
    }
    return nullptr;
}

Result getName(Call& call) {
    return Result::text(modelName(call.record()));
}
void putName(Call& call, const Value& value) {
    Drawing& drawing = call.drawing();
    const std::string old = entryName(drawing, call.id());
    const std::string& name = textOf(value);
    if (layoutOfBlock(call) != nullptr || old.find('|') != std::string::npos ||
        name.find_first_of("<>/\\\":;?*|,=`") != std::string::npos || name.empty()) {
        failAutomation("Invalid input");
    }
    if (foldCase(name) != foldCase(old) && findBlock(drawing, name) != nullptr) {
        failAutomation("Duplicate key");
    }
    renameEntry(drawing, Table::BlockRecord, call.id(), name);
    call.changed(true);
}
Result origin(Call& call) {
    return Result::point(begin(call).pointOr(10, {}));
}
void putOrigin(Call& call, const Value& value) {
    call.drawing().putPoint(begin(call).id(), 10, pointOf(value), true, {70});
    call.changed(true);
}
Result isLayout(Call& call) {
    return Result::boolean(layoutOfBlock(call) != nullptr);
}
Result isXref(Call& call) {
    const Block* block = blockOf(call.drawing(), call.id());
    return Result::boolean(block != nullptr &&
                           (call.drawing().record(block->begin).integerOr(70, 0) & External) != 0);
}
Result isDynamic(Call& call) {
    const RecordId dictionary = extensionDictionary(call.drawing(), call.id());
    return Result::boolean(dictionary != NoRecord &&
                           findInDictionary(call.drawing(), dictionary, "ACAD_ENHANCEDBLOCK") != NoRecord);
}
Result getLayout(Call& call) {
    const Layout* layout = layoutOfBlock(call);
    if (layout == nullptr || layout->object == NoRecord) {
        failAutomation("Not applicable");
    }
    return call.object(layout->object);
}
Result path(Call& call) {
    return Result::text(begin(call).textOr(1, ""));
}
void putPath(Call& call, const Value& value) {
    if ((begin(call).integerOr(70, 0) & External) == 0) {
        failAutomation("Not applicable");
    }
    call.drawing().put(begin(call).id(), 1, textOf(value), {3});
    call.changed(true);
}
Result comments(Call& call) {
    return Result::text(begin(call).textOr(4, ""));
}
void putComments(Call& call, const Value& value) {
    call.drawing().put(begin(call).id(), 4, textOf(value), {1});
    call.changed(true);
}
/// A reference that cannot be resolved has no drawing behind it.
Result xrefDatabase(Call&) {
    return Value();
}

Xref xrefOf(Call& call) {
    const RecordId block = begin(call).id();
    for (const Xref& xref : xrefs(call.drawing())) {
        if (xref.block == block) {
            return xref;
        }
    }
    failAutomation("Not applicable");
}
std::string xrefFileOf(Call& call, const Xref& xref) {
    const auto folder = call.session().host.getVar("DWGPREFIX");
    std::string file = xrefFile(xref.path, folder && folder->isString() ? folder->toString() : "");
    if (file.empty()) {
        failAutomation("File not found");
    }
    return file;
}
Result detach(Call& call) {
    detachXref(call.drawing(), xrefOf(call).name);
    call.changed(true);
    return {};
}
Result unload(Call& call) {
    setXrefLoaded(call.drawing(), xrefOf(call), false);
    call.changed(true);
    return {};
}
Result reload(Call& call) {
    const Xref xref = xrefOf(call);
    xrefFileOf(call, xref);
    setXrefLoaded(call.drawing(), xref, true);
    call.changed(true);
    return {};
}
Result bind(Call& call) {
    const Xref xref = xrefOf(call);
    std::string error;
    if (!bindXref(call.drawing(), xref.name, xrefFileOf(call, xref), booleanOf(call.arg(0)), error)) {
        failAutomation(error);
    }
    call.changed(true);
    return {};
}

constexpr Property BlockProperty[] = {
    {"Name", Access::Custom, 2, 0, getName, putName},
    {"Origin", Access::Custom, 10, 0, origin, putOrigin},
    {"IsLayout", Access::Custom, 0, 0, isLayout},
    {"IsXRef", Access::Custom, 0, 0, isXref},
    {"IsDynamicBlock", Access::Custom, 0, 0, isDynamic},
    {"Layout", Access::Custom, 0, 0, getLayout},
    {"Path", Access::Custom, 0, 0, path, putPath},
    {"Comments", Access::Custom, 0, 0, comments, putComments},
    {"Explodable", Access::Bool, 280, 1},
    {"BlockScaling", Access::Integer, 281, 0},
    {"Units", Access::Integer, 70, 0},
    {"XRefDatabase", Access::Custom, 0, 0, xrefDatabase},
};
constexpr Method BlockMethods[] = {
    {"Detach", 0, 0, detach},
    {"Unload", 0, 0, unload},
    {"Reload", 0, 0, reload},
    {"Bind", 1, 1, bind},
};

}  // namespace

Properties blockProperties() {
    return BlockProperty;
}
Methods blockMethods() {
    return BlockMethods;
}

}  // namespace drafthost::activex
