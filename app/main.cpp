// SPDX-License-Identifier: GPL-3.0-or-later
// The command line of tarnel.
#include "app/Commands.h"
#include "app/NameText.h"
#include "system/FileLimit.h"
#include "system/MemorySize.h"

#include <poll.h>
#include <unistd.h>
#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

namespace {

constexpr const char* Footer =
    "Exit status: 0 all drawings are Done, 1 some are not, 2 wrong usage,\n"
    "3 the run could not start or was broken off, 130 interrupted.";

void declareRun(CLI::App* run, RunOptions* options) {
    run->footer(Footer);
    run->add_option("drawings", options->Drawings, "Drawings, and folders with drawings");
    run->add_option("-s,--script", options->Script,
                    "The script of host commands for each drawing; - is standard input")
        ->type_name("FILE");
    run->add_option("-l,--list", options->Lists,
                    "Take drawings from a list: one path a line, a saved queue (.xml), or a group file\n"
                    "of an earlier version (.grp); - is standard input")
        ->type_name("FILE")
        ->allow_extra_args(false);
    run->add_option("-e,--execute", options->Lines,
                    "A line of the script, in place of a file; several make several lines")
        ->type_name("COMMANDS")
        ->allow_extra_args(false);
    run->add_flag_function(
        "--no-check", [options](std::int64_t) { options->CheckScript = false; },
        "Do not tell before the run what can be seen wrong in the script");
    run->add_option("--mask", options->Mask, "Which files of a folder, any case")
        ->type_name("MASKS")
        ->capture_default_str();
    run->add_flag("-r,--recurse", options->Recurse, "Folders with all folders under them");
    run->add_flag("--hidden", options->Hidden, "Of folders also files and folders that begin with a dot");
    run->add_flag("-0,--null", options->NullEnds, "Names in lists end in NUL, as find -print0 writes them");
    run->add_option("--max-time", options->MaxTime,
                    "Seconds before a drawing is given up as Timeout; 0 never [60]")
        ->type_name("SECONDS");
    run->add_option("--alarm-time", options->AlarmTime,
                    "Seconds before a slow drawing is told of; 0 never [40]")
        ->type_name("SECONDS");
    run->add_flag("--read-only", options->ReadOnly,
                  "Process drawings that are locked or write-protected, read-only");
    run->add_flag("--recover", options->Recover,
                  "Start an empty drawing for each file; the script opens the file itself");
    run->add_flag("--break-links", options->BreakLinks,
                  "Save drawings that have several names (hard links) under this name alone");
    run->add_flag("--lenient", options->Lenient,
                  "Go on behind a line of the script that is refused, and count it");
    run->add_flag("--must-save", options->MustSave,
                  "A drawing that is left with changes that nothing has saved ends as Error");
    auto* retry = run->add_option_function<std::string>(
                         "--retry",
                         [options](const std::string& which) {
                             options->Retry =
                                 which == "all" ? RunOptions::RetryKind::All : RunOptions::RetryKind::Failed;
                         },
                         "Run the drawings of the last run again that are not Done, or all")
                      ->check(CLI::IsMember({"failed", "all"}))
                      ->type_name("");
    auto* resume =
        run->add_flag("--resume", options->Resume, "Go on with what is still ToDo of an interrupted run");
    run->add_flag("-n,--dry-run", options->DryRun, "Only print what would be processed, in order");
    run->add_option("--data-dir", options->DataDir,
                    "Folder for the state and the logs (in its folder Ovrix) instead of the user's")
        ->type_name("DIR");
    run->add_option("--json", options->JsonFile, "Write path, status, seconds and message of each drawing")
        ->type_name("FILE");
    run->add_option_function<std::string>(
           "--shard",
           [options](const std::string& text) {
               options->Share = ParseShard(text);
               if (!options->Share) {
                   throw CLI::ValidationError("--shard", "\"" + text + "\" is no share such as 2/4");
               }
           },
           "Take every N-th drawing, from the I-th on: a run's share on one of N machines")
        ->type_name("I/N")
        ->excludes(retry)
        ->excludes(resume);
    run->add_option("-j,--jobs", options->Jobs, "Number of hosts that share the drawings")
        ->check(CLI::Range(1U, 256U))
        ->type_name("N")
        ->capture_default_str();
    run->add_option("--max-memory", options->MaxMemory,
                    "What a host takes of memory at most: in MB, or with K, M or G behind [4G]")
        ->type_name("SIZE");
    run->add_flag("-q,--quiet", options->Quiet, "Print only what went wrong, and what was not saved");
    run->add_flag_function(
        "--no-monitor", [options](std::int64_t) { options->Monitor = false; },
        "End the run when the host dies, instead of starting it again");
    run->add_option("--grace", options->Grace,
                    "Seconds beyond the time limit until a host that hangs is ended")
        ->type_name("SECONDS")
        ->capture_default_str();
}

void declareMerge(CLI::App* merge, MergeOptions* options) {
    merge->add_option("folders", options->Folders, "The data folders of the runs, as given to --data-dir")
        ->required();
    merge
        ->add_option("--data-dir", options->DataDir,
                     "Folder for the result (in its folder Ovrix) instead of the user's")
        ->type_name("DIR");
    merge->add_option("--json", options->JsonFile, "Write path, status, seconds and message of each drawing")
        ->type_name("FILE");
    merge->add_flag("--unfinished", options->Unfinished,
                    "Also take runs with drawings that still wait, and some of the shares");
    merge->add_flag("-q,--quiet", options->Quiet, "Print only what went wrong");
}

/// A value that came out empty, such as that of a shell variable that is not set, means nothing, and would
/// stand for the option not given.
void refuseEmptyValues(CLI::App* command) {
    for (CLI::Option* option : command->get_options([](const CLI::Option* one) {
             // An empty line of a script is Enter.
             return one->get_items_expected_max() > 0 && !one->check_lname("execute");
         })) {
        option->check(
            [](const std::string& value) { return std::string(value.empty() ? "the value is empty" : ""); });
    }
}

/// What CLI11 cannot tell by itself. Empty when all is well.
std::string checkUsage(const RunOptions& options) {
    if (options.Resume && options.Retry == RunOptions::RetryKind::All) {
        return "--resume goes on with a run and --retry all does all of it again; give one of them";
    }
    if (options.KeepsQueue() && !(options.Drawings.empty() && options.Lists.empty())) {
        return "--resume and --retry take the drawings of the last run; name none";
    }
    if (std::count(options.Lists.begin(), options.Lists.end(), "-") + (options.Script == "-" ? 1 : 0) > 1) {
        return "standard input can be read only once; give - to --script or to one --list";
    }
    if (!options.KeepsQueue() && options.Script.empty() && options.Lines.empty()) {
        return "a script is needed: --script FILE, or -e COMMANDS";
    }
    if (!options.Script.empty() && !options.Lines.empty()) {
        return "--script and -e are two scripts; give one of them";
    }
    if (!options.MaxMemory.empty() && !files::MemoryLimit(options.MaxMemory)) {
        return "--max-memory takes a size from 64M on, not \"" + options.MaxMemory + "\"";
    }
    return {};
}

/// What is printed and does not arrive is told, but for a reader that has seen enough.
int checkOutput(int status) {
    const bool failed = std::fflush(stdout) != 0 || std::ferror(stdout) != 0;
    pollfd reader{STDOUT_FILENO, 0, 0};
    if (!failed || (poll(&reader, 1, 0) == 1 && (reader.revents & POLLERR) != 0)) {
        return status;
    }
    Complain("standard output: cannot be written; lines are missing there");
    return status == AllDone || status == SomeNotDone ? BrokenOff : status;
}

int runProgram(int argc, char** argv) {
    CLI::App app("Runs a script of host commands over many drawings.", "tarnel");
    app.set_version_flag("--version", "tarnel " TARNEL_VERSION);
    app.require_subcommand(1);
    app.footer("tarnel run --help tells the options of a run.");
    RunOptions options;
    CLI::App* run = app.add_subcommand("run", "Run a script over drawings");
    declareRun(run, &options);
    MergeOptions mergeOptions;
    CLI::App* merge = app.add_subcommand("merge", "Join the results of runs over parts of a list");
    declareMerge(merge, &mergeOptions);
    CLI::App* bundle = app.add_subcommand("bundle", "Pack what support needs of the last run");
    std::string bundleDir;
    bundle->add_option("--data-dir", bundleDir, "Folder with the state and the logs instead of the user's")
        ->type_name("DIR");
    CLI::App* install = app.add_subcommand("install", "Put a script that was sent (.iscr) among your own");
    std::string installFile;
    std::string installDir;
    bool installReplaces = false;
    install->add_option("file", installFile, "The script")->required();
    install->add_option("--data-dir", installDir, "Folder for it (in its folder Ovrix) instead of the user's")
        ->type_name("DIR");
    install->add_flag("--replace", installReplaces, "In the place of another one of the same name");
    CLI::App* check =
        app.add_subcommand("check", "Tell what can be seen wrong in scripts without running them");
    std::vector<std::string> scripts;
    check->add_option("scripts", scripts, "The scripts; - is standard input")->required();
    for (CLI::App* command : {run, merge, bundle, install, check}) {
        refuseEmptyValues(command);
    }
    CLI::App* desk = app.add_subcommand("desk", "Open the window, with the command TARNEL");
    std::vector<std::string> drawings;
    desk->add_option("drawings", drawings, "Drawings to open");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& wanted) {
        return app.exit(wanted);
    } catch (const CLI::ParseError& wrong) {
        const CLI::App* command = app.get_subcommands().empty() ? run : app.get_subcommands().front();
        Complain(std::string(wrong.what()) + " (tarnel " + command->get_name() +
                 " --help tells what there is)");
        return WrongUsage;
    }
    if (check->parsed()) {
        return CheckScripts(scripts);
    }
    if (merge->parsed()) {
        return MergeRuns(mergeOptions);
    }
    if (install->parsed()) {
        return InstallScript(installFile, installDir, installReplaces);
    }
    if (bundle->parsed()) {
        return MakeBundle(bundleDir, TARNEL_VERSION);
    }
    if (desk->parsed()) {
        return OpenDesk(drawings);
    }
    if (const std::string wrong = checkUsage(options); !wrong.empty()) {
        Complain(wrong);
        return WrongUsage;
    }
    return RunDrawings(options);
}

}  // namespace

int main(int argc, char** argv) {
    files::FailBeyondFileLimit();
    try {
        return checkOutput(runProgram(argc, argv));
    } catch (const std::exception& failure) {
        // No memory, or a folder that cannot even be looked at.
        Complain(failure.what());
        return BrokenOff;
    }
}
