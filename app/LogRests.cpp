// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LogRests.h"

#include "app/LogParts.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>

namespace {

/// What is kept of all logs together, at most.
constexpr std::size_t MostKept = std::size_t{16} << 20;

bool writeAll(int file, std::string_view text, off_t at) {
    while (!text.empty()) {
        const ssize_t count = pwrite(file, text.data(), text.size(), at);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
        at += count;
    }
    return true;
}

/// Where the start of the log stands, which then lacks text and is named so. False with errno.
bool findStart(const LogRest& rest, const std::string& cut) {
    struct stat info {};
    if (lstat(cut.c_str(), &info) == 0) {
        return true;
    }
    if (lstat(rest.Path.c_str(), &info) != 0) {
        return rest.Written == 0 && errno == ENOENT;
    }
    if (!S_ISREG(info.st_mode)) {
        errno = S_ISDIR(info.st_mode) ? EISDIR : ENXIO;
        return false;
    }
    return std::rename(rest.Path.c_str(), cut.c_str()) == 0;
}

/// False with the cause. It can be done again.
bool writeRest(const LogRest& rest, std::string* cause) {
    const std::string cut = rest.Path + CutLog;
    struct stat info {};
    const auto start = static_cast<off_t>(rest.Written);
    const int file = findStart(rest, cut) ? files::OpenOwn(cut, O_WRONLY) : -1;
    bool done = file >= 0 && fstat(file, &info) == 0;
    if (done && info.st_size < start) {
        errno = ENOENT;
        done = false;
    }
    done = done && ftruncate(file, start) == 0 && writeAll(file, rest.Text, start) &&
           (!rest.Whole || std::rename(cut.c_str(), rest.Path.c_str()) == 0);
    *cause = done ? "" : files::Because(errno);
    if (file >= 0) {
        close(file);
    }
    return done;
}

std::string lossOf(const LogRest& rest, const std::string& cause) {
    return "The log " + rest.Path + " is not whole: " + rest.Cause +
           (cause.empty() || cause == rest.Cause ? "" : "; " + cause);
}

}  // namespace

void LogRests::Take(LogRest rest) {
    const bool isOurs = rest.Path.starts_with(folder + "/") && rest.Path.rfind('/') == folder.size();
    if (!isOurs || size + rest.Text.size() > MostKept) {
        loss = lossOf(rest, isOurs ? "too much text of logs is kept" : "it lies outside of the data folder");
        return;
    }
    if (!rest.Whole) {
        loss = lossOf(rest, "");
    }
    size += rest.Text.size();
    kept.push_back(std::move(rest));
    std::string ignored;
    Write(&ignored);
}

bool LogRests::Write(std::string* error) {
    std::string failure = loss;
    std::erase_if(kept, [&](const LogRest& rest) {
        std::string cause;
        const bool done = writeRest(rest, &cause);
        if (done) {
            size -= rest.Text.size();
        } else {
            failure = lossOf(rest, cause);
        }
        return done;
    });
    if (!failure.empty()) {
        *error = failure;
    }
    return failure.empty();
}
