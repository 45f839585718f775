// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The folders as a tree with two roots: the user's desktop, with the computer's places and the desktop's own
// folders below it, and the favorites. A folder is read when it is first opened, on a thread of its own, and
// once; what is made later shows only in folders that have not been opened yet.
#include <memory>
#include <QAbstractItemModel>
#include <vector>

class SlowJob;
struct FolderPlace;
struct SubFolder;

class FolderModel : public QAbstractItemModel {
    Q_OBJECT
  public:
    explicit FolderModel(QObject* parent = nullptr);
    ~FolderModel() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    /// Reads a folder. What answers within a moment is there on return, the rest comes when it comes.
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role) const override;

    QModelIndex Desktop() const { return index(0, 0); }
    QModelIndex Favorites() const { return index(1, 0); }
    /// Path of a folder; empty for the favorites, which are no folder themselves.
    QByteArray Path(const QModelIndex& index) const;

    enum class Search { Found, NotFound, Waiting };
    /// Finds a folder, first below the desktop, then among the favorites, reading what lies on the way.
    /// Waiting: a folder is still being read; ask again when FolderRead comes. A hidden folder that lies on
    /// the way is shown from then on.
    Search Find(const QByteArray& path, QModelIndex* found);

  Q_SIGNALS:
    /// The folders below this one are known.
    void FolderRead(const QModelIndex& index);

  private:
    struct Node;

    Node* nodeOf(const QModelIndex& index) const;
    QModelIndex indexOf(const Node* node) const;
    void readFolder(Node* node);
    void readFavorites(Node* node);
    void setRead(Node* node);
    void insert(Node* parent, std::size_t at, std::vector<std::unique_ptr<Node>> children);
    Node* showHidden(Node* parent, const QByteArray& path);
    Search findBelow(Node* start, const QByteArray& path, QModelIndex* found);

    std::unique_ptr<Node> root;
};
