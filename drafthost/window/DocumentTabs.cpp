// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/DocumentTabs.h"

#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost {

DocumentTabs::DocumentTabs(QWidget* parent) : QTabBar(parent) {
    setExpanding(false);
    setTabsClosable(true);
    setUsesScrollButtons(true);
    setElideMode(Qt::ElideMiddle);
    setAccessibleName(tr("Open drawings"));
}

void DocumentTabs::showDocuments(Host& host) {
    const auto open = host.documents();
    const QSignalBlocker quiet(this);
    while (count() > int(open.size())) {
        removeTab(count() - 1);
    }
    while (count() < int(open.size())) {
        addTab(QString());
    }
    for (int i = 0; i < int(open.size()); ++i) {
        const Document& document = *open[std::size_t(i)];
        const bool changed = document.modified() != 0;
        QString title = QString::fromStdString(document.title()).replace(u'&', QLatin1String("&&"));
        setTabText(i, changed ? title + u'*' : title);
        QString tip = QString::fromStdString(document.hasName() ? document.path() : document.title());
        if (document.isReadOnly()) {
            tip += tr("\nopened read-only");
        }
        setTabToolTip(i, changed ? tip + tr("\nhas unsaved changes") : tip);
        if (&document == host.current()) {
            setCurrentIndex(i);
        }
    }
}

}  // namespace drafthost
