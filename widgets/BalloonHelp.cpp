// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/BalloonHelp.h"

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QToolTip>

namespace {

constexpr int Margin = 10;
constexpr int TipHeight = 14;
constexpr int TextWidth = 340;

QList<CBalloonHelp*>& openBalloons() {
    static QList<CBalloonHelp*> open;
    return open;
}

QStyle::StandardPixmap standardPixmap(QMessageBox::Icon icon) {
    switch (icon) {
        case QMessageBox::Warning:
            return QStyle::SP_MessageBoxWarning;
        case QMessageBox::Critical:
            return QStyle::SP_MessageBoxCritical;
        default:
            return QStyle::SP_MessageBoxInformation;
    }
}

}  // namespace

CBalloonHelp* CBalloonHelp::Show(QWidget* parent, const QString& title, const QString& text, const QPoint& at,
                                 QMessageBox::Icon icon, int life) {
    return new CBalloonHelp(parent, title, text, at, icon, life);
}

void CBalloonHelp::CloseAll() {
    const QList<CBalloonHelp*> open = openBalloons();
    for (CBalloonHelp* balloon : open) {
        delete balloon;
    }
}

int CBalloonHelp::OpenCount() {
    return static_cast<int>(openBalloons().size());
}

CBalloonHelp::CBalloonHelp(QWidget* parent, const QString& caption, const QString& message, const QPoint& at,
                           QMessageBox::Icon icon, int life)
    : QWidget(parent, Qt::ToolTip | Qt::FramelessWindowHint), title(caption), text(message.trimmed()) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAccessibleName(title);
    setAccessibleDescription(text);
    setPalette(QToolTip::palette());
    picture = style()
                  ->standardPixmap(standardPixmap(icon), nullptr, this)
                  .scaled(24, 24, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QFont bold = font();
    bold.setBold(true);
    const QRect head = QFontMetrics(bold).boundingRect(title);
    const QRect lines = fontMetrics().boundingRect(QRect(0, 0, TextWidth, 1000), Qt::TextWordWrap, text);
    const QSize size(std::max(head.width() + 34, lines.width()) + 2 * Margin,
                     std::max(head.height(), 26) + lines.height() + 3 * Margin);
    const QScreen* screen = QApplication::screenAt(at);
    const QRect area = screen != nullptr ? screen->availableGeometry() : QRect(at, size);
    // Above the point when there is room, so that the balloon does not cover what it speaks of.
    const bool above = at.y() - size.height() - TipHeight >= area.top();
    int left = at.x() - size.width() / 3;
    left = std::clamp(left, area.left(), std::max(area.left(), area.right() - size.width()));
    body = QRect(QPoint(0, above ? 0 : TipHeight), size);
    const int tipX = std::clamp(at.x() - left, Margin, size.width() - Margin);
    const int edge = above ? size.height() - 1 : TipHeight + 1;
    tip << QPoint(tipX - 8, edge) << QPoint(tipX + 8, edge)
        << QPoint(tipX, above ? size.height() + TipHeight - 1 : 1);
    setGeometry(
        QRect(QPoint(left, above ? at.y() - size.height() - TipHeight : at.y()), size + QSize(0, TipHeight)));
    // Cut out as well, for desktops that do not blend windows.
    setMask(QRegion(outline().toFillPolygon().toPolygon()).united(QRegion(body.adjusted(3, 3, -3, -3))));
    openBalloons().append(this);
    connect(this, &QObject::destroyed, qApp, [this] { openBalloons().removeAll(this); });
    if (life > 0) {
        QTimer::singleShot(life, this, &QObject::deleteLater);
    }
    qApp->installEventFilter(this);
    show();
}

QPainterPath CBalloonHelp::outline() const {
    QPainterPath box;
    box.addRoundedRect(QRectF(body).adjusted(.5, .5, -.5, -.5), 6, 6);
    QPainterPath pointer;
    pointer.addPolygon(QPolygonF(tip));
    pointer.closeSubpath();
    return box.united(pointer);
}

void CBalloonHelp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::ToolTipText));
    painter.setBrush(palette().color(QPalette::ToolTipBase));
    painter.drawPath(outline());
    const QRect inner = body.adjusted(Margin, Margin, -Margin, -Margin);
    painter.drawPixmap(inner.topLeft(), picture);
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.drawText(QRect(inner.left() + 34, inner.top(), inner.width() - 34, 24),
                     Qt::AlignLeft | Qt::AlignVCenter, title);
    painter.setFont(font());
    painter.drawText(inner.adjusted(0, std::max(QFontMetrics(bold).height(), 26) + Margin, 0, 0),
                     Qt::AlignLeft | Qt::TextWordWrap, text);
}

void CBalloonHelp::mousePressEvent(QMouseEvent*) {
    deleteLater();
}

bool CBalloonHelp::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched->isWindowType()) {
        deleteLater();
    }
    return QWidget::eventFilter(watched, event);
}
