// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The files of the chosen folder as a list, drawn from the record's browse arrays, which are in the order in
// which the files were found. The order of the rows, by path without regard to case, is this model's own.
#include "files/FolderListing.h"

#include <QAbstractTableModel>

class BrowseModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum Role { IsLinkRole = Qt::UserRole };

    using QAbstractTableModel::QAbstractTableModel;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void SetTitle(const QString& text);
    QString Path(int row) const;
    bool IsLink(int row) const;

    void Clear();
    /// Appends rows as they have been found; the order comes with Sort.
    void Append(const FoundFiles& files);
    /// Replaces all rows by others, in order.
    void Replace(const FoundFiles& files);
    /// Puts the rows in order. Nothing happens to rows that are in order already.
    void Sort();

  private:
    std::vector<std::uint32_t> order;
    QString title;
};
