// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The places that the folder tree begins with: the desktop folder, what stands on it as the computer does
// (home, mounted volumes, root of the file system), and the folders that the user has marked. All are read
// from files of the desktop and of the system; nothing is looked up on a mount.
#include <QByteArray>
#include <QString>
#include <vector>

struct FolderPlace {
    /// Path without a separator at its end, "/" for the root.
    QByteArray Path;
    QString Title;
};

/// A path as the tree compares it: no separators at the end but for the root.
QByteArray TidyPath(QByteArray path);

/// The user's desktop folder; the home folder where there is none.
QByteArray DesktopFolder();
/// Home, volumes and root, in the order in which they stand in the tree.
std::vector<FolderPlace> ComputerPlaces();
/// The user's folders and bookmarks of every desktop that keeps some, each path once, in the order found.
std::vector<FolderPlace> FavoritePlaces();
