// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FolderModel.h"

#include "files/FolderPlaces.h"
#include "files/SlowJob.h"
#include "files/SubFolders.h"

#include <algorithm>
#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QStyle>

namespace {

enum class Kind { Desktop, Favorites, Home, Drive, Folder };

/// How long opening a folder waits for it before the window goes on without.
constexpr int PatienceMs = 80;

bool liesBelow(const QByteArray& path, const QByteArray& folder) {
    return folder == "/" ||
           (path.startsWith(folder) && path.size() > folder.size() && path[folder.size()] == '/');
}

}  // namespace

struct FolderModel::Node {
    enum State { Unread, Reading, Read };

    Node* Parent = nullptr;
    QByteArray Path;
    QString Title;
    Kind What = Kind::Folder;
    State Folders = Unread;
    /// Whether it has a button as long as it has not been read.
    bool MayHaveFolders = true;
    int Row = 0;
    std::vector<std::unique_ptr<Node>> Children;
    /// Folders that are there and not shown.
    std::vector<SubFolder> Hidden;
    std::unique_ptr<SlowJob> Job;
};

namespace {

template <class Node>
std::unique_ptr<Node> makeNode(Node* parent, const QByteArray& path, const QString& title, Kind kind) {
    auto node = std::make_unique<Node>();
    node->Parent = parent;
    node->Path = path;
    node->Title = title;
    node->What = kind;
    return node;
}

QByteArray childPath(const QByteArray& folder, const QByteArray& name) {
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}

}  // namespace

FolderModel::FolderModel(QObject* parent) : QAbstractItemModel(parent), root(std::make_unique<Node>()) {
    root->Folders = Node::Read;
    root->Children.push_back(makeNode(root.get(), DesktopFolder(), tr("Desktop"), Kind::Desktop));
    root->Children.push_back(makeNode(root.get(), QByteArray(), tr("Favorites"), Kind::Favorites));
    root->Children.back()->Row = 1;
}

FolderModel::~FolderModel() = default;

FolderModel::Node* FolderModel::nodeOf(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : root.get();
}

QModelIndex FolderModel::indexOf(const Node* node) const {
    return node == root.get() ? QModelIndex() : createIndex(node->Row, 0, const_cast<Node*>(node));
}

QModelIndex FolderModel::index(int row, int column, const QModelIndex& parent) const {
    const Node* node = nodeOf(parent);
    if (column != 0 || row < 0 || static_cast<std::size_t>(row) >= node->Children.size()) {
        return {};
    }
    return createIndex(row, 0, node->Children[static_cast<std::size_t>(row)].get());
}

QModelIndex FolderModel::parent(const QModelIndex& index) const {
    return index.isValid() ? indexOf(nodeOf(index)->Parent) : QModelIndex();
}

int FolderModel::rowCount(const QModelIndex& parent) const {
    return static_cast<int>(nodeOf(parent)->Children.size());
}

int FolderModel::columnCount(const QModelIndex& /*parent*/) const {
    return 1;
}

bool FolderModel::hasChildren(const QModelIndex& parent) const {
    const Node* node = nodeOf(parent);
    return node->Folders == Node::Read ? !node->Children.empty() : node->MayHaveFolders;
}

bool FolderModel::canFetchMore(const QModelIndex& parent) const {
    return nodeOf(parent)->Folders == Node::Unread;
}

void FolderModel::fetchMore(const QModelIndex& parent) {
    Node* node = nodeOf(parent);
    if (node->Folders != Node::Unread) {
        return;
    }
    node->Folders = Node::Reading;
    if (node->What == Kind::Desktop) {
        std::vector<std::unique_ptr<Node>> places;
        for (const FolderPlace& place : ComputerPlaces()) {
            places.push_back(
                makeNode(node, place.Path, place.Title, places.empty() ? Kind::Home : Kind::Drive));
        }
        insert(node, 0, std::move(places));
    }
    node->Job = std::make_unique<SlowJob>();
    if (node->What == Kind::Favorites) {
        readFavorites(node);
    } else {
        readFolder(node);
    }
    node->Job->WaitFor(PatienceMs);
}

void FolderModel::readFolder(Node* node) {
    const auto work = [this, node, path = node->Path](SlowJob::Channel& channel) {
        const auto stopped = [&channel] { return channel.Stopped(); };
        const std::vector<SubFolder> folders = ReadSubFolders(path, stopped);
        channel.Deliver([this, node, folders] {
            std::vector<std::unique_ptr<Node>> children;
            for (const SubFolder& folder : folders) {
                if (folder.IsHidden) {
                    node->Hidden.push_back(folder);
                } else {
                    children.push_back(makeNode(node, folder.Path, folder.Title, Kind::Folder));
                }
            }
            insert(node, node->Children.size(), std::move(children));
            setRead(node);
        });
        const std::vector<bool> may = LookIntoFolders(folders, stopped);
        channel.Deliver([this, node, folders, may] {
            std::size_t child = 0;
            for (std::size_t i = 0; i < may.size(); ++i) {
                while (!folders[i].IsHidden && node->Children[child]->Path != folders[i].Path) {
                    ++child;
                }
                if (!folders[i].IsHidden && !may[i]) {
                    node->Children[child]->MayHaveFolders = false;
                    Q_EMIT dataChanged(indexOf(node->Children[child].get()),
                                       indexOf(node->Children[child].get()));
                }
            }
        });
    };
    node->Job->Start(work, nullptr);
}

// One by one and in order of the titles: a bookmark into a mount that is dead must not hold up the others.
void FolderModel::readFavorites(Node* node) {
    const auto work = [this, node, places = FavoritePlaces()](SlowJob::Channel& channel) {
        FindExisting(
            places, [&channel] { return channel.Stopped(); },
            [&](const FolderPlace& place) {
                channel.Deliver([this, node, place] {
                    const auto behind =
                        std::find_if(node->Children.begin(), node->Children.end(),
                                     [&](const std::unique_ptr<Node>& child) {
                                         return child->Title.compare(place.Title, Qt::CaseInsensitive) > 0;
                                     });
                    std::vector<std::unique_ptr<Node>> one;
                    one.push_back(makeNode(node, place.Path, place.Title, Kind::Folder));
                    insert(node, static_cast<std::size_t>(behind - node->Children.begin()), std::move(one));
                });
            });
    };
    node->Job->Start(work, [this, node] { setRead(node); });
}

void FolderModel::setRead(Node* node) {
    node->Folders = Node::Read;
    // Without any folders its button goes.
    Q_EMIT dataChanged(indexOf(node), indexOf(node));
    Q_EMIT FolderRead(indexOf(node));
}

void FolderModel::insert(Node* parent, std::size_t at, std::vector<std::unique_ptr<Node>> children) {
    if (children.empty()) {
        return;
    }
    beginInsertRows(indexOf(parent), static_cast<int>(at), static_cast<int>(at + children.size()) - 1);
    parent->Children.insert(parent->Children.begin() + static_cast<std::ptrdiff_t>(at),
                            std::make_move_iterator(children.begin()),
                            std::make_move_iterator(children.end()));
    for (std::size_t i = at; i < parent->Children.size(); ++i) {
        parent->Children[i]->Row = static_cast<int>(i);
    }
    endInsertRows();
}

QVariant FolderModel::data(const QModelIndex& index, int role) const {
    const Node* node = nodeOf(index);
    switch (role) {
        case Qt::DisplayRole:
            return node->Title;
        case Qt::ToolTipRole:
            return node->Path.isEmpty() ? QVariant() : QFile::decodeName(node->Path);
        case Qt::DecorationRole: {
            const QStyle* style = QApplication::style();
            switch (node->What) {
                case Kind::Desktop:
                    return style->standardIcon(QStyle::SP_DesktopIcon);
                case Kind::Home:
                    return style->standardIcon(QStyle::SP_DirHomeIcon);
                case Kind::Drive:
                    return style->standardIcon(QStyle::SP_DriveHDIcon);
                default:
                    return style->standardIcon(QStyle::SP_DirIcon);
            }
        }
        default:
            return {};
    }
}

QByteArray FolderModel::Path(const QModelIndex& index) const {
    return nodeOf(index)->Path;
}

FolderModel::Node* FolderModel::showHidden(Node* parent, const QByteArray& path) {
    const auto hidden = std::find_if(parent->Hidden.begin(), parent->Hidden.end(),
                                     [&](const SubFolder& folder) { return folder.Path == path; });
    if (hidden == parent->Hidden.end()) {
        return nullptr;
    }
    std::vector<std::unique_ptr<Node>> one;
    one.push_back(makeNode(parent, hidden->Path, hidden->Title, Kind::Folder));
    Node* shown = one.front().get();
    parent->Hidden.erase(hidden);
    insert(parent, parent->Children.size(), std::move(one));
    return shown;
}

FolderModel::Search FolderModel::findBelow(Node* start, const QByteArray& path, QModelIndex* found) {
    Node* at = start;
    while (true) {
        fetchMore(indexOf(at));
        // The nearest of the folders that lead there: home rather than the root that holds it.
        Node* next = nullptr;
        for (const std::unique_ptr<Node>& child : at->Children) {
            if (child->Path == path) {
                *found = indexOf(child.get());
                return Search::Found;
            }
            if (liesBelow(path, child->Path) && (next == nullptr || child->Path.size() > next->Path.size())) {
                next = child.get();
            }
        }
        // A folder that is still being read may have a nearer one.
        if (at->Folders != Node::Read) {
            return Search::Waiting;
        }
        if (next == nullptr && at->What != Kind::Favorites && liesBelow(path, at->Path)) {
            const qsizetype from = at->Path.size() + (at->Path == "/" ? 0 : 1);
            const QByteArray name = path.mid(from, path.indexOf('/', from) - from);
            next = showHidden(at, childPath(at->Path, name));
            if (next != nullptr && next->Path == path) {
                *found = indexOf(next);
                return Search::Found;
            }
        }
        if (next == nullptr) {
            return Search::NotFound;
        }
        at = next;
    }
}

FolderModel::Search FolderModel::Find(const QByteArray& path, QModelIndex* found) {
    const QByteArray tidy = TidyPath(path);
    Node* desktop = root->Children[0].get();
    if (tidy == desktop->Path) {
        *found = Desktop();
        return Search::Found;
    }
    const Search first = findBelow(desktop, tidy, found);
    return first == Search::NotFound ? findBelow(root->Children[1].get(), tidy, found) : first;
}
