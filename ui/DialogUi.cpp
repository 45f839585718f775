// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DialogUi.h"

#include "acframe.h"
#include "engine/record/TarnelData.h"
#include "engine/Watch.h"
#include "html/HtmlResources.h"
#include "script/DebugScriptBar.h"
#include "ui/LogTab.h"
#include "ui/StatusDialog.h"
#include "ui/TarnelDlg.h"

#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>

namespace {

/// During a run nobody can be asked what is to become of the drawing in work, and a question of the host
/// would wait for ever. So the frame's X ends the application, which breaks the run off, as a logout does.
class FrameWatch : public QObject {
  public:
    using QObject::QObject;
    bool eventFilter(QObject* frame, QEvent* event) override {
        if (event->type() != QEvent::Close) {
            return QObject::eventFilter(frame, event);
        }
        event->ignore();
        QMetaObject::invokeMethod(
            qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
        return true;
    }
};

}  // namespace

DialogUi::~DialogUi() {
    delete status;
}

QWidget* DialogUi::owner() const {
    return mainDialog.isNull() ? adsw_acadMainWnd() : mainDialog.data();
}

RunUi::Answer DialogUi::RunMainDialog() {
    InitHtmlResources();
    if (QWidget* view = acedGetAcadDwgView()) {
        view->update();
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    TarnelDlg dialog(acedGetAcadFrame());
    QApplication::restoreOverrideCursor();
    dialog.findChild<LogTab*>()->EmailLog = EmailLog;
    mainDialog = &dialog;
    return dialog.exec() == QDialog::Accepted ? Ok : Cancel;
}

RunUi::Answer DialogUi::Ask(const QString& caption, const QString& text, Buttons buttons) {
    QMessageBox::StandardButtons shown = QMessageBox::Ok;
    if (buttons != OkOnly) {
        shown = QMessageBox::Yes | QMessageBox::No;
    }
    if (buttons == YesNoCancel) {
        shown |= QMessageBox::Cancel;
    }
    QMessageBox box(QMessageBox::Warning, caption, text, shown, owner());
    switch (box.exec()) {
        case QMessageBox::Yes:
            return Yes;
        case QMessageBox::No:
            return No;
        case QMessageBox::Ok:
            return Ok;
        default:
            return Cancel;
    }
}

void DialogUi::OpenStatus(int fileCount) {
    delete status;
    status = new StatusDialog(acedGetAcadFrame(), fileCount);
    QObject::connect(status, &StatusDialog::CancelPressed, status, [] { CancelRun(); });
    if (QMainWindow* frame = acedGetAcadFrame()) {
        frame->installEventFilter(new FrameWatch(status));
    }
}

void DialogUi::ShowStatus() {
    if (status.isNull()) {
        return;
    }
    status->show();
    status->activateWindow();
}

void DialogUi::ShowFile(const QString& path, int limit) {
    if (!status.isNull()) {
        status->ShowFile(path, limit);
    }
}

void DialogUi::StepFileTime() {
    if (!status.isNull()) {
        status->StepFileTime();
    }
}

void DialogUi::Alarm() {
    QApplication::beep();
    if (!status.isNull()) {
        QApplication::alert(status);
    }
    Flash(true);
}

void DialogUi::Flash(bool on) {
    if (!status.isNull()) {
        status->Flash(on);
    }
}

void DialogUi::ShowFileStatus(std::uint32_t /*entry*/, const QString& /*path*/, const QString& /*status*/) {}

void DialogUi::CloseStatus() {
    delete status;
}

bool DialogUi::IsStepThroughVisible() const {
    return IsDebugScriptVisible();
}

// Whoever asks for this brings the dialog himself, or ends the module.
void DialogUi::CloseStepThrough() {
    KillDebugScript(AfterDebugScript::Nothing);
}

void DialogUi::OpenStepThrough() {
    DebugScriptCommand();
}

bool DialogUi::IsKeyCaptureOn() const {
    return TarnelData().CaptureActive;
}

void DialogUi::RefreshActiveWindow() {
    if (QWidget* view = acedGetAcadDwgView()) {
        view->update();
    }
}
