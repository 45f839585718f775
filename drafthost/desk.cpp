// SPDX-License-Identifier: GPL-3.0-or-later
// drafthost-desk: the host with a window.

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <QApplication>
#include <QIcon>
#include <string>

#include "drafthost/api/ApiHost.h"
#include "drafthost/api/Toolbar.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/Launch.h"
#include "drafthost/window/CommandLineWidget.h"
#include "drafthost/window/DrawingView.h"
#include "drafthost/window/FramePlace.h"
#include "drafthost/window/MainFrame.h"
#include "drafthost/window/ModuleTools.h"
#include "drafthost/window/SessionEnd.h"

using namespace drafthost;

namespace {

constexpr int NoDisplay = 3;

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

/// Qt ends the process with a page of text when it finds no display, so this is asked before.
bool hasDisplay() {
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

/// While the application starts: a display that is named and does not answer is one line too.
void refuseDisplay(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg) {
        return;
    }
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    const QByteArray display = qgetenv(isSet("DISPLAY") ? "DISPLAY" : "WAYLAND_DISPLAY");
    std::fprintf(stderr, "drafthost-desk: the display %s cannot be opened\n",
                 platform.isEmpty() ? display.constData() : platform.constData());
    std::_Exit(NoDisplay);
}

}  // namespace

int main(int argc, char** argv) {
    auto arguments = readArguments(argc, argv, "drafthost-desk", true);
    if (!arguments) {
        return 2;
    }
    if (!hasDisplay()) {
        std::fputs("drafthost-desk: there is no display to open a window on (DISPLAY is not set)\n", stderr);
        return NoDisplay;
    }
    const QtMessageHandler handler = qInstallMessageHandler(refuseDisplay);
    if (!arguments->desktopEntry.empty()) {
        // The window system knows a program by its name; the icon is looked up by it too.
        argv[0] = arguments->desktopEntry.data();
    }
    QApplication application(argc, argv);
    qInstallMessageHandler(handler);
    if (!arguments->desktopEntry.empty()) {
        const QString name = QString::fromStdString(arguments->desktopEntry);
        QGuiApplication::setDesktopFileName(name);
        QGuiApplication::setWindowIcon(QIcon::fromTheme(name));
    }
    // Dialogs come and go while no other window is open; the host ends by QUIT alone.
    QApplication::setQuitOnLastWindowClosed(false);
    Host host(arguments->registry);
    host.setHasFrame(true);
    prepare(host, *arguments);
    ApiHost api(host);
    auto frame = std::make_unique<MainFrame>(host);
    host.setOutput([line = frame->commandLine()](std::string_view text) {
        line->append(QString::fromUtf8(text.data(), qsizetype(text.size())));
    });
    ApiHost::setFrame(frame.get(), frame.get(), frame->view());
    ApiHost::setDocking([&host, window = frame.get()] { keepTools(*window, host.registry()); },
                        [&host, window = frame.get()](QDockWidget* tool) {
                            return restoreTool(*window, *tool, host.registry());
                        });
    setSharedToolbar({[&tools = frame->moduleTools()](const std::string& text, const std::string& label,
                                                      const std::string& picture) {
                          tools.add(QString::fromStdString(text), QString::fromStdString(label),
                                    QString::fromStdString(picture));
                      },
                      [&tools = frame->moduleTools()](const std::string& text) {
                          tools.remove(QString::fromStdString(text));
                      }});
    SessionEnd sessionEnd(host, limitEnd);
    watchSignals(host, application, [&] { sessionEnd.end(); });
    host.input().setOnEnd([] { QCoreApplication::exit(0); });
    frame->show();
    begin(host, *arguments);
    host.input().wake();
    QCoreApplication::exec();
    host.shutDown();
    liftEndLimit();
    setSharedToolbar({});
    ApiHost::setFrame(nullptr, nullptr, nullptr);
    host.setOutput({});
    return exitStatus();
}
