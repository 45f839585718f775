// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A list of rows with columns, made for very many rows: a tree view without a tree. It outlines what is
// selected while the keyboard is elsewhere, and lets rows be dragged within it with the mouse. The drag is
// one of its own and no exchange with other windows, so that it can be followed row by row and broken off
// with Esc.
#include <QBasicTimer>
#include <QTreeView>
#include <vector>

class FocusListCtrl : public QTreeView {
    Q_OBJECT
  public:
    explicit FocusListCtrl(QWidget* parent = nullptr);

    /// Selected rows from top to bottom.
    std::vector<int> SelectedRows() const;
    bool HasSelection() const { return selectionModel() != nullptr && selectionModel()->hasSelection(); }
    bool IsRowSelected(int row) const;
    /// Selects the given rows, from top to bottom, and no others.
    void SelectRows(const std::vector<int>& rows);
    void InvertSelection();
    int RowCount() const { return model() == nullptr ? 0 : model()->rowCount(); }
    /// The row under a point of the screen, -1 when there is none.
    int RowAt(const QPoint& screenPoint) const;
    bool IsOver(const QPoint& screenPoint) const;
    /// Marks a row as the one behind which a drop would land; -1 for none.
    void SetDropRow(int row);

    /// Scrolls to where the list stood, after its rows have been replaced.
    void ScrollTo(int value);

    /// Whether rows can be dragged with the left button.
    void SetRowsDraggable(bool on) { draggable = on; }
    bool IsDragging() const { return dragging; }
    /// Ends a drag without a drop. While one goes on, the list scrolls when the pointer is at its upper or
    /// lower edge or beyond.
    void CancelDrag();

  Q_SIGNALS:
    void DragBegun(const QPoint& screenPoint);
    void DragMoved(const QPoint& screenPoint);
    void DragDropped();
    void DragCanceled();

  protected:
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    int scrollStep() const;
    void endDrag();

    bool draggable = false;
    bool dragging = false;
    bool pressedOnRow = false;
    QPoint pressedAt;
    /// Where the pointer was last during a drag, on the screen, and what scrolls the list while it rests
    /// there.
    QPoint dragPoint;
    QBasicTimer scrollTimer;
    int dropRow = -1;
};
