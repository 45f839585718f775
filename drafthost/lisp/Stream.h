#pragma once
// A file that (open) gave. Lines are read with any of the usual line ends and written with "\n"; the
// text is UTF-8 inside, whatever the file says at its start.

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

/// All bytes of a file; nothing when it is a folder or cannot be read.
std::optional<std::string> readWholeFile(const std::string& path);

struct Stream : Counted {
    /// Mode is "r", "w" or "a". Nothing when the file cannot be opened.
    static std::optional<Value> open(const std::string& path, char mode);

    Stream() : Counted(Type::File) {}
    ~Stream();
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    bool isOpen() const { return opened; }
    bool canRead() const { return opened && file == nullptr; }
    bool canWrite() const { return opened && file != nullptr; }
    /// False when not all of the buffered text reached the disk.
    bool close();

    std::optional<std::string> readLine();
    std::optional<char32_t> readCharacter();
    bool write(std::string_view text);

    std::string path;
    bool opened = false;
    std::FILE* file = nullptr;  ///< of a file that is written
    std::string text;           ///< of a file that is read: all of it
    std::size_t pos = 0;
};

}  // namespace drafthost::lisp
