// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/DataFolder.h"

#include "app/NameText.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>
#include <utility>

namespace fs = std::filesystem;

namespace {

std::string userHome() {
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

/// False also for a process that has ended and that its parent has not taken leave of.
bool isAlive(const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t state = text.rfind(')') + 2;
    return state > 1 && state < text.size() && text[state] != 'Z' && text[state] != 'X';
}

/// A front that was killed is gone a moment before its host, which holds the lock too. owner becomes the
/// process that took it last, where the descriptor's file tells it. 0 or the error.
int waitForLock(int lock, std::string* owner) {
    constexpr int Tries = 5;
    constexpr int TriesBehindTheDead = 50;
    for (int tries = 0; flock(lock, LOCK_EX | LOCK_NB) != 0; ++tries) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return errno;
        }
        if (owner) {
            char text[32] = {};
            const ssize_t length = pread(lock, text, sizeof text - 1, 0);
            owner->assign(text, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
        }
        const bool isDead = owner && !owner->empty() && !isAlive(*owner);
        if (tries >= (isDead ? TriesBehindTheDead : Tries)) {
            return EWOULDBLOCK;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return 0;
}

}  // namespace

DataFolder::DataFolder(const std::string& given)
    : home(fs::absolute(given.empty() ? userHome() : given).lexically_normal().string()) {
    while (home.size() > 1 && home.ends_with('/')) {
        home.pop_back();
    }
}

DataFolder::~DataFolder() {
    unlock();
}

void DataFolder::unlock() {
    for (int* held : {&lock, &folderLock}) {
        if (*held >= 0) {
            close(std::exchange(*held, -1));
        }
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
    std::string last;
    int cause = waitForLock(lock, &last);
    if (cause == 0) {
        folderLock = open(Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        // Where that does not go the file has to do.
        cause = folderLock >= 0 && waitForLock(folderLock, nullptr) == EWOULDBLOCK ? EWOULDBLOCK : 0;
    }
    if (cause != 0) {
        unlock();
        *error = cause != EWOULDBLOCK ? file + ": " + std::strerror(cause)
                                      : Path() + ": another run is at work here" +
                                            (last.empty() ? "" : " (process " + last + ")") +
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
