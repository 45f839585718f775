// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/BrowseTree.h"

#include "files/FolderPlaces.h"
#include "widgets/SelectionOutline.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>

BrowseTree::BrowseTree(QWidget* parent) : QTreeView(parent), folders(new FolderModel(this)) {
    setModel(folders);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setEditTriggers(NoEditTriggers);
    setItemDelegate(new OutlinedItemDelegate(this));
    // As wide as what it shows, so that deep folders can be scrolled to.
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(folders, &FolderModel::FolderRead, this, [this] { search(); });
}

void BrowseTree::StartBuild() {
    folders->fetchMore(folders->Desktop());
    folders->fetchMore(folders->Favorites());
    expand(folders->Desktop());
}

void BrowseTree::SelectPath(const QByteArray& path, Hows how) {
    target = TidyPath(path);
    targetHow = how;
    search();
}

void BrowseTree::search() {
    if (target.isEmpty()) {
        return;
    }
    QModelIndex found;
    // Reading a folder on the way comes back here, when the folder answers at once.
    const QByteArray wanted = std::exchange(target, {});
    switch (folders->Find(wanted, &found)) {
        case FolderModel::Search::Waiting:
            target = wanted;
            break;
        case FolderModel::Search::Found:
            select(found, targetHow);
            break;
        case FolderModel::Search::NotFound:
            break;
    }
}

void BrowseTree::SelectDesktop() {
    select(folders->Desktop(), Announce);
}

void BrowseTree::SelectFavorites() {
    select(folders->Favorites(), Expand);
}

void BrowseTree::select(const QModelIndex& index, Hows how) {
    target.clear();
    silent = how.testFlag(Silent);
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
        expand(above);
    }
    setCurrentIndex(index);
    scrollTo(index);
    silent = false;
    if (how.testFlag(Expand)) {
        expand(index);
    }
}

QByteArray BrowseTree::SelectedFolder() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? QByteArray() : folders->Path(selected.first());
}

void BrowseTree::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QTreeView::selectionChanged(selected, deselected);
    // What was looked for before the user went elsewhere is not wanted any more.
    target.clear();
    if (!silent && !selected.isEmpty()) {
        Q_EMIT FolderSelected(SelectedFolder());
    }
}

void BrowseTree::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QTreeView::drawRow(painter, option, index);
    if (!hasFocus() && selectionModel()->isSelected(index)) {
        DrawSelectionOutline(*painter, palette(), visualRect(index), false, false);
    }
}

// The ground of a selection reaches to the left edge; an outline has none.
void BrowseTree::drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const {
    if (!hasFocus() && selectionModel()->isSelected(index)) {
        painter->fillRect(rect, palette().base());
    }
    QTreeView::drawBranches(painter, rect, index);
}

// Enter opens or closes a folder here; left to the dialog it would start a run.
void BrowseTree::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && currentIndex().isValid()) {
        setExpanded(currentIndex(), !isExpanded(currentIndex()));
        event->accept();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void BrowseTree::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    viewport()->update();
}

void BrowseTree::focusOutEvent(QFocusEvent* event) {
    QTreeView::focusOutEvent(event);
    viewport()->update();
}
