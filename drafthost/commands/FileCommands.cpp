// SPDX-License-Identifier: GPL-3.0-or-later
#include <filesystem>

#include "drafthost/commands/AuditReport.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

bool singleDocument(Host& host) {
    return host.variables().integer("SDI", 0) != 0;
}

/// The file that a typed name means: as it stands, or with the drawings' extension, or nothing.
std::string existingFile(Host& host, const std::string& typed, std::string_view extension) {
    std::string path = host.findFile(typed);
    if (path.empty() || std::filesystem::is_directory(path)) {
        std::string longer = host.findFile(typed + std::string(extension));
        if (!longer.empty()) {
            path = longer;
        }
    }
    return path.empty() ? absolutePath(typed) : path;
}

/// The settings in which a metric and an imperial drawing differ from the start.
void applyUnits(Host& host, bool metric) {
    std::string reason;
    SystemVariables& variables = host.variables();
    variables.set("MEASUREMENT", metric ? 1 : 0, reason);
    variables.set("INSUNITS", metric ? 4 : 1, reason);
    variables.set("LIMMAX", metric ? Point2{420, 297} : Point2{12, 9}, reason);
    variables.set("TEXTSIZE", metric ? 2.5 : 0.2, reason);
    variables.set("DIMTXT", metric ? 2.5 : 0.18, reason);
    variables.set("DIMASZ", metric ? 2.5 : 0.18, reason);
    variables.set("DIMEXE", metric ? 1.25 : 0.18, reason);
    variables.set("DIMEXO", metric ? 0.625 : 0.0625, reason);
    variables.set("DIMGAP", metric ? 0.625 : 0.09, reason);
}

}  // namespace

CommandTask openCommand(CommandContext& context) {
    Host& host = context.host();
    bool goOn = !singleDocument(host);
    if (!goOn) {
        goOn = co_await mayDiscardChanges(context, context.document());
    }
    if (!goOn) {
        context.fail("OPEN was given up, the drawing keeps its changes.");
        co_return;
    }
    auto answer = co_await context.fileName("Enter name of drawing to open", ".");
    if (answer.text.empty() || answer.text == ".") {
        context.fail("OPEN needs the name of a drawing file.");
        co_return;
    }
    std::string path = existingFile(host, answer.text, ".dxf");
    // A module answers the question of a drawing that is in use ahead of time. The answer is taken when it
    // is there, and not waited for when it is not: most calls end with the path.
    bool asked = context.source() == InputSource::Module && context.hasMoreInput();
    bool readOnly = false;
    if (asked) {
        readOnly = co_await askYesNo(context, "Open the drawing read-only?", false);
    }
    OpenResult result = host.openDocument(path, readOnly ? OpenMode::ReadOnly : OpenMode::ReadWrite);
    bool somebodyAnswers = context.source() == InputSource::Keyboard || context.hasMoreInput();
    if (!result.document && result.locked && !asked && somebodyAnswers) {
        context.printLine(result.error);
        bool anyway = co_await askYesNo(context, "Would you like to open it read-only?", false);
        if (!anyway) {
            context.fail("OPEN was given up.");
            co_return;
        }
        result = host.openDocument(path, OpenMode::ReadOnly);
    }
    if (!result.document) {
        context.fail(result.error);
    }
}

CommandTask recoverCommand(CommandContext& context) {
    Host& host = context.host();
    bool goOn = !singleDocument(host);
    if (!goOn) {
        goOn = co_await mayDiscardChanges(context, context.document());
    }
    if (!goOn) {
        context.fail("RECOVER was given up, the drawing keeps its changes.");
        co_return;
    }
    auto answer = co_await context.fileName("Enter name of drawing file to recover", ".");
    if (answer.text.empty() || answer.text == ".") {
        context.fail("RECOVER needs the name of a drawing file.");
        co_return;
    }
    const std::string path = existingFile(host, answer.text, ".dxf");
    OpenResult result = host.openDocument(path, OpenMode::ReadWrite);
    if (!result.document && result.locked) {
        // What was mended is saved under another name then.
        context.printLine(result.error);
        result = host.openDocument(path, OpenMode::ReadOnly);
    }
    if (!result.document) {
        context.fail(result.error);
        co_return;
    }
    for (const std::string& line : auditDocument(*result.document, true)) {
        context.printLine(line);
    }
}

CommandTask newCommand(CommandContext& context) {
    Host& host = context.host();
    bool goOn = !singleDocument(host);
    if (!goOn) {
        goOn = co_await mayDiscardChanges(context, context.document());
    }
    if (!goOn) {
        context.fail("NEW was given up, the drawing keeps its changes.");
        co_return;
    }
    auto answer = co_await context.fileName("Enter template file name or . (for none) <built-in>");
    std::string templatePath;
    bool standard = host.variables().integer("MEASUREINIT", 0) == 1;
    bool metric = standard;
    if (answer.text == ".") {
        auto units = co_await context.keyword("Enter drawing units", "Imperial Metric",
                                              standard ? "Metric" : "Imperial");
        metric = units.isKeyword("Metric");
    } else if (!answer.text.empty()) {
        templatePath = existingFile(host, answer.text, ".dxf");
    }
    OpenResult result = host.newDocument(templatePath);
    if (!result.document) {
        context.fail(result.error);
        co_return;
    }
    if (metric != standard) {
        applyUnits(host, metric);
        result.document->clearModified();
    }
}

CommandTask closeCommand(CommandContext& context) {
    bool goOn = co_await mayDiscardChanges(context, context.document());
    if (!goOn) {
        context.fail("CLOSE was given up, the drawing stays open.");
        co_return;
    }
    if (!singleDocument(context.host())) {
        context.host().closeDocument(context.document());
        co_return;
    }
    // With one drawing at a time there always is one: a script goes on, and modules reach the host.
    OpenResult empty = context.host().newDocument({});
    if (!empty.document) {
        context.fail(empty.error);
    }
}

CommandTask quitCommand(CommandContext& context) {
    for (Document* document : context.host().documents()) {
        if (!context.host().isOpen(document)) {
            continue;
        }
        bool goOn = co_await mayDiscardChanges(context, *document);
        if (!goOn) {
            context.fail("QUIT was given up, all drawings stay open.");
            co_return;
        }
    }
    context.host().requestQuit();
}

}  // namespace drafthost::commands
