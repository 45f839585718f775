// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/LogFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <ctime>

#include "system/FileJournal.h"
#include "system/OwnFile.h"

namespace drafthost {

namespace {
/// What is kept for a disk that takes nothing, at most.
constexpr std::size_t MostPending = 1 << 20;
}  // namespace

void LogFile::start(std::string path) {
    stop();
    path_ = std::move(path);
    on_ = true;
    broken_ = false;
    char time[64];
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::strftime(time, sizeof time, "[ Log opened %Y-%m-%d %H:%M:%S ]\n", &local);
    write(time);
}

bool LogFile::stop() {
    if (!on_) {
        return true;
    }
    if (lineOpen_) {
        write("\n");
    }
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
    const bool whole = pending_.empty();
    if (!whole) {
        error_ = "The log " + path_ + " is not whole: " + cause_;
    }
    pending_.clear();
    on_ = false;
    return whole;
}

int LogFile::open() const {
    // A log that no journal names would stay for ever.
    if (::access(path_.c_str(), F_OK) != 0 && !files::Journal().NoteLog(path_)) {
        return -1;
    }
    if (const int code = files::MakeFolder(files::FolderOf(path_))) {
        errno = code;
        return -1;
    }
    return files::OpenOwn(path_, O_WRONLY | O_APPEND);
}

void LogFile::write(std::string_view text) {
    if (!on_ || text.empty()) {
        return;
    }
    lineOpen_ = text.back() != '\n';
    if (pending_.size() < MostPending) {
        pending_ += text;
    }
    if (fd_ < 0) {
        fd_ = open();
    }
    std::size_t done = 0;
    while (fd_ >= 0 && done < pending_.size()) {
        const ssize_t count = ::write(fd_, pending_.data() + done, pending_.size() - done);
        if (count < 0 && errno != EINTR) {
            break;
        }
        done += count > 0 ? std::size_t(count) : 0;
    }
    const bool failed = done < pending_.size();
    if (failed) {
        cause_ = files::Because(errno);
    }
    if (failed && !broken_) {
        error_ = "The log " + path_ + " cannot be written: " + cause_;
    }
    broken_ = failed;
    pending_.erase(0, done);
}

std::string LogFile::takeError() {
    std::string error;
    error.swap(error_);
    return error;
}

}  // namespace drafthost
