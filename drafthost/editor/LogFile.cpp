// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/LogFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <utility>

#include "system/FileJournal.h"
#include "system/OwnFile.h"

namespace drafthost {

namespace {
/// What is kept for a disk that takes nothing, at most.
constexpr std::size_t MostPending = 1 << 20;
constexpr std::string_view CutLine = "\n[ Log cut: what follows could not be written ]\n";

std::string asideName(const std::string& path) {
    return path + ".cut";
}
}  // namespace

void LogFile::start(std::string path) {
    stop();
    path_ = std::move(path);
    on_ = true;
    broken_ = aside_ = cut_ = taken_ = false;
    written_ = 0;
    struct stat info {};
    // A log that was taken up again after a fault.
    if (::access(path_.c_str(), F_OK) != 0 && ::stat(asideName(path_).c_str(), &info) == 0) {
        aside_ = cut_ = true;
        written_ = std::size_t(info.st_size);
    }
    char time[64];
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::strftime(time, sizeof time, "[ Log opened %Y-%m-%d %H:%M:%S ]\n", &local);
    write(time);
}

std::optional<LogRest> LogFile::stop() {
    if (!on_) {
        return std::nullopt;
    }
    write(lineOpen_ ? "\n" : "");
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
    on_ = false;
    std::string text = std::exchange(pending_, {});
    if (taken_ || (text.empty() && !cut_)) {
        return std::nullopt;
    }
    return LogRest{path_, written_, std::move(text), !cut_, cause_};
}

int LogFile::open() {
    const std::string path = aside_ ? asideName(path_) : path_;
    // A log that no journal names would stay for ever.
    if (::access(path.c_str(), F_OK) != 0 && !files::Journal().NoteLog(path)) {
        return -1;
    }
    if (const int code = files::MakeFolder(files::FolderOf(path))) {
        errno = code;
        return -1;
    }
    const int file = files::OpenOwn(path, O_WRONLY | O_APPEND);
    struct stat info {};
    if (file >= 0 && ::fstat(file, &info) == 0) {
        written_ = std::size_t(info.st_size);
    }
    return file;
}

void LogFile::keep(std::string_view text) {
    if (text.empty() || (cut_ && !pending_.empty())) {
        return;
    }
    const std::size_t room = MostPending - pending_.size();
    pending_ += text.substr(0, room);
    if (text.size() > room) {
        cut_ = true;
        pending_ += CutLine;
    }
}

/// Takes off the text what the file has taken. False with the cause when that is not all.
bool LogFile::put(std::string_view& text) {
    if (fd_ < 0 && !text.empty()) {
        fd_ = open();
    }
    while (fd_ >= 0 && !text.empty()) {
        const ssize_t count = ::write(fd_, text.data(), text.size());
        if (count < 0 && errno != EINTR) {
            break;
        }
        const std::size_t done = count > 0 ? std::size_t(count) : 0;
        written_ += done;
        text.remove_prefix(done);
    }
    if (!text.empty()) {
        cause_ = files::Because(errno);
    }
    return text.empty();
}

void LogFile::write(std::string_view text) {
    if (!on_ || (text.empty() && pending_.empty())) {
        return;
    }
    if (!text.empty()) {
        lineOpen_ = text.back() != '\n';
    }
    std::string_view kept = pending_;
    const bool done = put(kept) && put(text);
    pending_.erase(0, pending_.size() - kept.size());
    keep(text);
    if (!done && !broken_) {
        error_ = "The log " + path_ + " cannot be written: " + cause_;
    }
    broken_ = !done;
    if (done) {
        putBack();
    } else {
        setAside();
    }
}

void LogFile::setAside() {
    if (fd_ < 0 || aside_ || taken_) {
        return;
    }
    const std::string aside = asideName(path_);
    // Without the note it is only a kill that leaves it.
    files::Journal().NoteLog(aside);
    aside_ = std::rename(path_.c_str(), aside.c_str()) == 0;
    taken_ = !aside_ && errno == ENOENT;
}

/// A log with a gap stays aside.
void LogFile::putBack() {
    if (aside_ && !cut_ && std::rename(asideName(path_).c_str(), path_.c_str()) == 0) {
        aside_ = false;
        files::Journal().Gone(asideName(path_));
    }
}

std::string LogFile::takeError() {
    return std::exchange(error_, {});
}

}  // namespace drafthost
