// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/AttributeSync.h"

#include <map>

#include "drafthost/drawing/BlockEdit.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/InsertBlock.h"

namespace drafthost {

std::size_t syncAttributes(Drawing& drawing, const std::string& name) {
    const std::vector<RecordId> inserts = referencesTo(drawing, name);
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
