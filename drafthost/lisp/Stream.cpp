#include "drafthost/lisp/Stream.h"

#include <sys/stat.h>

#include "drafthost/lisp/Utf8.h"

namespace drafthost::lisp {

std::optional<std::string> readWholeFile(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode)) {
        return std::nullopt;
    }
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return std::nullopt;
    }
    std::string bytes;
    char buffer[65536];
    while (const std::size_t n = std::fread(buffer, 1, sizeof buffer, file)) {
        bytes.append(buffer, n);
    }
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    return failed ? std::nullopt : std::optional(std::move(bytes));
}

std::optional<Value> Stream::open(const std::string& path, char mode) {
    auto stream = std::make_unique<Stream>();
    stream->path = path;
    if (mode == 'r') {
        auto bytes = readWholeFile(path);
        if (!bytes) {
            return std::nullopt;
        }
        stream->text = decodeFile(std::move(*bytes));
    } else {
        stream->file = std::fopen(path.c_str(), mode == 'a' ? "ab" : "wb");
        if (stream->file == nullptr) {
            return std::nullopt;
        }
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
