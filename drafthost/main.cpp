// drafthost: the host without a window. Command-line text goes to standard output, standard input is the
// keyboard.

#include <fcntl.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ScriptReader.h"
#include "drafthost/Startup.h"

using namespace drafthost;

namespace {

constexpr const char* Usage =
    "usage: drafthost [--headless] [--load MODULE]... [--registry FILE] [--support FOLDER]...\n"
    "                 [DRAWING] [/b SCRIPT]\n"
    "  --load MODULE      load a module at start\n"
    "  --registry FILE    keep settings in this file\n"
    "  --support FOLDER   look for files here too\n"
    "  /b SCRIPT          run a script once the drawing is open\n"
    "  --version, --help\n"
    "Commands are read from standard input; QUIT or the end of the input ends the host.\n";

struct Arguments {
    std::vector<std::string> modules;
    std::vector<std::string> support;
    std::string registry;
    std::string drawing;
    std::string script;
};

/// Nothing, and the message is on standard error, for arguments that make no sense.
std::optional<Arguments> readArguments(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        std::string* value = nullptr;
        if (word == "--headless") {
            continue;
        }
        if (word == "--load" || word == "/ld") {
            value = &arguments.modules.emplace_back();
        } else if (word == "--support") {
            value = &arguments.support.emplace_back();
        } else if (word == "--registry") {
            value = &arguments.registry;
        } else if (word == "/b") {
            value = &arguments.script;
        } else if (word.starts_with("--") || !arguments.drawing.empty()) {
            std::fprintf(stderr, "drafthost: unexpected argument \"%s\"\n%s", argv[i], Usage);
            return std::nullopt;
        } else {
            arguments.drawing = word;
            continue;
        }
        if (++i >= argc) {
            std::fprintf(stderr, "drafthost: %s needs a value\n%s", argv[i - 1], Usage);
            return std::nullopt;
        }
        *value = argv[i];
    }
    return arguments;
}

std::string defaultRegistry() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && config[0] == '/') {
        return std::string(config) + "/drafthost/registry.ini";
    }
    const char* home = std::getenv("HOME");
    return home ? std::string(home) + "/.config/drafthost/registry.ini" : std::string();
}

/// Whoever reads the output may go away; the work goes on without him.
void writeOut(std::string_view text) {
    static bool gone = false;
    while (!gone && !text.empty()) {
        const ssize_t count = ::write(STDOUT_FILENO, text.data(), text.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        gone = count < 0;
        text.remove_prefix(count > 0 ? std::size_t(count) : 0);
    }
}

int signalPipe[2] = {-1, -1};

void onSignal(int number) {
    const int before = errno;
    const char byte = char(number);
    // A full pipe already holds enough to wake the reader.
    [[maybe_unused]] const ssize_t count = ::write(signalPipe[1], &byte, 1);
    errno = before;
}

/// SIGINT is an Esc, as the same key is at a command line; SIGTERM and SIGHUP end the host in order.
void watchSignals(Host& host, QCoreApplication& application) {
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [&host] {
        char byte = 0;
        while (::read(signalPipe[0], &byte, 1) == 1) {
            if (byte == SIGINT) {
                host.input().cancel();
            } else {
                host.input().terminate();
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

void openFirst(Host& host, const std::string& drawing) {
    if (!drawing.empty()) {
        OpenResult result = host.openDocument(drawing, OpenMode::ReadWrite);
        if (!result.document && result.locked) {
            host.printLine(result.error + " It is opened read-only.");
            result = host.openDocument(drawing, OpenMode::ReadOnly);
        }
        if (result.document) {
            return;
        }
        host.printLine(result.error);
    }
    host.newDocument();
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--help") {
            std::fputs(Usage, stdout);
            return 0;
        }
        if (std::string_view(argv[i]) == "--version") {
            std::puts("drafthost " DRAFTHOST_VERSION);
            return 0;
        }
    }
    auto arguments = readArguments(argc, argv);
    if (!arguments) {
        return 2;
    }
    QCoreApplication application(argc, argv);
    Host host(arguments->registry.empty() ? defaultRegistry() : arguments->registry);
    host.setOutput(writeOut);
    for (const std::string& folder : arguments->support) {
        host.addSupportPath(folder);
    }
    registerCommands(host.commands());
    registerSystemVariables(host.variables());
    ApiHost api(host);
    watchSignals(host, application);
    host.input().setOnEnd([] { QCoreApplication::quit(); });

    loadStartupModules(host, arguments->modules);
    openFirst(host, arguments->drawing);
    if (std::string error; !arguments->script.empty() && !host.script().start(arguments->script, error)) {
        host.printLine(error);
    }
    host.input().attachKeyboard(STDIN_FILENO);
    QCoreApplication::exec();
    host.shutDown();
    return 0;
}
