// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The picture of the rows that are being dragged. It hangs at the pointer, over the page that it was made
// for.
#include <QPixmap>
#include <QWidget>

class FocusListCtrl;

class DragImage : public QWidget {
    Q_OBJECT
  public:
    /// A picture of the list's selected rows, over the given page.
    DragImage(QWidget* page, const FocusListCtrl& list);
    void MoveTo(const QPoint& screenPoint);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QPixmap picture;
};
