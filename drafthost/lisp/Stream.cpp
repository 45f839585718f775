// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Stream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <utility>

#include "drafthost/lisp/Failure.h"
#include "drafthost/lisp/FileText.h"
#include "drafthost/lisp/Utf8.h"
#include "system/Descriptor.h"
#include "system/OwnFile.h"

namespace drafthost::lisp {

namespace {

constexpr std::size_t Piece = std::size_t{1} << 20;
/// What has no size of its own, pipes and devices, is read so far and no further.
constexpr std::size_t MostOfDevice = std::size_t{64} << 20;

/// Waits a moment for a pipe.
void await(int fd) {
    constexpr int Milliseconds = 20;
    pollfd wanted{fd, POLLIN, 0};
    ::poll(&wanted, 1, Milliseconds);
}

}  // namespace

std::optional<std::string> readWholeFile(const std::string& path, const std::function<void()>& turn) {
    // Without waiting: a pipe that nobody writes to would hold the host for good.
    const files::Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!fd.IsOpen() || ::fstat(fd.Get(), &info) != 0 || S_ISDIR(info.st_mode)) {
        return std::nullopt;
    }
    std::string bytes;
    if (S_ISREG(info.st_mode)) {
        // Twice, for the text that is made of the bytes.
        Memory::require(2 * static_cast<std::size_t>(info.st_size));
        bytes.reserve(static_cast<std::size_t>(info.st_size));
    }
    std::string piece(Piece, '\0');
    for (;;) {
        const ssize_t count = ::read(fd.Get(), piece.data(), piece.size());
        if (count == 0) {
            return bytes;
        }
        if (count > 0) {
            bytes.append(piece, 0, static_cast<std::size_t>(count));
            if (!S_ISREG(info.st_mode) && bytes.size() > MostOfDevice) {
                fail("no end of the file within " + std::to_string(MostOfDevice >> 20) + " MB: \"" + path +
                     "\"");
            }
            Memory::require(bytes.size());
        } else if (errno == EAGAIN) {
            await(fd.Get());
        } else if (errno != EINTR) {
            return std::nullopt;
        }
        if (!S_ISREG(info.st_mode)) {
            turn();
        }
    }
}

std::optional<Value> Stream::open(const std::string& path, char mode, const std::function<void()>& turn) {
    auto stream = std::make_unique<Stream>();
    stream->path = path;
    if (mode == 'r') {
        auto bytes = readWholeFile(path, turn);
        if (!bytes) {
            return std::nullopt;
        }
        stream->text = decodeFile(std::move(*bytes));
    } else {
        // A pipe without a reader is refused instead of waited for.
        const int how = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
        std::string target;
        if (files::Follow(path, files::Trust::FolderOwner, &target) != 0) {
            return std::nullopt;
        }
        files::Descriptor fd(::open(target.c_str(), how | (mode == 'a' ? O_APPEND : O_TRUNC), 0666));
        if (!fd.IsOpen() || ::fcntl(fd.Get(), F_SETFL, mode == 'a' ? O_APPEND : 0) != 0) {
            return std::nullopt;
        }
        stream->file = ::fdopen(fd.Get(), mode == 'a' ? "ab" : "wb");
        if (stream->file == nullptr) {
            return std::nullopt;
        }
        fd.Release();
    }
    stream->opened = true;
    return Value::adopt(stream.release());
}

Stream::~Stream() {
    close();
}

bool Stream::close() {
    bool done = true;
    if (file != nullptr) {
        done = std::fclose(file) == 0;
        file = nullptr;
    }
    text.clear();
    opened = false;
    return done;
}

std::optional<std::string> Stream::readLine() {
    if (pos >= text.size()) {
        return std::nullopt;
    }
    const std::size_t end = text.find_first_of("\r\n", pos);
    if (end == std::string::npos) {
        std::string line = text.substr(pos);
        pos = text.size();
        return line;
    }
    std::string line = text.substr(pos, end - pos);
    pos = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
    return line;
}

std::optional<char32_t> Stream::readCharacter() {
    if (pos >= text.size()) {
        return std::nullopt;
    }
    // A line end is one character, whichever way the file writes it.
    if (text.compare(pos, 2, "\r\n") == 0) {
        ++pos;
    }
    return nextCharacter(text, pos);
}

bool Stream::write(std::string_view piece) {
    return std::fwrite(piece.data(), 1, piece.size(), file) == piece.size();
}

}  // namespace drafthost::lisp
