// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the list of files shows of a folder: the files that match the mask and the links to folders, with all
// folders below or without; nothing that is hidden. Folders are gone through in the order of the paths, so
// that what is found is sorted already.
#include <cstdint>
#include <functional>
#include <QString>
#include <vector>

struct ListRequest {
    QString Directory;
    /// Alternatives with commas between them, as the host's matcher has it. Names are lowered, the mask is
    /// not.
    QString Mask;
    bool Recurse = false;
    bool IncludeReadOnly = false;
};

/// Some rows of the list, in the order found.
struct FoundFiles {
    std::vector<QString> Paths;
    /// 1 for a link to a folder.
    std::vector<std::uint32_t> IsLink;
};

/// Goes through the folder and hands over what it finds in portions, until stopped says so. A folder that
/// cannot be read gives nothing.
void ListFolder(const ListRequest& request, const std::function<bool()>& stopped,
                const std::function<void(FoundFiles)>& found);
