// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/QueueModel.h"

#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "files/StatusColors.h"

#include <array>
#include <QGuiApplication>

int QueueModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(TarnelData().FileOrder.size());
}

int QueueModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant QueueModel::data(const QModelIndex& index, int role) const {
    const CTarnelData& record = TarnelData();
    const std::uint32_t entry = record.FileOrder[static_cast<std::size_t>(index.row())];
    if (role == Qt::ToolTipRole) {
        return EntryPath(record, entry);
    }
    if (role == Qt::ForegroundRole) {
        const QColor color = StatusColor(EntryStatus(record, entry), QGuiApplication::palette());
        return color.isValid() ? QVariant(color) : QVariant();
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (index.column()) {
        case NameColumn:
            return record.FileNames[entry];
        case DirectoryColumn:
            return record.FileDirs[entry];
        default:
            return FileStatusWord(EntryStatus(record, entry));
    }
}

QVariant QueueModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    const std::array<QString, ColumnCount> titles = {tr("File Name"), tr("Directory"), tr("Status")};
    return titles.at(static_cast<std::size_t>(section));
}

void QueueModel::Reset() {
    beginResetModel();
    endResetModel();
}
