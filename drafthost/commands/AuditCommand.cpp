// SPDX-License-Identifier: GPL-3.0-or-later
// AUDIT.

#include <filesystem>
#include <fstream>

#include "drafthost/automation/EntityNames.h"
#include "drafthost/commands/AuditReport.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Audit.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

/// The report beside the drawing, where the user wants one.
void writeReport(CommandContext& context, const std::vector<std::string>& lines) {
    const Document& document = context.document();
    if (context.host().variables().integer("AUDITCTL", 0) == 0 || !document.hasName()) {
        return;
    }
    std::filesystem::path path(document.path());
    path.replace_extension(".adt");
    std::ofstream file(path, std::ios::trunc);
    for (const std::string& line : lines) {
        file << line << '\n';
    }
    file.flush();
    if (!file) {
        context.complain("Cannot write " + path.string() + ".");
    }
}

}  // namespace

std::vector<std::string> auditDocument(Document& document, bool fix) {
    AuditReport report;
    {
        ChangeWatch watch(document, ModifiedObjects | ModifiedTables);
        report = audit(document.drawing(), fix);
    }
    std::vector<std::string> lines{"Auditing Header", "Auditing Tables", "Auditing Entities Pass 1"};
    lines.insert(lines.end(), report.lines.begin(), report.lines.end());
    lines.push_back("Pass 1 " + std::to_string(report.objects) + " objects audited");
    lines.push_back("Auditing Blocks");
    lines.push_back(" " + std::to_string(report.blocks) + " Blocks audited");
    lines.push_back("Total errors found " + std::to_string(report.found) + " fixed " +
                    std::to_string(report.fixed));
    lines.push_back("Erased " + std::to_string(report.erased) + " objects");
    if (!report.mended.empty()) {
        std::vector<automation::EntityName> names;
        for (const RecordId id : report.mended) {
            names.push_back(automation::nameOf(id));
        }
        document.lisp().session().previousSelection = std::move(names);
    }
    return lines;
}

CommandTask auditCommand(CommandContext& context) {
    bool fix = co_await askYesNo(context, "Fix any errors detected?", false);
    const auto lines = auditDocument(context.document(), fix);
    for (const std::string& line : lines) {
        context.printLine(line);
    }
    writeReport(context, lines);
}

}  // namespace drafthost::commands
