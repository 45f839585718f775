// SPDX-License-Identifier: GPL-3.0-or-later
// References to blocks and what hangs on them.

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

RecordId blockRecordOf(const Call& call) {
    return findEntry(call.drawing(), Table::BlockRecord, call.record().textOr(2, ""));
}

/// The block that a reference to a dynamic block was made from: its anonymous block names it.
Result effectiveName(Call& call) {
    const std::string name = call.record().textOr(2, "");
    const RecordId block = blockRecordOf(call);
    if (block != NoRecord && name.starts_with('*')) {
        const Record record = call.drawing().record(block);
        for (std::size_t i = record.xdata(); i + 1 < record.size(); ++i) {
            if (record.code(i) != 1001 || record.text(i) != "AcDbBlockRepBTag") {
                continue;
            }
            for (std::size_t k = i + 1; k < record.size() && record.code(k) != 1001; ++k) {
                if (record.code(k) == 1005) {
                    const RecordId parent = call.drawing().findHandle(record.handle(k));
                    return Result::text(parent == NoRecord ? name : entryName(call.drawing(), parent));
                }
            }
        }
    }
    return Result::text(name);
}

bool hasDynamics(const Drawing& drawing, RecordId block) {
    if (block == NoRecord) {
        return false;
    }
    const Record record = drawing.record(block);
    for (std::size_t i = 0; i + 1 < record.size(); ++i) {
        if (record.code(i) == 102 && record.text(i) == "{ACAD_XDICTIONARY") {
            const RecordId dictionary = drawing.findHandle(record.handle(i + 1));
            return findInDictionary(drawing, dictionary, "ACAD_ENHANCEDBLOCK") != NoRecord;
        }
    }
    return false;
}

Result isDynamic(Call& call) {
    RecordId block = blockRecordOf(call);
    const std::string parent = effectiveName(call).value.toString();
    if (parent != call.record().textOr(2, "")) {
        block = findEntry(call.drawing(), Table::BlockRecord, parent);
    }
    return Result::boolean(hasDynamics(call.drawing(), block));
}

void putName(Call& call, const Value& value) {
    checkUnlocked(call);
    const Block* block = findBlock(call.drawing(), textOf(value));
    if (block == nullptr) {
        failAutomation("Key not found");
    }
    setGroup(call.drawing(), call.id(), 2, block->name);
    call.changed();
}

std::vector<RecordId> attributesOf(const Drawing& drawing, RecordId insert) {
    std::vector<RecordId> result;
    for (RecordId id = drawing.next(insert); id != NoRecord && isSubEntity(drawing, id);
         id = drawing.next(id)) {
        if (drawing.type(id) == "SEQEND") {
            break;
        }
        result.push_back(id);
    }
    return result;
}

Result hasAttributes(Call& call) {
    return Result::boolean(!attributesOf(call.drawing(), call.id()).empty());
}

Result getAttributes(Call& call) {
    std::vector<Value> all;
    for (const RecordId id : attributesOf(call.drawing(), call.id())) {
        all.push_back(call.object(id));
    }
    return Result::objects(all);
}

Result constantAttributes(Call& call) {
    std::vector<Value> all;
    const Drawing& drawing = call.drawing();
    if (const Block* block = findBlock(drawing, call.record().textOr(2, ""))) {
        constexpr std::int64_t Constant = 2;
        for (const RecordId id : entitiesOf(drawing, *block)) {
            if (drawing.type(id) == "ATTDEF" && (drawing.record(id).integerOr(70, 0) & Constant) != 0) {
                all.push_back(call.object(id));
            }
        }
    }
    return Result::objects(all);
}

Result dynamicProperties(Call&) {
    return Result::objects({});
}

Result xrefPath(Call& call) {
    const Block* block = findBlock(call.drawing(), call.record().textOr(2, ""));
    return Result::text(block == nullptr ? "" : call.drawing().record(block->begin).textOr(1, ""));
}
void putXrefPath(Call& call, const Value& value) {
    const Block* block = findBlock(call.drawing(), call.record().textOr(2, ""));
    if (block == nullptr || !call.drawing().record(block->begin).find(1)) {
        failAutomation("Not applicable");
    }
    call.drawing().put(block->begin, 1, textOf(value));
    call.changed(true);
}

Result bulk(Call& call, int code) {
    return Result::integer(std::max<std::int64_t>(1, call.record().integerOr(code, 1)));
}
Result columns(Call& call) {
    return bulk(call, 70);
}
Result rows(Call& call) {
    return bulk(call, 71);
}

constexpr Property Insert[] = {
    {"Name", Access::Text, 2, 0, nullptr, putName},
    {"EffectiveName", Access::Custom, 0, 0, effectiveName},
    {"InsertionPoint", Access::OcsPoint, 10},
    {"XScaleFactor", Access::Real, 41, 1},
    {"YScaleFactor", Access::Real, 42, 1},
    {"ZScaleFactor", Access::Real, 43, 1},
    {"XEffectiveScaleFactor", Access::Real, 41, 1},
    {"YEffectiveScaleFactor", Access::Real, 42, 1},
    {"ZEffectiveScaleFactor", Access::Real, 43, 1},
    {"Rotation", Access::Angle, 50, 0},
    {"HasAttributes", Access::Custom, 0, 0, hasAttributes},
    {"IsDynamicBlock", Access::Custom, 0, 0, isDynamic},
    {"Path", Access::Custom, 0, 0, xrefPath, putXrefPath},
};
constexpr Property MultiInsert[] = {
    {"Columns", Access::Custom, 70, 0, columns},
    {"Rows", Access::Custom, 71, 0, rows},
    {"ColumnSpacing", Access::Real, 44, 0},
    {"RowSpacing", Access::Real, 45, 0},
};
constexpr Method InsertMethods[] = {
    {"GetAttributes", 0, 0, getAttributes},
    {"GetConstantAttributes", 0, 0, constantAttributes},
    {"GetDynamicBlockProperties", 0, 0, dynamicProperties},
};

}  // namespace

Properties insertProperties() {
    return Insert;
}
Methods insertMethods() {
    return InsertMethods;
}
Properties multiInsertProperties() {
    return MultiInsert;
}

}  // namespace drafthost::activex
