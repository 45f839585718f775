#pragma once
// The text of one document's command line, kept in a file. A batch turns this on and off for each of
// thousands of drawings, so the file is only opened with the first text and written in one piece when
// enough has come together, when it is asked for, or when the log ends.

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
    void stop();
    bool isOn() const { return on_; }
    void write(std::string_view text);
    /// Brings everything to the file. False when it cannot be written (told once by error()).
    bool flush();
    /// One line of cause of the first failure, empty when there is none; reading it clears it.
    std::string takeError();

  private:
    bool on_ = false;
    int fd_ = -1;
    std::string path_;
    std::string pending_;
    std::string error_;
    bool broken_ = false;
    bool lineOpen_ = false;
};

}  // namespace drafthost
