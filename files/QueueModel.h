// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The queue as a table: each row is drawn straight from the record's arrays, in the order in which a run goes
// through them. There is no copy that could get out of step.
#include <QAbstractTableModel>

class QueueModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum Column { NameColumn, DirectoryColumn, StatusColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The record's queue is another one, or in another order.
    void Reset();
};
