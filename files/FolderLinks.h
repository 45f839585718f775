// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Links to folders: symbolic links, and ".desktop" files of type Link or Directory. They are shown among the
// files of a folder and can be entered, and never lie in the tree, so that no loop of links goes on for ever.
#include <QByteArray>
#include <QString>

/// True for the name of a file that is nothing but a link and so never a drawing: ".desktop" and ".lnk".
bool IsLinkFileName(const QString& name);

/// The folder that a path leads to, through as many links as it takes, with none left in it. Empty when the
/// path leads to no folder: what is broken, what runs in a circle, and every file that is no link.
QByteArray FolderOfLink(const QByteArray& path);
