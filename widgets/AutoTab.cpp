#include "widgets/AutoTab.h"

#include "widgets/BalloonHelp.h"

CAutoTab::CAutoTab(QWidget* parent) : QTabWidget(parent) {
    connect(this, &QTabWidget::currentChanged, this, [] { CBalloonHelp::CloseAll(); });
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
