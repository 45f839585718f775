// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/DebugScriptBar.h"

#include "acdocman.h"
#include "acframe.h"
#include "engine/HostInput.h"
#include "engine/HostVariables.h"
#include "engine/record/FileName.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "log/Trace.h"
#include "script/DebugScript.h"
#include "state/StateFile.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QMainWindow>
#include <QPointer>

namespace {

/// Under this name the host remembers the window's place.
const QString ToolId = QStringLiteral("{37B0EB0F-D66C-4DD1-BEB3-949A815D08BC}");
constexpr int StandardWidth = 340;

class DebugScriptBar : public QDockWidget {
  public:
    explicit DebugScriptBar(QMainWindow* frame) : QDockWidget(frame), script(new DebugScript(this)) {
        setObjectName(ToolId);
        setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
        setWidget(script);
        setWindowTitle(script->windowTitle());
        connect(script, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
        // Not from within its own button.
        connect(
            script, &DebugScript::CloseWanted, this, [] { KillDebugScript(); }, Qt::QueuedConnection);
    }

  protected:
    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        Q_EMIT script->CloseWanted();
    }

  private:
    DebugScript* script;
};

QPointer<DebugScriptBar> bar;

QString currentDrawing() {
    return JoinPath(TrimSeparators(HostTextVariable("DWGPREFIX")), HostTextVariable("DWGNAME"));
}

}  // namespace

void DebugScriptCommand() {
    QMainWindow* frame = acedGetAcadFrame();
    if (frame == nullptr) {
        return;
    }
    AcApDocManager* documents = acDocManagerPtr();
    documents->pushResourceHandle();
    if (bar.isNull()) {
        if (TarnelData().StateFile.isEmpty()) {
            ResolveStateFile();
        }
        const bool captures = TarnelData().CaptureActive;
        LoadRunState();
        TarnelData().CaptureActive = captures;
        SaveSystemVars(CmddiaVar | FilediaVar, 0, 0, 0, 0);
    }
    SetScriptVariables(currentDrawing());
    if (bar.isNull()) {
        bar = new DebugScriptBar(frame);
        if (!AdUiRestoreDockingToolPosition(bar)) {
            frame->addDockWidget(Qt::RightDockWidgetArea, bar);
            frame->resizeDocks({bar}, {StandardWidth}, Qt::Horizontal);
        }
    }
    bar->show();
    frame->activateWindow();
    if (QWidget* view = acedGetAcadDwgView()) {
        view->setFocus();
    }
    documents->disableDocumentActivation();
    documents->popResourceHandle();
}

void KillDebugScript(AfterDebugScript after) {
    if (!bar.isNull()) {
        AdUiSaveDockingToolPositions();
        delete bar->widget();
        AcApDocManager* documents = acDocManagerPtr();
        documents->enableDocumentActivation();
        delete bar;
        if (QMainWindow* frame = acedGetAcadFrame()) {
            frame->activateWindow();
        }
        if (after == AfterDebugScript::MainDialog) {
            SendToHost(QString(2, QChar(3)) + QStringLiteral("tarnel\n"));
        }
    }
    Trace("Unregister\n");
}

bool IsDebugScriptVisible() {
    return !bar.isNull() && !bar->isHidden();
}
