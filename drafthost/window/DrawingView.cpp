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
    if (shownDocument != document_) {
        viewHeight_ = 0;
    }
    document_ = shownDocument;
    refresh();
}

void DrawingView::refresh() {
    if (document_ == nullptr) {
        shown_ = {};
    } else {
        shown_ = buildDisplayList(document_->drawing(), !modelIsCurrent(document_->drawing()));
        takeView();
    }
    update();
}

// A view that was set, or that the drawing has changed since it was last looked at, wins over what the wheel
// did.
void DrawingView::takeView() {
    const View view = currentView(document_->drawing());
    const QPointF place(view.center.x, view.center.y);
    const bool set = std::exchange(follow_, false);
    if (!set && view.height == viewHeight_ && place == viewCenter_) {
        return;
    }
    const bool first = viewHeight_ == 0;
    viewHeight_ = view.height;
    viewCenter_ = place;
    center_ = place;
    const double perPixel = view.height / std::max(height(), 1);
    unitsPerPixel_ = std::isfinite(perPixel) && perPixel > 0 ? perPixel : 1;
    // A drawing without a usable view is shown whole; one that was never looked at often says that a single
    // unit of it is seen.
    const QRectF seen(center_ - QPointF(width(), height()) * unitsPerPixel_ / 2,
                      QSizeF(width(), height()) * unitsPerPixel_);
    const bool tiny = first && seen.width() * 200 < shown_.bounds.width();
    if (!shown_.items.empty() && (tiny || !seen.intersects(shown_.bounds))) {
        center_ = shown_.bounds.center();
        unitsPerPixel_ = std::max({shown_.bounds.width() / std::max(width(), 1),
                                   shown_.bounds.height() / std::max(height(), 1), 1e-9}) *
                         1.05;
    }
}

QTransform DrawingView::toWindow() const {
    QTransform transform;
    transform.translate(width() / 2.0, height() / 2.0);
    transform.scale(1 / unitsPerPixel_, -1 / unitsPerPixel_);
    transform.translate(-center_.x(), -center_.y());
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
    for (const DisplayItem& item : shown_.items) {
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
    unitsPerPixel_ =
        std::clamp(unitsPerPixel_ * std::pow(1.25, -event->angleDelta().y() / 120.0), 1e-12, 1e15);
    center_ += before - toDrawing(event->position());
    update();
    event->accept();
}

void DrawingView::mousePressEvent(QMouseEvent* event) {
    dragged_ = event->position().toPoint();
    setCursor(Qt::ClosedHandCursor);
}

void DrawingView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (event->buttons() != Qt::NoButton) {
        center_ += toDrawing(QPointF(dragged_)) - toDrawing(QPointF(at));
        dragged_ = at;
        update();
    }
    Q_EMIT pointed(toDrawing(event->position()));
}

void DrawingView::mouseReleaseEvent(QMouseEvent*) {
    setCursor(Qt::CrossCursor);
}

}  // namespace drafthost
