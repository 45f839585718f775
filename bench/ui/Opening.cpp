// SPDX-License-Identifier: GPL-3.0-or-later
// How long a user waits for the main dialog: from the command TARNEL to its first picture, off screen, with
// an empty queue and a long one in turn. Arguments: length of the long queue (10000), rounds (21).
#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/window/DrawingView.h"
#include "drafthost/window/MainFrame.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <vector>

using namespace drafthost;

namespace {

void writeState(const QString& path, int count) {
    QByteArray state =
        "<TarnelRunner Version=\"3.0.0\" Build=\"0\">\r\n<Options>\r\n<Script>zoom "
        "e\r\nqsave\r\n</Script>\r\n"
        "</Options>\r\n<Files>\r\n";
    for (int i = 0; i < count; ++i) {
        state += "<File Status=\"1\">/srv/archive/project-" + QByteArray::number(i / 100) + "/sheet-" +
                 QByteArray::number(i) + ".dxf</File>\r\n";
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        std::abort();
    }
    file.write(state + "</Files>\r\n</TarnelRunner>\r\n");
}

/// Sees the first picture of the dialog, and closes it.
class FirstPicture : public QObject {
  public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && watched->objectName() == u"TarnelDlg" && !seen) {
            seen = true;
            auto* dialog = static_cast<QDialog*>(watched);
            if (auto* shown = dialog->findChild<QWidget*>(page)) {
                dialog->findChild<QTabWidget*>()->setCurrentWidget(shown);
            }
            // Behind all pictures that are due now.
            QTimer::singleShot(0, dialog, [this, dialog] {
                milliseconds = double(clock.nsecsElapsed()) / 1e6;
                dialog->close();
            });
        }
        return false;
    }
    QElapsedTimer clock;
    double milliseconds = -1;
    QString page = QStringLiteral("StartTab");
    bool seen = false;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    const int length = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 21;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QDir(folder.path()).mkdir(QStringLiteral("Ovrix"));
    const QString state = folder.filePath(QStringLiteral("Ovrix/TarnelRunner.xml"));
    writeState(state, 0);

    Host host(folder.filePath(QStringLiteral("registry.ini")).toStdString());
    ApiHost api(host);
    host.setHasFrame(true);
    registerCommands(host.commands());
    registerSystemVariables(host.variables());
    MainFrame frame(host);
    host.setOutput([](std::string_view) {});
    ApiHost::setFrame(&frame, &frame, frame.view());
    frame.show();
    host.modules().load(MODULE_FILE, false);
    host.newDocument();

    FirstPicture watch;
    QApplication::instance()->installEventFilter(&watch);
    const auto open = [&](int count) {
        writeState(state, count);
        watch.seen = false;
        watch.milliseconds = -1;
        watch.clock.start();
        host.input().type("TARNEL\n");
        while (watch.milliseconds < 0 || !host.input().isIdle()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        }
        return watch.milliseconds;
    };
    std::printf("first opening, empty queue: %.1f ms\n", open(0));
    for (const char* page : {"StartTab", "FilesTab"}) {
        watch.page = QLatin1String(page);
        open(length);
        std::vector<double> empty, full;
        for (int i = 0; i < rounds; ++i) {
            empty.push_back(open(0));
            full.push_back(open(length));
        }
        std::printf("%s: empty queue %.1f ms, %d drawings %.1f ms (longest %.1f ms), ratio %.2f\n", page,
                    median(empty), length, median(full), *std::max_element(full.begin(), full.end()),
                    median(full) / median(empty));
    }
    host.shutDown();
    ApiHost::setFrame(nullptr, nullptr, nullptr);
    host.setOutput({});
    return 0;
}
