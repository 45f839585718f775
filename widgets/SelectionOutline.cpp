// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SelectionOutline.h"

#include <QPainter>

void DrawSelectionOutline(QPainter& painter, const QPalette& palette, const QRect& row, bool aboveSelected,
                          bool belowSelected) {
    constexpr qreal Corner = 5;
    // An end that is open lies outside of what is painted, and takes its rounding with it.
    const int beyond = static_cast<int>(2 * Corner);
    QRectF shape = QRectF(row).adjusted(0.5, 0.5, -0.5, -0.5);
    shape.adjust(0, aboveSelected ? -beyond : 0, 0, belowSelected ? beyond : 0);
    painter.save();
    painter.setClipRect(row, Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette.color(QPalette::Highlight), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(shape, Corner, Corner);
    painter.restore();
}

void OutlinedItemDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->widget != nullptr && !option->widget->hasFocus()) {
        option->state &= ~QStyle::State_Selected;
    }
}
