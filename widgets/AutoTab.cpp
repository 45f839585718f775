// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/AutoTab.h"

#include "widgets/BalloonHelp.h"

#include <QEvent>
#include <QTabBar>

CAutoTab::CAutoTab(QWidget* parent) : QTabWidget(parent) {
    tabBar()->setAccessibleName(tr("Pages"));
    connect(this, &QTabWidget::currentChanged, this, [this] {
        CBalloonHelp::CloseAll();
        if (isVisible() && !tabBar()->hasFocus()) {
            FocusPage();
        }
    });
    tabBar()->installEventFilter(this);
}

// The keyboard goes on in what the page is for, not in whatever button stands first on it.
void CAutoTab::FocusPage() {
    if (currentWidget() != nullptr && currentWidget()->focusProxy() != nullptr) {
        currentWidget()->setFocus(Qt::ShortcutFocusReason);
    }
}

// The letter of a title leads into its page, also into the one that is shown and also from the titles, where
// the arrow keys stay. Otherwise what is typed next would be lost, and its Enter would press the default
// button.
bool CAutoTab::eventFilter(QObject* watched, QEvent* event) {
    if (watched == tabBar() && event->type() == QEvent::Shortcut) {
        QMetaObject::invokeMethod(this, &CAutoTab::FocusPage, Qt::QueuedConnection);
    }
    return QTabWidget::eventFilter(watched, event);
}

void CAutoTab::AddTab(const QString& title, QWidget* page, const QIcon& icon) {
    addTab(page, icon, title);
}

void CAutoTab::SetActive(int index) {
    if (index >= 0 && index < count()) {
        setCurrentIndex(index);
    }
}

void CAutoTab::Step(int direction) {
    if (count() == 0) {
        return;
    }
    setCurrentIndex((currentIndex() + direction + count()) % count());
    FocusPage();
}
