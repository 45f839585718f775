// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/OwnFolder.h"

#include "system/OwnFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <memory>
#include <string_view>

namespace files {
namespace {

struct Close {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

class Removal {
  public:
    Removal(std::string root, const IsOwnName& isOwn, std::vector<std::string>* left, std::string* error)
        : root(std::move(root)), isOwn(isOwn), left(left), error(error) {}

    /// Removes a folder by its name in an open one. `below` is its path from the root.
    bool Folder(int parent, const std::string& name, const std::string& below) {
        const int descriptor =
            ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (descriptor < 0) {
            if (errno != ELOOP && errno != ENOTDIR) {
                return errno == ENOENT || fail(below);
            }
            left->push_back(root + below);
            return true;
        }
        const std::unique_ptr<DIR, Close> folder(::fdopendir(descriptor));
        if (!folder) {
            ::close(descriptor);
            return fail(below);
        }
        bool isEmpty = true;
        for (;;) {
            errno = 0;
            const dirent* entry = ::readdir(folder.get());
            if (entry == nullptr) {
                break;
            }
            const std::string file = entry->d_name;
            if (file != "." && file != ".." &&
                !this->entry(descriptor, file, std::string(below).append("/").append(file), &isEmpty)) {
                return false;
            }
        }
        if (errno != 0) {
            return fail(below);
        }
        if (isEmpty && ::unlinkat(parent, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT) {
            return fail(below);
        }
        return true;
    }

  private:
    bool entry(int folder, const std::string& name, const std::string& below, bool* isEmpty) {
        struct stat status {};
        if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            return errno == ENOENT || fail(below);
        }
        const bool isFolder = S_ISDIR(status.st_mode);
        if ((!isFolder && !S_ISREG(status.st_mode)) || !isOwn(below.substr(1))) {
            left->push_back(root + below);
            *isEmpty = false;
            return true;
        }
        if (!isFolder) {
            return ::unlinkat(folder, name.c_str(), 0) == 0 || errno == ENOENT || fail(below);
        }
        const std::size_t before = left->size();
        const bool removed = Folder(folder, name, below);
        *isEmpty = *isEmpty && left->size() == before;
        return removed;
    }
    bool fail(const std::string& below) {
        *error = root + below + ": cannot be removed: " + Because(errno);
        return false;
    }

    std::string root;
    const IsOwnName& isOwn;
    std::vector<std::string>* left;
    std::string* error;
};

}  // namespace

bool RemoveOwnFolder(const std::string& path, const IsOwnName& isOwn, std::vector<std::string>* left,
                     std::string* error) {
    return Removal(path, isOwn, left, error).Folder(AT_FDCWD, path, {});
}

}  // namespace files
