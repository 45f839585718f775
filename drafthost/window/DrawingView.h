// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The window into a drawing: paints the display list, zooms with the wheel at the pointer, pans by dragging.
// It follows the view that the drawing itself keeps (ZOOM) and changes it only on the screen.
#include "drafthost/window/DisplayList.h"

#include <QWidget>

namespace drafthost {

class Document;

class DrawingView : public QWidget {
    Q_OBJECT
  public:
    explicit DrawingView(QWidget* parent = nullptr);
    /// Shows a document, null for none. The list of what to paint is made anew; what the wheel did to the
    /// view of the same document stays.
    void show(Document* document);
    using QWidget::show;
    /// Takes over what commands have changed: entities, layers and the view.
    void refresh();
    /// A command has set the view: from the next look on it wins over what the mouse did since.
    void followView() { follow_ = true; }
    const DisplayList& list() const { return shown_; }
    /// Drawing coordinates of a place in the window.
    QPointF toDrawing(const QPointF& place) const;

  Q_SIGNALS:
    /// The pointer stands over this place of the drawing.
    void pointed(const QPointF& place);
    void resized(const QSize& size);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void takeView();
    QTransform toWindow() const;

    Document* document_ = nullptr;
    DisplayList shown_;
    QPointF center_;
    double unitsPerPixel_ = 1;
    double viewHeight_ = 0;
    bool follow_ = false;
    QPointF viewCenter_;
    QPoint dragged_;
};

}  // namespace drafthost
