// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/SelectionAnswer.h"

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/PickSet.h"
#include "drafthost/drawing/Blocks.h"

namespace drafthost::automation {
namespace {

std::vector<EntityName> alive(const Drawing& drawing, std::vector<EntityName> names) {
    std::erase_if(names, [&](EntityName name) { return !aliveRecord(drawing, name); });
    return names;
}

}  // namespace

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
