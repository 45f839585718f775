// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/ModuleTools.h"

#include <QAction>
#include <QIcon>
#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>

namespace drafthost {

ModuleTools::ModuleTools(QMainWindow& frame, std::function<void(const QString&)> type)
    : bar_(new QToolBar(tr("Modules"), &frame)),
      menu_(frame.menuBar()->addMenu(tr("&Modules"))),
      command_(std::move(type)) {
    bar_->setObjectName(QStringLiteral("moduleTools"));
    bar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    frame.addToolBar(bar_);
    showWhatIsThere();
}

void ModuleTools::add(const QString& text, const QString& label, const QString& picture) {
    remove(text);
    auto* action = new QAction(QIcon(picture), label, this);
    action->setData(text);
    action->setToolTip(tr("%1 (command %2)").arg(label, text.trimmed().toUpper()));
    connect(action, &QAction::triggered, this, [this, text] { command_(text); });
    bar_->addAction(action);
    menu_->addAction(action);
    showWhatIsThere();
}

void ModuleTools::remove(const QString& text) {
    for (QAction* action : bar_->actions()) {
        if (action->data().toString() == text) {
            delete action;
        }
    }
    showWhatIsThere();
}

void ModuleTools::showWhatIsThere() {
    const bool any = !bar_->actions().isEmpty();
    bar_->setVisible(any);
    bar_->toggleViewAction()->setVisible(any);
    menu_->menuAction()->setVisible(any);
}

}  // namespace drafthost
