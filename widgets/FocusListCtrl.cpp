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
#include <QTimerEvent>

namespace {
constexpr int ScrollInterval = 60;
}  // namespace

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

/// Rows to scroll by where the pointer rests in a drag: more of them the farther it is beyond the edge.
int FocusListCtrl::scrollStep() const {
    const int row = std::max(1, sizeHintForRow(0));
    const int y = viewport()->mapFromGlobal(dragPoint).y();
    const int edge = std::min(row / 2, viewport()->height() / 4);
    if (y < edge) {
        return -1 - (edge - y) / row;
    }
    const int below = y - (viewport()->height() - edge);
    return below >= 0 ? 1 + below / row : 0;
}

void FocusListCtrl::timerEvent(QTimerEvent* event) {
    if (event->timerId() != scrollTimer.timerId()) {
        QTreeView::timerEvent(event);
        return;
    }
    const int step = dragging ? scrollStep() : 0;
    QScrollBar* bar = verticalScrollBar();
    const int before = bar->value();
    const int row = verticalScrollMode() == ScrollPerPixel ? std::max(1, sizeHintForRow(0)) : 1;
    bar->setValue(before + step * row);
    if (bar->value() == before) {
        scrollTimer.stop();
    } else {
        // Another row is under the pointer now.
        Q_EMIT DragMoved(dragPoint);
    }
}

void FocusListCtrl::endDrag() {
    dragging = false;
    scrollTimer.stop();
}

void FocusListCtrl::CancelDrag() {
    if (dragging) {
        endDrag();
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
        dragPoint = event->globalPosition().toPoint();
        if (scrollStep() == 0) {
            scrollTimer.stop();
        } else if (!scrollTimer.isActive()) {
            scrollTimer.start(ScrollInterval, this);
        }
        Q_EMIT DragMoved(dragPoint);
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
        endDrag();
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
