// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/Launch.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <string_view>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/drawing/FileBytes.h"
#include "drafthost/editor/CommandTable.h"
#include "drafthost/editor/FileLock.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/ReportChannel.h"
#include "drafthost/editor/ScriptReader.h"
#include "drafthost/Startup.h"
#include "system/FileJournal.h"
#include "system/FileLimit.h"
#include "system/MemorySize.h"

namespace drafthost {
namespace {

constexpr const char* Options =
    "[--load MODULE]... [--registry FILE] [--support FOLDER]... [--journal FILE]\n"
    "  [--break-links] [--max-memory SIZE] DRAWINGS [/b SCRIPT]\n"
    "  --load MODULE      load a module at start\n"
    "  --registry FILE    keep settings in this file\n"
    "  --support FOLDER   look for files here too\n"
    "  --journal FILE     note temporaries, lock markers and logs here, by name\n"
    "  --break-links      save drawings that have several names (hard links), parting them\n"
    "  --max-memory SIZE  take no more than this; in MB, or with K, M or G behind (4G)\n"
    "  /b SCRIPT          run a script once the drawing is open\n"
    "  --on-refusal LISP  when a line of a script is refused, drop the rest of it and evaluate this\n"
    "  --keep-going       a script goes on behind a line that was refused\n"
    "  --deny COMMAND     scripts may not use this command\n"
    "  --report-fd N      tell what happens on the socket N, in place of standard output\n"
    "  --commands         print the names of all commands, short names with what they stand for\n"
    "  --version, --help\n";
constexpr const char* HeadlessEnd =
    "One drawing at most. Commands are read from standard input; QUIT or the end of the input ends the "
    "host.\n";
constexpr const char* FramedEnd =
    "  --desktop-entry NAME  the window belongs to this entry of the desktop\n"
    "The drawings are opened in a window, in which commands are typed.\n";

/// A place among the user's own settings; empty where there is no home.
std::string userPlace(const std::string& name) {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && config[0] == '/') {
        return std::string(config) + "/drafthost/" + name;
    }
    const char* home = std::getenv("HOME");
    return home ? std::string(home) + "/.config/drafthost/" + name : std::string();
}

int signalPair[2] = {-1, -1};
int endingSignal = 0;
bool endIsLimited = false;

void onSignal(int number) {
    const int before = errno;
    if (endIsLimited && number != SIGINT) {
        limitEnd();
    }
    const char byte = char(number);
    // A full pipe already holds enough to wake the reader.
    [[maybe_unused]] const ssize_t count = ::write(signalPair[1], &byte, 1);
    errno = before;
}

void printCommands() {
    CommandTable table;
    registerCommands(table);
    for (const std::string& name : table.names()) {
        std::printf("%s\n", name.c_str());
    }
    for (const auto& [alias, name] : table.aliases()) {
        std::printf("%s %s\n", alias.c_str(), name.c_str());
    }
}

bool isSocket(int descriptor) {
    struct stat info {};
    return ::fstat(descriptor, &info) == 0 && S_ISSOCK(info.st_mode);
}

bool openDrawing(Host& host, const std::string& drawing) {
    OpenResult result = host.openDocument(drawing, OpenMode::ReadWrite);
    if (!result.document && result.locked) {
        host.printLine(result.error + " It is opened read-only.");
        result = host.openDocument(drawing, OpenMode::ReadOnly);
    }
    if (!result.document) {
        host.printLine(result.error);
    }
    return result.document != nullptr;
}

}  // namespace

std::optional<Arguments> readArguments(int argc, char** argv, const std::string& program, bool framed) {
    const std::string usage = "usage: " + program + (framed ? " " : " [--headless] ") + Options +
                              (framed ? FramedEnd : HeadlessEnd);
    Arguments arguments;
    arguments.registry = userPlace("registry.ini");
    std::string memory;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        std::string report;
        std::string* value = nullptr;
        if (word == "--help") {
            std::fputs(usage.c_str(), stdout);
            std::exit(0);
        }
        if (word == "--version") {
            std::printf("%s " DRAFTHOST_VERSION "\n", program.c_str());
            std::exit(0);
        }
        if (word == "--commands") {
            printCommands();
            std::exit(0);
        }
        if (word == "--headless" && !framed) {
            continue;
        }
        if (word == "--break-links") {
            arguments.breakLinks = true;
            continue;
        }
        if (word == "--keep-going") {
            arguments.keepGoing = true;
            continue;
        }
        if (word == "--load" || word == "/ld") {
            value = &arguments.modules.emplace_back();
        } else if (word == "--support") {
            value = &arguments.support.emplace_back();
        } else if (word == "--registry") {
            value = &arguments.registry;
        } else if (word == "--journal") {
            value = &arguments.journal;
        } else if (word == "--desktop-entry" && framed) {
            value = &arguments.desktopEntry;
        } else if (word == "--max-memory") {
            value = &memory;
        } else if (word == "/b") {
            value = &arguments.script;
        } else if (word == "--on-refusal") {
            value = &arguments.onRefusal;
        } else if (word == "--deny") {
            value = &arguments.denied.emplace_back();
        } else if (word == "--report-fd") {
            value = &report;
        } else if (word.starts_with("--") || (!framed && !arguments.drawings.empty())) {
            std::fprintf(stderr, "%s: unexpected argument \"%s\"\n%s", program.c_str(), argv[i],
                         usage.c_str());
            return std::nullopt;
        } else {
            arguments.drawings.emplace_back(word);
            continue;
        }
        if (++i >= argc) {
            std::fprintf(stderr, "%s: %s needs a value\n%s", program.c_str(), argv[i - 1], usage.c_str());
            return std::nullopt;
        }
        *value = argv[i];
        if (value == &report) {
            arguments.report = automation::readInteger(report).value_or(-1);
            if (!isSocket(arguments.report)) {
                std::fprintf(stderr, "%s: --report-fd %s: no socket\n", program.c_str(), argv[i]);
                return std::nullopt;
            }
        }
    }
    if (!memory.empty()) {
        const auto size = files::MemoryLimit(memory);
        if (!size) {
            std::fprintf(stderr, "%s: --max-memory takes a size from 64M on, not \"%s\"\n", program.c_str(),
                         memory.c_str());
            return std::nullopt;
        }
        arguments.maxMemory = *size;
    }
    return arguments;
}

void limitEnd() {
    // SIGALRM is not handled, so this ends a process that hears nothing any more.
    constexpr suseconds_t Microseconds = 800'000;
    const itimerval timer{{0, 0}, {1, Microseconds}};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

void liftEndLimit() {
    const itimerval none{};
    ::setitimer(ITIMER_REAL, &none, nullptr);
}

void watchSignals(Host& host, QCoreApplication& application, const std::function<void()>& end) {
    endIsLimited = bool(end);
    // No pipe: a script could write to it, by its name under /proc, and end the host.
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, signalPair) != 0) {
        return;
    }
    auto* notifier = new QSocketNotifier(signalPair[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [&host, end] {
        char byte = 0;
        while (::read(signalPair[0], &byte, 1) == 1) {
            if (byte == SIGINT) {
                host.input().cancel();
            } else {
                endingSignal = static_cast<unsigned char>(byte);
                if (end) {
                    end();
                } else {
                    host.input().terminate();
                }
            }
        }
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (int number : {SIGINT, SIGTERM, SIGHUP}) {
        ::sigaction(number, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

int exitStatus() {
    return endingSignal == 0 ? 0 : 128 + endingSignal;
}

void prepare(Host& host, const Arguments& arguments) {
    files::FailBeyondFileLimit();
    setBreakLinks(arguments.breakLinks);
    setMemoryLimit(arguments.maxMemory);
    std::string error;
    if (!arguments.journal.empty() &&
        !files::Journal().Open(arguments.journal, files::OwnerLine(FileLock::markerText()), &error)) {
        host.printLine(error);
    }
    for (const std::string& folder : arguments.support) {
        host.addSupportPath(folder);
    }
    if (const std::string own = userPlace("support"); !own.empty()) {
        host.addSupportPath(own);
    }
    host.input().setOnRefusal(arguments.onRefusal);
    host.input().setKeepsGoing(arguments.keepGoing);
    for (const std::string& command : arguments.denied) {
        host.input().deny(command);
    }
    if (arguments.report >= 0) {
        host.setReport(std::make_unique<ReportChannel>(arguments.report));
    }
    registerCommands(host.commands());
    registerSystemVariables(host.variables());
}

void begin(Host& host, const Arguments& arguments) {
    loadStartupModules(host, arguments.modules);
    for (const std::string& module : arguments.modules) {
        // Whoever waits at the socket waits for what the module does.
        if (arguments.report >= 0 && !host.modules().isLoaded(module)) {
            std::exit(1);
        }
    }
    bool opened = false;
    for (const std::string& drawing : arguments.drawings) {
        opened = openDrawing(host, drawing) || opened;
    }
    if (!opened) {
        host.newDocument();
    }
    if (std::string error; !arguments.script.empty() && !host.script().start(arguments.script, error)) {
        host.printLine(error);
    }
}

}  // namespace drafthost
