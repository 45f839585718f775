// SPDX-License-Identifier: GPL-3.0-or-later
#include <filesystem>

#include "drafthost/commands/Commands.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/ProgramFiles.h"
#include "drafthost/editor/ScriptReader.h"

namespace drafthost::commands {

CommandTask scriptCommand(CommandContext& context) {
    Host& host = context.host();
    std::string proposal = std::filesystem::path(context.document().title()).stem().string() + ".scr";
    auto answer = co_await context.fileName("Enter script file name", proposal);
    if (answer.text.empty()) {
        context.fail("SCRIPT needs the name of a script file.");
        co_return;
    }
    const ProgramFiles::Found found = host.programs().find(answer.text, ".scr");
    if (found.path.empty()) {
        context.fail(found.passedOver.empty()
                         ? "Cannot read script " + answer.text + ": No such file or directory"
                         : found.passedOver +
                               " is not run by its name alone: its folder is not in TRUSTEDPATHS.");
        co_return;
    }
    std::string error;
    if (!host.script().start(found.path, error)) {
        context.fail(error);
    }
}

CommandTask resumeCommand(CommandContext& context) {
    if (!context.host().script().resume()) {
        context.fail("There is no suspended script to go on with.");
    }
    co_return;
}

CommandTask rscriptCommand(CommandContext& context) {
    std::string error;
    if (!context.host().script().restart(error)) {
        context.fail(error);
    }
    co_return;
}

CommandTask delayCommand(CommandContext& context) {
    auto answer = co_await context.integer("Enter delay time (in milliseconds)",
                                           {.noEmpty = true, .minimum = 0, .maximum = 32767});
    co_await context.delay(answer.integer);
}

}  // namespace drafthost::commands
