// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/ModuleTools.h"

#include <QAction>
#include <QIcon>
#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>

namespace drafthost {

ModuleTools::ModuleTools(QMainWindow& frame, std::function<void(const QString&)> type)
    : bar(new QToolBar(tr("Modules"), &frame)),
      menu(frame.menuBar()->addMenu(tr("&Modules"))),
      command(std::move(type)) {
    bar->setObjectName(QStringLiteral("moduleTools"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    frame.addToolBar(bar);
    showWhatIsThere();
}

void ModuleTools::add(const QString& text, const QString& label, const QString& picture) {
    remove(text);
    auto* action = new QAction(QIcon(picture), label, this);
    action->setData(text);
    action->setToolTip(tr("%1 (command %2)").arg(label, text.trimmed().toUpper()));
    connect(action, &QAction::triggered, this, [this, text] { command(text); });
    bar->addAction(action);
    menu->addAction(action);
    showWhatIsThere();
}

void ModuleTools::remove(const QString& text) {
    for (QAction* action : bar->actions()) {
        if (action->data().toString() == text) {
            delete action;
        }
    }
    showWhatIsThere();
}

void ModuleTools::showWhatIsThere() {
    const bool any = !bar->actions().isEmpty();
    bar->setVisible(any);
    bar->toggleViewAction()->setVisible(any);
    menu->menuAction()->setVisible(any);
}

}  // namespace drafthost
