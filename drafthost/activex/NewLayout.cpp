// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/activex/NewLayout.h"

#include <algorithm>

#include "drafthost/activex/ExtensionData.h"
#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Objects.h"

namespace drafthost::activex {
namespace {

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
    const RecordId dictionary = findInDictionary(drawing, rootDictionary(drawing), "ACAD_LAYOUT");
    const std::vector<Layout> all = layouts(drawing);
    const auto pattern = std::find_if(all.begin(), all.end(),
                                      [](const Layout& l) { return !l.model && l.object != NoRecord; });
    const std::string block = freePaperName(drawing);
    if (dictionary == NoRecord || pattern == all.end() || !addBlock(drawing, block, {})) {
        return NoRecord;
    }
    const RecordId blockRecord = findBlock(drawing, block)->blockRecord;
    int order = 0;
    for (const Layout& layout : all) {
        order = std::max(order, layout.tabOrder);
    }
    // The setup is that of a sheet that is there: device and paper of the office.
    const RecordId made = addObject(drawing, "LAYOUT", "", dictionary);
    bool inGroup = false;
    bool body = false;
    std::string part;
    for (std::size_t i = 1; i < drawing.record(pattern->object).xdata(); ++i) {
        const Record source = drawing.record(pattern->object);
        const int code = source.code(i);
        if (code == 102) {
            inGroup = source.raw(i).find('{') != std::string_view::npos;
            continue;
        }
        if (code == 100) {
            part = source.text(i);
            body = true;
        }
        const bool own = part == "AcDbLayout" && (code == 1 || code == 71 || code == 330 || code == 331);
        if (body && !inGroup && !own) {
            drawing.appendTag(made, code, source.value(i));
        }
        if (code == 100 && part == "AcDbLayout") {
            drawing.appendTag(made, 1, name);
            drawing.appendTag(made, 71, std::int64_t{order + 1});
            drawing.appendTag(made, 330, formatHandle(drawing.handle(blockRecord)));
        }
    }
    drawing.put(blockRecord, 340, formatHandle(drawing.handle(made)));
    addDictionaryEntry(drawing, dictionary, name, made);
    return made;
}

}  // namespace drafthost::activex
