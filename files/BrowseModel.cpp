// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/BrowseModel.h"

#include "engine/record/FileName.h"
#include "engine/record/TarnelData.h"
#include "files/FolderLinks.h"
#include "files/StatusColors.h"

#include <algorithm>
#include <numeric>
#include <QFont>
#include <QGuiApplication>

namespace {

/// Appends to the record's three arrays. The pictures are the desktop's, and the list shows none.
void appendFiles(CTarnelData& data, const FoundFiles& files) {
    for (std::size_t i = 0; i < files.Paths.size(); ++i) {
        data.BrowsePaths.push_back(files.Paths[i]);
        data.BrowseIsLink.push_back(files.IsLink[i]);
        data.BrowseIcons.push_back(0);
    }
}

void clearFiles(CTarnelData& data) {
    data.BrowsePaths.clear();
    data.BrowseIsLink.clear();
    data.BrowseIcons.clear();
}

}  // namespace

int BrowseModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(order.size());
}

int BrowseModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 1;
}

QString BrowseModel::Path(int row) const {
    return TarnelData().BrowsePaths[order.at(static_cast<std::size_t>(row))];
}

bool BrowseModel::IsLink(int row) const {
    return TarnelData().BrowseIsLink[order.at(static_cast<std::size_t>(row))] != 0;
}

QVariant BrowseModel::data(const QModelIndex& index, int role) const {
    const bool isLink = IsLink(index.row());
    switch (role) {
        case Qt::DisplayRole: {
            const CFileName name(Path(index.row()));
            // A folder's own name may well have a dot in it; only what is a file for the link alone loses its
            // ending.
            return isLink && IsLinkFileName(name.GetNameExt()) ? name.GetName() : name.GetNameExt();
        }
        case Qt::ToolTipRole:
            return Path(index.row());
        case Qt::ForegroundRole:
            return isLink ? QVariant(LinkColor(QGuiApplication::palette())) : QVariant();
        case Qt::FontRole: {
            if (!isLink) {
                return {};
            }
            // What is not set here comes from the list's own font.
            QFont font;
            font.setBold(true);
            font.setUnderline(true);
            return font;
        }
        case IsLinkRole:
            return isLink;
        default:
            return {};
    }
}

QVariant BrowseModel::headerData(int /*section*/, Qt::Orientation orientation, int role) const {
    return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant(title) : QVariant();
}

void BrowseModel::SetTitle(const QString& text) {
    title = text;
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, 0);
}

void BrowseModel::Clear() {
    Replace({});
}

void BrowseModel::Append(const FoundFiles& files) {
    if (files.Paths.empty()) {
        return;
    }
    const std::size_t before = order.size();
    beginInsertRows({}, static_cast<int>(before), static_cast<int>(before + files.Paths.size()) - 1);
    appendFiles(TarnelData(), files);
    order.resize(before + files.Paths.size());
    std::iota(order.begin() + static_cast<std::ptrdiff_t>(before), order.end(),
              static_cast<std::uint32_t>(before));
    endInsertRows();
}

void BrowseModel::Replace(const FoundFiles& files) {
    beginResetModel();
    clearFiles(TarnelData());
    appendFiles(TarnelData(), files);
    order.resize(files.Paths.size());
    std::iota(order.begin(), order.end(), 0U);
    endResetModel();
    Sort();
}

void BrowseModel::Sort() {
    const CheckedArray<QString>& paths = TarnelData().BrowsePaths;
    const auto before = [&](std::uint32_t a, std::uint32_t b) {
        return paths[a].compare(paths[b], Qt::CaseInsensitive) < 0;
    };
    if (std::is_sorted(order.begin(), order.end(), before)) {
        return;
    }
    beginResetModel();
    std::sort(order.begin(), order.end(), before);
    endResetModel();
}
