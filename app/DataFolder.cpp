#include "app/DataFolder.h"

#include "app/NameText.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

std::string UserHome() {
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/') {
        return data;
    }
    const char* home = std::getenv("HOME");
    if (!home || !*home) {
        const passwd* user = getpwuid(getuid());
        home = user ? user->pw_dir : "/";
    }
    return std::string(home) + "/.local/share";
}

}  // namespace

DataFolder::DataFolder(const std::string& given)
    : home(fs::absolute(given.empty() ? UserHome() : given).lexically_normal().string()) {
    while (home.size() > 1 && home.ends_with('/')) {
        home.pop_back();
    }
}

DataFolder::~DataFolder() {
    if (lock >= 0) {
        close(lock);
    }
}

bool DataFolder::Lock(std::string* error) {
    if (!IsUtf8(home)) {
        *error = home + ": the name of the data folder is not UTF-8 and cannot be given to the host";
        return false;
    }
    for (const std::string& part : {Home(), Path()}) {
        if (const int refused = files::MakeFolder(part)) {
            *error = part + ": the folder cannot be made: " + files::Because(refused);
            return false;
        }
    }
    const std::string file = Path() + "/tarnel.lock";
    lock = files::OpenOwn(file, O_RDWR);
    if (lock < 0) {
        *error = file + ": " + files::Because(errno);
        return false;
    }
    if (flock(lock, LOCK_EX | LOCK_NB) != 0) {
        const int cause = errno;
        char owner[32] = {};
        const ssize_t length = read(lock, owner, sizeof owner - 1);
        close(lock);
        lock = -1;
        *error = cause != EWOULDBLOCK ? file + ": " + std::strerror(cause)
                                      : Path() + ": another run is at work here" +
                                            (length > 0 ? " (process " + std::string(owner) + ")" : "") +
                                            "; wait for it or give another --data-dir";
        return false;
    }
    // The number only serves the message above; without it the lock holds all the same. A file with other
    // names is locked and not written: some copies of folders are made of second names.
    const std::string owner = std::to_string(getpid());
    struct stat info {};
    if (fstat(lock, &info) == 0 && info.st_nlink == 1 && ftruncate(lock, 0) == 0) {
        [[maybe_unused]] const ssize_t written = write(lock, owner.data(), owner.size());
    }
    return true;
}

std::string DataFolder::KeepAside(const std::string& file, std::string* error) {
    std::string kept;
    for (int number = 1; kept.empty() || access(kept.c_str(), F_OK) == 0; ++number) {
        kept = file + ".damaged-" + std::to_string(number);
    }
    if (std::rename(file.c_str(), kept.c_str()) != 0) {
        *error = file + ": cannot be moved to " + kept + ": " + std::strerror(errno);
        return {};
    }
    return kept;
}
