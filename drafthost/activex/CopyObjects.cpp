// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/activex/CopyObjects.h"

#include "drafthost/activex/Classes.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Import.h"
#include "drafthost/drawing/NewLayout.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

/// The block that an owner stands for; nothing when it is a table or a dictionary.
std::optional<BlockTarget> blockTarget(const Object* owner) {
    if (owner == nullptr || owner->record == NoRecord) {
        return std::nullopt;
    }
    const Drawing& drawing = *owner->database->drawing;
    const std::string_view type = drawing.type(owner->record);
    if (type != "BLOCK_RECORD" && type != "BLOCK") {
        return std::nullopt;
    }
    return BlockTarget{drawing.record(owner->record).textOr(2, "")};
}

RecordId importOne(const Drawing& from, RecordId id, Drawing& to, const std::optional<BlockTarget>& target) {
    Importer importer(from, to);
    const std::string_view type = from.type(id);
    if (type == "BLOCK_RECORD" || type == "BLOCK") {
        const std::string name = from.record(id).textOr(2, "");
        return importer.block(name) ? blockObject(to, name) : NoRecord;
    }
    if (const auto table = tableOf(type)) {
        return importer.entry(*table, entryName(from, id));
    }
    return importer.entity(id, target.value_or(BlockTarget{"*Model_Space"}));
}

}  // namespace

Result copyObjects(Call& call) {
    Object* owner = call.has(1) ? &call.objectArg(1) : nullptr;
    const std::shared_ptr<Database> to = owner != nullptr ? owner->database : call.self.database;
    const auto target = blockTarget(owner);
    std::vector<Value> all;
    for (const Value& item : itemsOf(call.arg(0))) {
        Object& source = objectOf(unwrapped(item));
        checkUsable(source);
        if (source.record == NoRecord) {
            failMismatch();
        }
        const Drawing& from = *source.database->drawing;
        RecordId made = NoRecord;
        if (source.database == to) {
            if (tableOf(from.type(source.record)) || from.type(source.record) == "BLOCK_RECORD") {
                made = source.record;
            } else {
                made =
                    copyEntity(*to->drawing, source.record, target.value_or(targetOf(from, source.record)));
            }
        } else {
            made = importOne(from, source.record, *to->drawing, target);
        }
        if (made == NoRecord) {
            failAutomation("A " + std::string(from.type(source.record)) + " cannot be copied here.");
        }
        all.push_back(objectFor(call.e, to, made));
    }
    if (to->own == nullptr) {
        call.session().host.drawingChanged(true);
    }
    return Result::objects(all);
}

}  // namespace drafthost::activex
