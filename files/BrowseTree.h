// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The folder tree. It announces the folder that the user selects; a folder that is selected on behalf of
// something else that shows it already can be selected silently. Selecting one may wait for folders on the
// way, and goes on when they have been read, unless something else has been selected by then.
#include "files/FolderModel.h"

#include <QTreeView>

class BrowseTree : public QTreeView {
    Q_OBJECT
  public:
    explicit BrowseTree(QWidget* parent = nullptr);

    enum How { Announce = 0, Silent = 1, Expand = 2 };
    Q_DECLARE_FLAGS(Hows, How)

    /// Fills the tree as far as it stands open at first.
    void StartBuild();
    /// Finds a folder and selects it, now or when the folders on the way have been read. One that is not in
    /// the tree leaves the selection as it was.
    void SelectPath(const QByteArray& path, Hows how);
    void SelectDesktop();
    void SelectFavorites();
    /// Path of the selected folder; empty for none and for the favorites.
    QByteArray SelectedFolder() const;
    bool IsSearching() const { return !target.isEmpty(); }

  Q_SIGNALS:
    void FolderSelected(const QByteArray& path);

  protected:
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;
    void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void search();
    void select(const QModelIndex& index, Hows how);

    FolderModel* folders;
    QByteArray target;
    Hows targetHow;
    bool silent = false;
};
