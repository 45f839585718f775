// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The text of one document's command line, kept in a file. Each piece of text is with the system when write()
// returns: whoever packs the log, or looks at it after the host has died, finds all that was said. A write
// costs a quarter of a microsecond, so no buffer is worth the text that it would lose.
//
// A file that lacks text is not the log: while the disk takes nothing it stands aside as "<path>.cut", so
// that nobody takes it for the whole.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace drafthost {

/// What a log could never bring to the disk.
struct LogRest {
    std::string path;
    /// So many bytes of the log stand in "<path>.cut", or at the path itself when they could not be moved.
    std::size_t written = 0;
    std::string text;
    /// With what stands in the file this is all that was said.
    bool whole = true;
    /// Why it could not be written.
    std::string cause;
};

class LogFile {
  public:
    LogFile() = default;
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile() { stop(); }

    /// From now on text goes to the file, behind what is there.
    void start(std::string path);
    /// Tries once more to write what is left, which comes back if that fails.
    std::optional<LogRest> stop();
    bool isOn() const { return on_; }
    /// What cannot be written is tried again with the next text.
    void write(std::string_view text);
    /// One line of cause when writing began to fail, empty when there is none; reading it clears it.
    std::string takeError();

  private:
    /// Makes the folder too, which may not have been there for a moment. -1 with errno.
    int open();
    void keep(std::string_view text);
    bool put(std::string_view& text);
    void setAside();
    void putBack();

    bool on_ = false;
    int fd_ = -1;
    std::string path_;
    std::string pending_;
    std::string error_;
    std::string cause_;
    std::size_t written_ = 0;
    bool broken_ = false;
    bool lineOpen_ = false;
    /// It stands under its other name.
    bool aside_ = false;
    /// Text was dropped.
    bool cut_ = false;
    /// Somebody has packed it.
    bool taken_ = false;
};

}  // namespace drafthost
