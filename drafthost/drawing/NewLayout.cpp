// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/NewLayout.h"

#include <algorithm>

#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Objects.h"

namespace drafthost {
namespace {

constexpr const char* LayoutPart = "AcDbLayout";

RecordId layoutDictionary(const Drawing& drawing) {
    const RecordId root = rootDictionary(drawing);
    return root == NoRecord ? NoRecord : findInDictionary(drawing, root, "ACAD_LAYOUT");
}

/// A number for "*Paper_Space" that no block has yet.
std::string freePaperName(const Drawing& drawing) {
    for (int number = 0;; ++number) {
        std::string name = "*Paper_Space" + std::to_string(number);
        if (findBlock(drawing, name) == nullptr) {
            return name;
        }
    }
}

}  // namespace

RecordId makeLayout(Drawing& drawing, const std::string& name) {
    // The setup is that of a sheet that is there: device and paper of the office.
    for (const Layout& layout : layouts(drawing)) {
        if (!layout.model && layout.object != NoRecord) {
            return makeLayout(drawing, name, drawing, layout.object);
        }
    }
    return NoRecord;
}

RecordId makeLayout(Drawing& drawing, const std::string& name, const Drawing& from, RecordId pattern) {
    const RecordId dictionary = layoutDictionary(drawing);
    const std::string block = freePaperName(drawing);
    if (dictionary == NoRecord || !addBlock(drawing, block, {})) {
        return NoRecord;
    }
    const RecordId blockRecord = findBlock(drawing, block)->blockRecord;
    int order = 0;
    for (const Layout& layout : layouts(drawing)) {
        order = std::max(order, layout.tabOrder);
    }
    const RecordId made = addObject(drawing, "LAYOUT", "", dictionary);
    bool inGroup = false;
    bool body = false;
    std::string part;
    for (std::size_t i = 1; i < from.record(pattern).xdata(); ++i) {
        const Record source = from.record(pattern);
        const int code = source.code(i);
        if (code == 102) {
            inGroup = source.raw(i).find('{') != std::string_view::npos;
            continue;
        }
        if (code == 100) {
            part = source.text(i);
            body = true;
        }
        const bool own = part == LayoutPart && (code == 1 || code == 71 || code == 330 || code == 331);
        // What the other drawing names by handle is not here.
        const bool foreign = &from != &drawing && kindOf(code) == ValueKind::Handle;
        if (body && !inGroup && !own && !foreign) {
            drawing.appendTag(made, code, source.value(i));
        }
        if (code == 100 && part == LayoutPart) {
            drawing.appendTag(made, 1, name);
            drawing.appendTag(made, 71, std::int64_t{order + 1});
            drawing.appendTag(made, 330, formatHandle(drawing.handle(blockRecord)));
        }
    }
    drawing.put(blockRecord, 340, formatHandle(drawing.handle(made)));
    addDictionaryEntry(drawing, dictionary, name, made);
    return made;
}

void renameLayout(Drawing& drawing, RecordId object, const std::string& name) {
    const Record record = drawing.record(object);
    const auto at = record.find(1, record.subclass(LayoutPart));
    if (!at) {
        return;
    }
    const std::string old = foldCase(record.text(*at));
    drawing.setTag(object, *at, name);
    const RecordId dictionary = layoutDictionary(drawing);
    for (const DictionaryEntry& entry :
         dictionary == NoRecord ? std::vector<DictionaryEntry>() : dictionaryEntries(drawing, dictionary)) {
        if (foldCase(entry.name) == old) {
            drawing.setTag(dictionary, entry.tag, name);
        }
    }
}

void removeLayout(Drawing& drawing, RecordId object) {
    std::string block;
    std::string name;
    for (const Layout& layout : layouts(drawing)) {
        if (layout.object == object) {
            block = layout.blockName;
            name = layout.name;
        }
    }
    if (const RecordId dictionary = layoutDictionary(drawing); dictionary != NoRecord) {
        removeDictionaryEntry(drawing, dictionary, name);
    }
    for (const RecordId owned : ownedObjects(drawing, object)) {
        drawing.deleteRecord(owned);
    }
    drawing.deleteRecord(object);
    deleteBlock(drawing, block);
}

}  // namespace drafthost
