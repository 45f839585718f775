// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/AttributeSync.h"

#include <map>

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/InsertBlock.h"

namespace drafthost {

std::size_t syncAttributes(Drawing& drawing, const std::string& name) {
    std::vector<RecordId> inserts;
    for (const Block& block : blocks(drawing)) {
        for (const RecordId id : entitiesOf(drawing, block)) {
            if (drawing.type(id) == "INSERT" &&
                foldCase(drawing.record(id).textOr(2, "")) == foldCase(name)) {
                inserts.push_back(id);
            }
        }
    }
    if (findBlock(drawing, "*Model_Space") == nullptr) {
        for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
            if (drawing.type(id) == "INSERT" &&
                foldCase(drawing.record(id).textOr(2, "")) == foldCase(name)) {
                inserts.push_back(id);
            }
        }
    }
    for (const RecordId insert : inserts) {
        std::map<std::string, std::string> values;
        RecordId part = drawing.next(insert);
        while (part != NoRecord && (drawing.type(part) == "ATTRIB" || drawing.type(part) == "SEQEND")) {
            const RecordId next = drawing.next(part);
            const bool end = drawing.type(part) == "SEQEND";
            if (!end) {
                values.emplace(foldCase(drawing.record(part).textOr(2, "")),
                               drawing.record(part).textOr(1, ""));
            }
            drawing.deleteRecord(part);
            part = end ? NoRecord : next;
        }
        addAttributes(drawing, insert, [&](RecordId definition) {
            const auto found = values.find(foldCase(drawing.record(definition).textOr(2, "")));
            return found != values.end() ? found->second : drawing.record(definition).textOr(1, "");
        });
    }
    return inserts.size();
}

}  // namespace drafthost
