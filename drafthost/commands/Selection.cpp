// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/Selection.h"

#include <algorithm>

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/SelectionAnswer.h"
#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"

namespace drafthost::commands {

namespace {

std::vector<RecordId> fromNames(const Drawing& drawing, const std::vector<automation::EntityName>& names) {
    std::vector<RecordId> result;
    for (automation::EntityName name : names) {
        if (auto record = automation::aliveRecord(drawing, name)) {
            result.push_back(*record);
        }
    }
    return result;
}

}  // namespace

Task<std::vector<RecordId>> selectObjects(CommandContext& context) {
    Document& document = context.document();
    const Drawing& drawing = document.drawing();
    std::vector<RecordId> selected;
    for (;;) {
        auto answer = co_await context.input("Select objects",
                                             {.keywords = automation::SelectionWords, .bareText = true});
        if (answer.isEnter()) {
            break;
        }
        std::vector<RecordId> found;
        if (answer.isKeyword("ALL")) {
            found = fromNames(drawing, automation::allSelectable(drawing));
        } else if (answer.isKeyword("Last")) {
            found = fromNames(drawing, automation::lastVisible(drawing));
        } else if (answer.isKeyword("Previous")) {
            found = fromNames(drawing, document.lisp().session().previousSelection);
            if (found.empty()) {
                context.complain("There is no previous selection set.");
                continue;
            }
        } else if (answer.isKeyword()) {
            context.complain(automation::needsPicking(answer.keyword));
            continue;
        } else {
            const lisp::Value given = answer.value.isNil() ? lisp::Value::string(answer.text) : answer.value;
            if (const auto names = automation::namedObjects(drawing, given)) {
                found = fromNames(drawing, *names);
            }
        }
        if (found.empty()) {
            context.complain(automation::namesNothing(answer.text));
            continue;
        }
        size_t before = selected.size();
        for (RecordId record : found) {
            if (std::find(selected.begin(), selected.end(), record) == selected.end()) {
                selected.push_back(record);
            }
        }
        context.printLine(std::to_string(found.size()) + " found, " +
                          std::to_string(selected.size() - before) + " new, " +
                          std::to_string(selected.size()) + " total");
    }
    if (!selected.empty()) {
        std::vector<automation::EntityName> names;
        names.reserve(selected.size());
        for (RecordId record : selected) {
            names.push_back(automation::nameOf(record));
        }
        document.lisp().session().previousSelection = std::move(names);
    }
    co_return selected;
}

}  // namespace drafthost::commands
