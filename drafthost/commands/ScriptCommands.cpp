#include <filesystem>

#include "drafthost/commands/Commands.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
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
    // A script's name without a folder is looked for where all support files are; the reader names the file
    // in its message when it is nowhere.
    std::string path = host.findFile(answer.text);
    if (path.empty()) {
        path = host.findFile(answer.text + ".scr");
    }
    std::string error;
    if (!host.script().start(path.empty() ? answer.text : path, error)) {
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
