#include "widgets/AutoTab.h"

#include "widgets/BalloonHelp.h"

#include <QTabBar>

CAutoTab::CAutoTab(QWidget* parent) : QTabWidget(parent) {
    tabBar()->setAccessibleName(tr("Pages"));
    connect(this, &QTabWidget::currentChanged, this, [this] {
        CBalloonHelp::CloseAll();
        // The keyboard goes on in what the page is for, not in whatever button stands first on it.
        if (currentWidget() != nullptr && currentWidget()->focusProxy() != nullptr && isVisible() &&
            !tabBar()->hasFocus())
            currentWidget()->setFocus(Qt::ShortcutFocusReason);
    });
}

void CAutoTab::AddTab(const QString& title, QWidget* page, const QIcon& icon) {
    addTab(page, icon, title);
}

void CAutoTab::SetActive(int index) {
    if (index >= 0 && index < count())
        setCurrentIndex(index);
}

void CAutoTab::Step(int direction) {
    if (count() > 0)
        setCurrentIndex((currentIndex() + direction + count()) % count());
}
