// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A file that (open) gave. Lines are read with any of the usual line ends and written with "\n"; the
// text is UTF-8 inside, whatever the file says at its start.

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

/// All bytes of a file; nothing when it is a folder or cannot be read. While a pipe has nothing to give, and
/// between pieces of what has no size, the function is called, which may throw to end the wait. Throws
/// std::bad_alloc for a file that does not fit into the host's memory, and a failure for a device that has no
/// end.
std::optional<std::string> readWholeFile(const std::string& path, const std::function<void()>& turn);

struct Stream : Counted {
    /// Mode is "r", "w" or "a". Nothing when the file cannot be opened. The function is called as by
    /// readWholeFile.
    static std::optional<Value> open(const std::string& path, char mode, const std::function<void()>& turn);

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
