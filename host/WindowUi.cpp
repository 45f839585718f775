// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/WindowUi.h"

#include "acframe.h"
#include "html/HtmlResources.h"
#include "support/MapiSession.h"
#include "support/SupportBundle.h"
#include "ui/DialogUi.h"
#include "ui/Icons.h"

#include <QApplication>
#include <QMessageBox>

namespace {

/// What the button "Email Log" does.
void emailLog(QWidget* page) {
    CMapiSession session;
    if (!session.MapiInstalled()) {
        QMessageBox::information(page, QStringLiteral("E-Mail Log"),
                                 QStringLiteral("There is no program on this machine that can open a mail."));
        return;
    }
    if (QString error; !BuildSupportBundle(session, &error)) {
        QMessageBox::warning(page, QStringLiteral("E-Mail Log"), error);
    }
}

}  // namespace

std::unique_ptr<RunUi> MakeWindowUi() {
    if (acedGetAcadFrame() == nullptr) {
        return nullptr;
    }
    InitHtmlResources();
    // A program that is not installed has no icon that the desktop would know.
    if (QApplication::windowIcon().isNull()) {
        QApplication::setWindowIcon(ResourceIcon(QStringLiteral("tarnel")));
    }
    auto windows = std::make_unique<DialogUi>();
    windows->EmailLog = emailLog;
    return windows;
}
