// SPDX-License-Identifier: GPL-3.0-or-later
// drafthost: the host without a window. Command-line text goes to standard output, standard input is the
// keyboard.

#include <unistd.h>
#include <cerrno>
#include <QCoreApplication>
#include <string_view>

#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/Launch.h"

using namespace drafthost;

namespace {

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

}  // namespace

int main(int argc, char** argv) {
    auto arguments = readArguments(argc, argv, "drafthost", false);
    if (!arguments) {
        return 2;
    }
    QCoreApplication application(argc, argv);
    Host host(arguments->registry);
    if (arguments->report < 0) {
        host.setOutput(writeOut);
    }
    prepare(host, *arguments);
    ApiHost api(host);
    watchSignals(host, application);
    host.input().setOnEnd([] { QCoreApplication::quit(); });
    begin(host, *arguments);
    host.input().attachKeyboard(STDIN_FILENO);
    QCoreApplication::exec();
    host.shutDown();
    // The number that sysexits gives to files that cannot be written.
    constexpr int LostLog = 74;
    return exitStatus() == 0 && host.lostLog() ? LostLog : exitStatus();
}
