// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Reads what the tree shows below a folder. It may take as long as the mount likes, so it runs away from the
// window.
#include "files/FolderPlaces.h"

#include <functional>

struct SubFolder {
    QByteArray Path;
    QString Title;
    bool IsHidden = false;
};

/// Folders of a folder by name without regard to case, without links to folders. Empty when it cannot be
/// read.
std::vector<SubFolder> ReadSubFolders(const QByteArray& path, const std::function<bool()>& stopped);
/// Looks into folders whether they have folders. It is a courtesy and ends after a moment; where it has not
/// come to or where it cannot tell, the answer stays yes.
std::vector<bool> LookIntoFolders(const std::vector<SubFolder>& folders,
                                  const std::function<bool()>& stopped);
/// Hands over those of the places that are folders, each as soon as that is known.
void FindExisting(std::vector<FolderPlace> places, const std::function<bool()>& stopped,
                  const std::function<void(const FolderPlace&)>& found);
