// SPDX-License-Identifier: GPL-3.0-or-later
// A module that does to the host's window what a user does, when a file in the data folder asks for it:
// "close" clicks the window's X, "button" presses what the tool bar has, "quit" is the desktop's logout,
// "name" tells how the desktop knows it, "box" opens a modal box and leaves it open.

#include "acframe.h"
#include "rxregsvc.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMainWindow>
#include <QMessageBox>
#include <QTimer>
#include <QToolBar>

namespace {

/// By what a desktop knows the window.
void tellName() {
    QFile file(qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/name"));
    const bool icon = !QGuiApplication::windowIcon().isNull();
    const QStringList words = {QGuiApplication::desktopFileName(), QCoreApplication::arguments().first(),
                               icon ? QStringLiteral("icon") : QStringLiteral("no icon")};
    if (file.open(QIODevice::WriteOnly)) {
        file.write(words.join(u' ').toUtf8() + '\n');
    }
}

void obey() {
    QFile file(qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/do"));
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QByteArray wanted = file.readAll();
    // Whoever writes it may just have made it.
    if (wanted.isEmpty()) {
        return;
    }
    file.remove();
    if (wanted == "close") {
        acedGetAcadFrame()->close();
    } else if (wanted == "button" && acedGetAcadFrame()->findChild<QToolBar*>() != nullptr) {
        for (QAction* action : acedGetAcadFrame()->findChild<QToolBar*>()->actions()) {
            action->trigger();
        }
    } else if (wanted == "name") {
        tellName();
    } else if (wanted == "quit") {
        QCoreApplication::quit();
    } else if (wanted == "box") {
        QMessageBox::warning(acedGetAcadFrame(), QStringLiteral("Box"), QStringLiteral("Still here?"));
    }
}

}  // namespace

extern "C" ARX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void*) {
    if (message == AcRx::kInitAppMsg) {
        auto* timer = new QTimer(qApp);
        QObject::connect(timer, &QTimer::timeout, &obey);
        timer->start(20);
    }
    return AcRx::kRetOK;
}

extern "C" ARX_EXPORT int acrxGetApiVersion() {
    return kArxApiVersion;
}
