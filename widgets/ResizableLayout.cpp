// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ResizableLayout.h"

#include <QFontMetricsF>
#include <QStringList>
#include <QVariant>
#include <QWidget>

QRect FromDialogUnits(const QWidget* widget, const QRect& units) {
    const QFontMetricsF metrics(widget->font());
    const QString alphabet = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    const qreal x = metrics.horizontalAdvance(alphabet) / alphabet.size() / 4;
    const qreal y = metrics.height() / 8;
    return {QPoint(qRound(units.x() * x), qRound(units.y() * y)),
            QSize(qRound(units.width() * x), qRound(units.height() * y))};
}

void CResizableLayout::Attach(QWidget* owner) {
    dialog = owner;
    items.clear();
    designSize = FromDialogUnits(owner, QRect(QPoint(), owner->size())).size();
    for (QWidget* control : owner->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (control->isWindow()) {
            continue;
        }
        const QStringList numbers = control->property("anchors").toString().split(u',');
        Item item{control, FromDialogUnits(owner, control->geometry()), {}, {}};
        if (numbers.size() == 4) {
            item.TopLeft = {numbers[0].toInt(), numbers[1].toInt()};
            item.BottomRight = {numbers[2].toInt(), numbers[3].toInt()};
        }
        items.push_back(item);
    }
    owner->resize(designSize);
    Arrange();
}

void CResizableLayout::AddAnchor(QWidget* control, QPoint topLeft, QPoint bottomRight) {
    for (Item& item : items) {
        if (item.Control == control) {
            item.TopLeft = topLeft;
            item.BottomRight = bottomRight;
        }
    }
    Arrange();
}

QRect CResizableLayout::Design(const QWidget* control) const {
    for (const Item& item : items) {
        if (item.Control == control) {
            return item.Design;
        }
    }
    return {};
}

void CResizableLayout::SetDesign(const QWidget* control, const QRect& place) {
    for (Item& item : items) {
        if (item.Control == control) {
            item.Design = place;
        }
    }
    Arrange();
}

void CResizableLayout::Arrange() {
    if (dialog == nullptr) {
        return;
    }
    const QSize grown = dialog->size() - designSize;
    for (const Item& item : items) {
        QRect place = item.Design;
        place.setLeft(place.left() + grown.width() * item.TopLeft.x() / 100);
        place.setTop(place.top() + grown.height() * item.TopLeft.y() / 100);
        place.setRight(item.Design.right() + grown.width() * item.BottomRight.x() / 100);
        place.setBottom(item.Design.bottom() + grown.height() * item.BottomRight.y() / 100);
        item.Control->setGeometry(place);
    }
}
