// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The text of one document's command line, kept in a file. Each piece of text is with the system when write()
// returns: whoever packs the log, or looks at it after the host has died, finds all that was said. A write
// costs a quarter of a microsecond, so no buffer is worth the text that it would lose.

#include <string>
#include <string_view>

namespace drafthost {

class LogFile {
  public:
    LogFile() = default;
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile() { stop(); }

    /// From now on text goes to the file, behind what is there.
    void start(std::string path);
    /// False, with a line of cause, when text is lost since it could never be written.
    bool stop();
    bool isOn() const { return on_; }
    /// What cannot be written is tried again with the next text.
    void write(std::string_view text);
    /// One line of cause when writing began to fail, empty when there is none; reading it clears it.
    std::string takeError();

  private:
    /// Makes the folder too, which may not have been there for a moment. -1 with errno.
    int open() const;

    bool on_ = false;
    int fd_ = -1;
    std::string path_;
    std::string pending_;
    std::string error_;
    std::string cause_;
    bool broken_ = false;
    bool lineOpen_ = false;
};

}  // namespace drafthost
