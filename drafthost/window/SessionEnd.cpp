// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/SessionEnd.h"

#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStream.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace drafthost {

SessionEnd::SessionEnd(Host& owner, std::function<void()> begin) : host_(owner), onBegin_(std::move(begin)) {
    qApp->installEventFilter(this);
}

bool SessionEnd::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::Quit) {
        end();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void SessionEnd::end() {
    onBegin_();
    // From the top down; one that will not be closed is left with its event loop all the same.
    while (QWidget* dialog = QApplication::activeModalWidget()) {
        if (!dialog->close() || QApplication::activeModalWidget() == dialog) {
            break;
        }
    }
    host_.input().terminate();
    QCoreApplication::exit(0);
}

}  // namespace drafthost
