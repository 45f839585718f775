// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/SelectionAnswer.h"

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityEdit.h"
#include "drafthost/automation/PickSet.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"

namespace drafthost::automation {
namespace {

std::vector<EntityName> alive(const Drawing& drawing, std::vector<EntityName> names) {
    std::erase_if(names, [&](EntityName name) { return !aliveRecord(drawing, name); });
    return names;
}

}  // namespace

bool isInCurrentSpace(const Drawing& drawing, RecordId id) {
    const Layout* layout = layoutOf(drawing, id);
    return layout != nullptr && (modelSpaceIsCurrent(drawing) ? layout->model : isActivePaper(*layout));
}

std::vector<EntityName> entitiesThat(const Drawing& drawing, const std::function<bool(RecordId)>& accepts) {
    std::vector<EntityName> result;
    for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
        if (accepts(id)) {
            result.push_back(nameOf(id));
        }
    }
    return result;
}

bool isVisibleHere(const Drawing& drawing, RecordId id) {
    if (!isInCurrentSpace(drawing, id)) {
        return false;
    }
    const RecordId layer = findEntry(drawing, Table::Layer, drawing.record(id).textOr(8, "0"));
    return layer == NoRecord || (drawing.record(layer).integerOr(70, 0) & 1) == 0;
}

bool isOff(const Drawing& drawing, RecordId id) {
    const RecordId layer = findEntry(drawing, Table::Layer, drawing.record(id).textOr(8, "0"));
    return layer != NoRecord && drawing.record(layer).integerOr(62, 7) < 0;
}

std::vector<EntityName> allSelectable(const Drawing& drawing) {
    return entitiesThat(drawing,
                        [&](RecordId id) { return isVisibleHere(drawing, id) && !isLocked(drawing, id); });
}

std::vector<EntityName> lastVisible(const Drawing& drawing) {
    // What can be seen here stands in one section; from its end on the answer is near.
    for (RecordId id = lastEntity(drawing); id != NoRecord && drawing.type(id) != "SECTION";
         id = drawing.previous(id)) {
        if (!isSubEntity(drawing, id) && isVisibleHere(drawing, id) && !isOff(drawing, id)) {
            return {nameOf(id)};
        }
    }
    return {};
}

std::optional<std::vector<EntityName>> namedObjects(const Drawing& drawing, const Value& answer) {
    if (answer.isEname()) {
        return alive(drawing, {answer.toEname()});
    }
    if (const PickSet* set = pickSetOf(answer)) {
        return alive(drawing, set->members());
    }
    if (answer.isCons() && answer.car().isEname()) {
        return alive(drawing, {answer.car().toEname()});
    }
    const std::uint64_t handle = answer.isString() ? parseHandle(answer.toString()) : 0;
    const RecordId record = handle != 0 ? drawing.findHandle(handle) : NoRecord;
    if (record == NoRecord || !layoutOf(drawing, record)) {
        return std::nullopt;
    }
    return std::vector<EntityName>{nameOf(record)};
}

std::string needsPicking(std::string_view word) {
    return "Objects cannot be picked by " + std::string(word) +
           " here: name them by ALL, Last, Previous, a handle or an entity name.";
}

std::string namesNothing(std::string_view answer) {
    return "\"" + std::string(answer) + "\" names no object to select.";
}

}  // namespace drafthost::automation
