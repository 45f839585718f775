// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/DrawingView.h"

#include "drafthost/drawing/View.h"
#include "drafthost/editor/Document.h"

#include <cmath>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <utility>

namespace drafthost {

DrawingView::DrawingView(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setMinimumSize(120, 80);
    setAccessibleName(tr("Drawing"));
    setCursor(Qt::CrossCursor);
}

void DrawingView::show(Document* shownDocument) {
    if (shownDocument != document) {
        viewHeight = 0;
    }
    document = shownDocument;
    refresh();
}

void DrawingView::refresh() {
    if (document == nullptr) {
        shown = {};
    } else {
        shown = buildDisplayList(document->drawing(), !modelIsCurrent(document->drawing()));
        takeView();
    }
    update();
}

// A view that was set, or that the drawing has changed since it was last looked at, wins over what the wheel
// did.
void DrawingView::takeView() {
    const View view = currentView(document->drawing());
    const QPointF place(view.center.x, view.center.y);
    const bool set = std::exchange(follow, false);
    if (!set && view.height == viewHeight && place == viewCenter) {
        return;
    }
    const bool first = viewHeight == 0;
    viewHeight = view.height;
    viewCenter = place;
    center = place;
    const double perPixel = view.height / std::max(height(), 1);
    unitsPerPixel = std::isfinite(perPixel) && perPixel > 0 ? perPixel : 1;
    // A drawing without a usable view is shown whole; one that was never looked at often says that a single
    // unit of it is seen.
    const QRectF seen(center - QPointF(width(), height()) * unitsPerPixel / 2,
                      QSizeF(width(), height()) * unitsPerPixel);
    const bool tiny = first && seen.width() * 200 < shown.bounds.width();
    if (!shown.items.empty() && (tiny || !seen.intersects(shown.bounds))) {
        center = shown.bounds.center();
        unitsPerPixel = std::max({shown.bounds.width() / std::max(width(), 1),
                                  shown.bounds.height() / std::max(height(), 1), 1e-9}) *
                        1.05;
    }
}

QTransform DrawingView::toWindow() const {
    QTransform transform;
    transform.translate(width() / 2.0, height() / 2.0);
    transform.scale(1 / unitsPerPixel, -1 / unitsPerPixel);
    transform.translate(-center.x(), -center.y());
    return transform;
}

QPointF DrawingView::toDrawing(const QPointF& place) const {
    return toWindow().inverted().map(place);
}

void DrawingView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor ground(33, 40, 48);
    painter.fillRect(rect(), ground);
    painter.setRenderHint(QPainter::Antialiasing);
    const QTransform transform = toWindow();
    const QRectF seen = transform.inverted().mapRect(QRectF(rect())).adjusted(-1e-9, -1e-9, 1e-9, 1e-9);
    const QFont font(QStringLiteral("DejaVu Sans"), 100);
    const double capital = QFontMetricsF(font).capHeight();
    const QFontMetricsF metrics(font);
    for (const DisplayItem& item : shown.items) {
        if (!seen.intersects(item.bounds.adjusted(-1e-9, -1e-9, 1e-9, 1e-9))) {
            continue;
        }
        const QColor color = item.color.isValid() ? item.color : QColor(Qt::white);
        if (item.dot) {
            painter.setPen(QPen(color, 3));
            painter.drawPoint(transform.map(item.path.currentPosition()));
        } else if (item.text.isEmpty()) {
            painter.setPen(QPen(color, 0));
            painter.setBrush(item.filled ? QBrush(color) : QBrush(Qt::NoBrush));
            painter.drawPath(transform.map(item.path));
        } else {
            const QTransform place = item.place * transform;
            // Text too small to read is a line.
            if (std::hypot(place.m21(), place.m22()) < 3) {
                painter.setPen(QPen(color, 0));
                const double length = 0.6 * double(item.text.size());
                painter.drawLine(place.map(QPointF(0, 0.4)), place.map(QPointF(length, 0.4)));
                continue;
            }
            const double length = metrics.horizontalAdvance(item.text);
            const double squeeze = length > 0 ? 0.6 * double(item.text.size()) / length : 1 / capital;
            painter.save();
            painter.setTransform(QTransform::fromScale(squeeze, -1 / capital) * place);
            painter.setPen(color);
            painter.setFont(font);
            painter.drawText(QPointF(0, 0), item.text);
            painter.restore();
        }
    }
}

void DrawingView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Q_EMIT resized(size());
}

void DrawingView::wheelEvent(QWheelEvent* event) {
    const QPointF before = toDrawing(event->position());
    unitsPerPixel = std::clamp(unitsPerPixel * std::pow(1.25, -event->angleDelta().y() / 120.0), 1e-12, 1e15);
    center += before - toDrawing(event->position());
    update();
    event->accept();
}

void DrawingView::mousePressEvent(QMouseEvent* event) {
    dragged = event->position().toPoint();
    setCursor(Qt::ClosedHandCursor);
}

void DrawingView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (event->buttons() != Qt::NoButton) {
        center += toDrawing(QPointF(dragged)) - toDrawing(QPointF(at));
        dragged = at;
        update();
    }
    Q_EMIT pointed(toDrawing(event->position()));
}

void DrawingView::mouseReleaseEvent(QMouseEvent*) {
    setCursor(Qt::CrossCursor);
}

}  // namespace drafthost
