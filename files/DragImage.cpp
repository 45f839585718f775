// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/DragImage.h"

#include "widgets/FocusListCtrl.h"

#include <algorithm>
#include <QHeaderView>
#include <QPainter>

DragImage::DragImage(QWidget* page, const FocusListCtrl& list) : QWidget(page) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    const std::vector<int> rows = list.SelectedRows();
    const QHeaderView* header = list.header();
    const int rowHeight =
        std::max(1, list.visualRect(list.model()->index(rows.empty() ? 0 : rows.front(), 0)).height());
    // Nobody sees more rows than the page is high.
    const int most = page->height() / rowHeight + 1;
    const int shown = std::min(static_cast<int>(rows.size()), most);
    const QSize size(std::max(1, header->sectionSize(0)), std::max(1, rowHeight * shown));
    const qreal ratio = page->devicePixelRatioF();
    picture = QPixmap(size * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setFont(list.font());
    painter.setPen(list.palette().color(QPalette::Text));
    for (int i = 0; i < shown; ++i) {
        int left = 0;
        for (int visual = 0; visual < header->count(); ++visual) {
            const int column = header->logicalIndex(visual);
            const int width = header->sectionSize(column);
            const QRect cell(left, i * rowHeight, width, rowHeight);
            painter.drawText(
                cell, Qt::TextWordWrap,
                list.model()->index(rows[static_cast<std::size_t>(i)], column).data().toString());
            left += width;
        }
    }
    resize(size);
}

void DragImage::MoveTo(const QPoint& screenPoint) {
    move(parentWidget()->mapFromGlobal(screenPoint));
    raise();
    show();
}

void DragImage::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, picture);
}
