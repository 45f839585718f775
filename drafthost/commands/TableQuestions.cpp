// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/TableQuestions.h"

#include "drafthost/commands/Questions.h"
#include "drafthost/editor/Document.h"
#include "drafthost/lisp/WildcardMatch.h"

namespace drafthost::commands {

std::string nameFault(std::string_view name) {
    constexpr std::size_t Longest = 255;
    if (name.empty() || name.size() > Longest) {
        return "A name has from 1 to 255 characters.";
    }
    const auto bad = name.find_first_of("<>/\\\":;?*|,=`");
    return bad == std::string_view::npos
               ? std::string()
               : "Invalid name " + inQuotes(name) + ": it may not hold " + std::string(1, name[bad]) + ".";
}

void listTable(CommandContext& context, Table table, const std::string& names) {
    const Drawing& drawing = context.document().drawing();
    for (const RecordId id : tableEntries(drawing, table)) {
        const std::string name = entryName(drawing, id);
        if (!name.empty() && lisp::wildcardMatch(name, names, true)) {
            context.printLine(inQuotes(name));
        }
    }
}

}  // namespace drafthost::commands
