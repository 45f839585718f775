// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How lists and trees show what is selected while the keyboard is elsewhere: not filled but outlined, rows
// that follow one another as one capsule.
#include <QRect>
#include <QStyledItemDelegate>

class QPainter;
class QPalette;

/// Outlines one selected row, open towards a neighbour that is selected too.
void DrawSelectionOutline(QPainter& painter, const QPalette& palette, const QRect& row, bool aboveSelected,
                          bool belowSelected);

/// Draws items as the desktop does, but without the ground of a selection while the view has no focus.
class OutlinedItemDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};
