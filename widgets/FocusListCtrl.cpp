// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FocusListCtrl.h"

#include "widgets/SelectionOutline.h"

#include <algorithm>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

FocusListCtrl::FocusListCtrl(QWidget* parent) : QTreeView(parent) {
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setItemDelegate(new OutlinedItemDelegate(this));
    // A column may be hidden by its width alone, and be drawn wider again.
    header()->setMinimumSectionSize(0);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(true);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

std::vector<int> FocusListCtrl::SelectedRows() const {
    std::vector<int> rows;
    if (selectionModel() == nullptr) {
        return rows;
    }
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

bool FocusListCtrl::IsRowSelected(int row) const {
    return row >= 0 && row < RowCount() && selectionModel()->isSelected(model()->index(row, 0));
}

void FocusListCtrl::SelectRows(const std::vector<int>& rows) {
    QItemSelection selection;
    const int last = model()->columnCount() - 1;
    for (std::size_t i = 0; i < rows.size();) {
        std::size_t end = i + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1) {
            ++end;
        }
        selection.append(
            QItemSelectionRange(model()->index(rows[i], 0), model()->index(rows[end - 1], last)));
        i = end;
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void FocusListCtrl::InvertSelection() {
    std::vector<int> others;
    const std::vector<int> rows = SelectedRows();
    auto next = rows.begin();
    for (int row = 0; row < RowCount(); ++row) {
        if (next != rows.end() && *next == row) {
            ++next;
        } else {
            others.push_back(row);
        }
    }
    SelectRows(others);
}

bool FocusListCtrl::IsOver(const QPoint& screenPoint) const {
    return viewport()->rect().contains(viewport()->mapFromGlobal(screenPoint));
}

int FocusListCtrl::RowAt(const QPoint& screenPoint) const {
    return IsOver(screenPoint) ? indexAt(viewport()->mapFromGlobal(screenPoint)).row() : -1;
}

void FocusListCtrl::SetDropRow(int row) {
    if (row != dropRow) {
        dropRow = row;
        viewport()->update();
    }
}

void FocusListCtrl::ScrollTo(int value) {
    // The range of the bar follows the rows only when they have been laid out.
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(value);
}

void FocusListCtrl::CancelDrag() {
    if (dragging) {
        dragging = false;
        pressedOnRow = false;
        Q_EMIT DragCanceled();
    }
}

void FocusListCtrl::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    QTreeView::drawRow(painter, option, index);
    QRect row = option.rect;
    row.setLeft(-horizontalScrollBar()->value());
    row.setWidth(header()->length());
    if (index.row() == dropRow) {
        QColor mark = palette().color(QPalette::Highlight);
        mark.setAlpha(90);
        painter->fillRect(row, mark);
    }
    if (!hasFocus() && IsRowSelected(index.row())) {
        DrawSelectionOutline(*painter, palette(), row.adjusted(1, 0, 0, 0), IsRowSelected(index.row() - 1),
                             IsRowSelected(index.row() + 1));
    }
}

void FocusListCtrl::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    if (dragging) {
        return;
    }
    QTreeView::mousePressEvent(event);
    pressedAt = event->position().toPoint();
    pressedOnRow = event->button() == Qt::LeftButton && IsRowSelected(indexAt(pressedAt).row());
}

void FocusListCtrl::mouseMoveEvent(QMouseEvent* event) {
    if (dragging) {
        Q_EMIT DragMoved(event->globalPosition().toPoint());
        return;
    }
    if (!draggable || !pressedOnRow || (event->buttons() & Qt::LeftButton) == 0) {
        QTreeView::mouseMoveEvent(event);
        return;
    }
    if ((event->position().toPoint() - pressedAt).manhattanLength() >= QApplication::startDragDistance()) {
        dragging = true;
        Q_EMIT DragBegun(event->globalPosition().toPoint());
    }
}

void FocusListCtrl::mouseReleaseEvent(QMouseEvent* event) {
    pressedOnRow = false;
    if (!dragging) {
        QTreeView::mouseReleaseEvent(event);
    } else if (event->button() == Qt::LeftButton) {
        dragging = false;
        Q_EMIT DragDropped();
        // The view has not seen the button go up.
        setState(NoState);
    }
}

void FocusListCtrl::keyPressEvent(QKeyEvent* event) {
    if (dragging) {
        // While rows are on their way nothing else may happen to them.
        if (event->key() == Qt::Key_Escape) {
            CancelDrag();
            setState(NoState);
        }
        event->accept();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void FocusListCtrl::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    viewport()->update();
}

void FocusListCtrl::focusOutEvent(QFocusEvent* event) {
    QTreeView::focusOutEvent(event);
    viewport()->update();
}
