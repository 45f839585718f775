// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/SubFolders.h"

#include <algorithm>
#include <cstring>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

/// Looking into each folder for folders is for quick ones; behind that time all get a button.
constexpr int LookIntoMs = 40;
constexpr int LookIntoEntries = 2000;

bool isFolder(int parent, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat status {};
    return fstatat(parent, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

bool isSelfOrParent(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

bool mayHaveFolders(const QByteArray& path) {
    DIR* listing = opendir(path.constData());
    if (listing == nullptr) {
        return false;
    }
    bool has = false;
    int left = LookIntoEntries;
    while (const dirent* entry = has ? nullptr : readdir(listing)) {
        has = --left == 0 || (entry->d_name[0] != '.' && isFolder(dirfd(listing), *entry));
    }
    closedir(listing);
    return has;
}

void sortByTitle(std::vector<SubFolder>& folders) {
    std::vector<std::pair<QString, SubFolder>> keyed;
    keyed.reserve(folders.size());
    for (SubFolder& folder : folders) {
        keyed.emplace_back(folder.Title.toCaseFolded(), std::move(folder));
    }
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second.Path < b.second.Path;
    });
    for (std::size_t i = 0; i < keyed.size(); ++i) {
        folders[i] = std::move(keyed[i].second);
    }
}

}  // namespace

std::vector<SubFolder> ReadSubFolders(const QByteArray& path, const std::function<bool()>& stopped) {
    std::vector<SubFolder> folders;
    DIR* listing = opendir(path.constData());
    if (listing == nullptr) {
        return folders;
    }
    const QByteArray parent = path.endsWith('/') ? path : path + '/';
    while (const dirent* entry = stopped() ? nullptr : readdir(listing)) {
        if (!isSelfOrParent(entry->d_name) && isFolder(dirfd(listing), *entry)) {
            folders.push_back(
                {parent + entry->d_name, QFile::decodeName(entry->d_name), entry->d_name[0] == '.'});
        }
    }
    closedir(listing);
    sortByTitle(folders);
    return folders;
}

std::vector<bool> LookIntoFolders(const std::vector<SubFolder>& folders,
                                  const std::function<bool()>& stopped) {
    std::vector<bool> may(folders.size(), true);
    QElapsedTimer clock;
    clock.start();
    for (std::size_t i = 0; i < folders.size() && !stopped() && clock.elapsed() < LookIntoMs; ++i) {
        may[i] = mayHaveFolders(folders[i].Path);
    }
    return may;
}

void FindExisting(std::vector<FolderPlace> places, const std::function<bool()>& stopped,
                  const std::function<void(const FolderPlace&)>& found) {
    // What lies at home answers, whatever else may hang.
    const QByteArray home = QFile::encodeName(QDir::homePath()) + '/';
    std::stable_partition(places.begin(), places.end(),
                          [&](const FolderPlace& place) { return place.Path.startsWith(home); });
    for (const FolderPlace& place : places) {
        struct stat status {};
        if (stopped()) {
            return;
        }
        if (stat(place.Path.constData(), &status) == 0 && S_ISDIR(status.st_mode)) {
            found(place);
        }
    }
}
