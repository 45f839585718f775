// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/FileJournal.h"

#include "system/Descriptor.h"
#include "system/NewFile.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <optional>
#include <set>
#include <utility>

namespace files {

namespace {

constexpr std::size_t LongEnough = std::size_t{256} * 1024;
constexpr std::size_t LargestMarker = 4096;
/// Never part of a name, in which each "%" is escaped.
constexpr std::string_view NoteEnd = "%.";

std::string absolute(const std::string& path) {
    std::array<char, PATH_MAX> folder{};
    if (path.starts_with('/') || ::getcwd(folder.data(), folder.size()) == nullptr) {
        return path;
    }
    return std::string(folder.data()) + "/" + path;
}

/// A name may hold a line end.
std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '%') {
            out += "%25";
        } else if (c == '\n') {
            out += "%0A";
        } else {
            out += c;
        }
    }
    return out;
}

std::string lineOf(std::string_view kind, std::string_view name) {
    return std::string(kind) + " " + escaped(name) + std::string(NoteEnd) + "\n";
}

std::string plain(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i, 3) == "%25" || text.substr(i, 3) == "%0A") {
            out += text[i + 1] == '2' ? '%' : '\n';
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

bool readAll(int file, std::size_t most, std::string* text) {
    std::array<char, 65536> buffer{};
    for (ssize_t count = 0; (count = ::read(file, buffer.data(), buffer.size())) != 0;) {
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || text->size() + static_cast<std::size_t>(count) > most) {
            return false;
        }
        text->append(buffer.data(), static_cast<std::size_t>(count));
    }
    return true;
}

struct Contents {
    uid_t Owner = 0;
    std::set<std::string> Hosts;
    /// Path and kind.
    std::map<std::string, std::string> Standing;
};

std::optional<Contents> readJournal(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    std::string text;
    // A name list decides what is deleted, so one that may have been put there by somebody is not read.
    if (!file.IsOpen() || ::fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode) || info.st_nlink != 1 ||
        !IsOwners(info, path) || !readAll(file.Get(), SIZE_MAX, &text)) {
        return std::nullopt;
    }
    Contents contents;
    contents.Owner = info.st_uid;
    // A line that is cut off names what was never made.
    for (std::size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        std::string_view line = std::string_view(text).substr(at, end - at);
        const std::size_t blank = line.find(' ');
        if (blank == std::string_view::npos || !line.ends_with(NoteEnd)) {
            continue;
        }
        line.remove_suffix(NoteEnd.size());
        const std::string kind(line.substr(0, blank));
        const std::string name = plain(line.substr(blank + 1));
        if (kind == "host") {
            contents.Hosts.insert(name);
        } else if (kind == "gone") {
            contents.Standing.erase(name);
        } else {
            contents.Standing[name] = kind;
        }
    }
    return contents;
}

/// A marker that was being made when its host was killed is empty or cut off.
bool isMarkerOf(int folder, const std::string& name, const std::set<std::string>& hosts) {
    const Descriptor file(::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    std::string text;
    if (!file.IsOpen() || !readAll(file.Get(), LargestMarker, &text)) {
        return false;
    }
    return text.empty() || hosts.contains(OwnerLine(text));
}

/// False when the file may still be there and is to go, if not now.
bool removeLeft(const std::string& path, const std::string& kind, const Contents& contents, Logs logs) {
    const std::size_t slash = path.rfind('/');
    if (!path.starts_with('/') || slash + 1 == path.size()) {
        return true;
    }
    const std::string name = path.substr(slash + 1);
    // What is looked at and what is removed is then in the same folder, whatever links change meanwhile.
    const Descriptor folder(::open(FolderOf(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat info {};
    if (!folder.IsOpen() || ::fstatat(folder.Get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT || errno == ENOTDIR;
    }
    const bool isTrusted = contents.Owner == ::geteuid() || contents.Owner == 0;
    if (!S_ISREG(info.st_mode) || (!isTrusted && info.st_uid != contents.Owner) ||
        (kind == "marker" && !isMarkerOf(folder.Get(), name, contents.Hosts))) {
        return true;
    }
    if (kind == "log" && logs == Logs::Keep) {
        return false;
    }
    return ::unlinkat(folder.Get(), name.c_str(), 0) == 0 || errno == ENOENT;
}

}  // namespace

std::string OwnerLine(const std::string& marker) {
    std::string line = marker.substr(std::min(marker.find('\n'), marker.size()));
    line.erase(0, 1);
    while (line.ends_with('\n')) {
        line.pop_back();
    }
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

FileJournal& Journal() {
    static FileJournal journal;
    return journal;
}

bool FileJournal::Open(const std::string& name, const std::string& owner, std::string* cause) {
    Close();
    path = absolute(name);
    constexpr int Flags = O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
    file = ::open(path.c_str(), Flags | O_CREAT | O_EXCL, 0644);
    if (file < 0 && errno == EEXIST) {
        file = ::open(path.c_str(), Flags);
    }
    struct stat info {};
    if (file >= 0 && (::fstat(file, &info) != 0 || !S_ISREG(info.st_mode) || info.st_nlink != 1 ||
                      info.st_uid != ::geteuid())) {
        Close();
        errno = EPERM;
    }
    if (file < 0) {
        *cause = path + " cannot be written: " + Because(errno) +
                 "; what is left beside drawings when this host is killed will not be known.";
        return false;
    }
    head = lineOf("host", owner);
    enough = LongEnough;
    write(head);
    return true;
}

bool FileJournal::note(std::string_view kind, const std::string& name) {
    if (file < 0) {
        return true;
    }
    const std::string full = absolute(name);
    standing[full] = kind;
    return write(lineOf(kind, full));
}

void FileJournal::Gone(const std::string& name) {
    if (file < 0) {
        return;
    }
    const std::string full = absolute(name);
    if (standing.erase(full) > 0) {
        write(lineOf("gone", full));
    }
    if (written > enough) {
        shorten();
    }
}

void FileJournal::Remove(const std::string& name) {
    const int before = errno;
    if (::unlink(name.c_str()) == 0 || errno == ENOENT) {
        Gone(name);
    }
    errno = before;
}

bool FileJournal::write(const std::string& note) {
    const std::string line = (torn ? "\n" : "") + note;
    const ssize_t count = ::write(file, line.data(), line.size());
    const bool whole = count == static_cast<ssize_t>(line.size());
    torn = whole ? false : torn || count > 0;
    if (!whole && count >= 0) {
        errno = ENOSPC;
    }
    if (!whole && error.empty()) {
        error = path + " cannot be written: " + std::strerror(count < 0 ? errno : ENOSPC) +
                "; what is left beside drawings when this host is killed may not be known.";
    }
    written += line.size();
    return whole;
}

/// A run over thousands of drawings has few files standing at any time.
void FileJournal::shorten() {
    std::string text = head;
    for (const auto& [name, kind] : standing) {
        text += lineOf(kind, name);
    }
    written = 0;
    enough = std::max(LongEnough, 4 * text.size());
    NewFile fresh;
    if (!fresh.Open(path) || !fresh.Write(text)) {
        return;
    }
    const int next = ::fcntl(fresh.Descriptor(), F_DUPFD_CLOEXEC, 0);
    // It says what is deleted, so root keeps it.
    if (next < 0 || ::fchown(next, ::geteuid(), gid_t(-1)) != 0 || ::fcntl(next, F_SETFL, O_APPEND) != 0 ||
        !fresh.Commit()) {
        if (next >= 0) {
            ::close(next);
        }
        return;
    }
    ::close(std::exchange(file, next));
    torn = false;
}

bool FileJournal::Stands(const std::string& name) const {
    return standing.contains(absolute(name));
}

std::string FileJournal::TakeError() {
    return std::exchange(error, {});
}

void FileJournal::Close() {
    if (file >= 0) {
        ::close(std::exchange(file, -1));
    }
    standing.clear();
    written = 0;
}

void ClearJournal(const std::string& path, Logs logs) {
    DropNewOf(path);
    const std::optional<Contents> contents = readJournal(path);
    if (!contents) {
        return;
    }
    bool all = true;
    for (const auto& [name, kind] : contents->Standing) {
        all = removeLeft(name, kind, *contents, logs) && all;
        // A log that lacks text goes by another name.
        if (kind == "log") {
            all = removeLeft(name + ".cut", kind, *contents, logs) && all;
        }
    }
    // What could not be removed, as on a drive that is away, is tried again by the next one.
    if (all) {
        ::unlink(path.c_str());
    }
}

}  // namespace files
