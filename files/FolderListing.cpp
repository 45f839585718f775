// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FolderListing.h"

#include "engine/record/HostText.h"
#include "files/FolderLinks.h"

#include <algorithm>
#include <QElapsedTimer>
#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t PortionSize = 2000;
constexpr int PortionMs = 60;

enum class Kind { File, Folder, Link };

struct Entry {
    QString Name;
    /// Name as it counts in the order of paths; that of a folder ends in a separator.
    QString Key;
    Kind What;
};

class Lister {
  public:
    Lister(const ListRequest& request, const std::function<bool()>& stopped,
           const std::function<void(FoundFiles)>& found)
        : request(request), stopped(stopped), found(found), isRoot(geteuid() == 0) {
        clock.start();
    }

    void Walk(const QByteArray& path, const QString& shown) {
        std::vector<Entry> entries = read(path);
        std::sort(entries.begin(), entries.end(),
                  [](const Entry& a, const Entry& b) { return a.Key < b.Key; });
        for (const Entry& entry : entries) {
            if (stopped()) {
                return;
            }
            if (entry.What == Kind::Folder) {
                const QString name = entry.Name + u'/';
                Walk(path + QFile::encodeName(name), shown + name);
                continue;
            }
            portion.Paths.push_back(shown + entry.Name);
            portion.IsLink.push_back(entry.What == Kind::Link ? 1 : 0);
            if (portion.Paths.size() >= PortionSize || clock.elapsed() >= PortionMs) {
                HandOver();
            }
        }
    }

    void HandOver() {
        if (!portion.Paths.empty()) {
            found(std::exchange(portion, {}));
        }
        clock.restart();
    }

  private:
    std::vector<Entry> read(const QByteArray& path) const {
        std::vector<Entry> entries;
        DIR* listing = opendir(path.constData());
        if (listing == nullptr) {
            return entries;
        }
        const int handle = dirfd(listing);
        while (const dirent* item = stopped() ? nullptr : readdir(listing)) {
            // What begins with a dot is hidden, as everywhere on the desktop.
            if (item->d_name[0] != '.') {
                take(path, handle, *item, entries);
            }
        }
        closedir(listing);
        return entries;
    }

    void take(const QByteArray& path, int handle, const dirent& item, std::vector<Entry>& entries) const {
        unsigned char type = item.d_type;
        struct stat status {};
        if (type == DT_UNKNOWN && fstatat(handle, item.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
            type = IFTODT(status.st_mode);
        }
        if (type == DT_DIR) {
            if (request.Recurse) {
                const QString name = QFile::decodeName(item.d_name);
                entries.push_back({name, (name + u'/').toCaseFolded(), Kind::Folder});
            }
            return;
        }
        if (type == DT_LNK) {
            // What is broken or runs in a circle is not there.
            if (fstatat(handle, item.d_name, &status, 0) != 0) {
                return;
            }
            type = IFTODT(status.st_mode);
            if (type == DT_DIR) {
                const QString name = QFile::decodeName(item.d_name);
                entries.push_back({name, name.toCaseFolded(), Kind::Link});
                return;
            }
        }
        if (type != DT_REG) {
            return;
        }
        const QString name = QFile::decodeName(item.d_name);
        if (IsLinkFileName(name)) {
            if (!FolderOfLink(path + item.d_name).isEmpty()) {
                entries.push_back({name, name.toCaseFolded(), Kind::Link});
            }
            return;
        }
        const QString lower = name.toLower();
        if (acutWcMatch(HostText(lower), HostText(request.Mask)) == RTNORM &&
            (request.IncludeReadOnly || isWritable(handle, item.d_name))) {
            entries.push_back({name, name.toCaseFolded(), Kind::File});
        }
    }

    // The system's administrator may write to everything, so for that user the bits alone tell.
    bool isWritable(int handle, const char* name) const {
        if (!isRoot) {
            return faccessat(handle, name, W_OK, 0) == 0;
        }
        struct stat status {};
        return fstatat(handle, name, &status, 0) == 0 &&
               (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0;
    }

    const ListRequest& request;
    const std::function<bool()>& stopped;
    const std::function<void(FoundFiles)>& found;
    const bool isRoot;
    FoundFiles portion;
    QElapsedTimer clock;
};

}  // namespace

void ListFolder(const ListRequest& request, const std::function<bool()>& stopped,
                const std::function<void(FoundFiles)>& found) {
    const QString directory = request.Directory.endsWith(u'/') ? request.Directory : request.Directory + u'/';
    Lister lister(request, stopped, found);
    lister.Walk(QFile::encodeName(directory), directory);
    if (!stopped()) {
        lister.HandOver();
    }
}
