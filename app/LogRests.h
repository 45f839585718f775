// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a host could not write of its logs. It hands the text over when it is done with a log, and the front
// writes it: at once, or else when the host is gone. A log that lacks text stands as "<name>.cut", so that
// whoever packs it knows, also when this process does not live to the end.
#include <cstddef>
#include <string>
#include <vector>

struct LogRest {
    std::string Path;
    /// So many bytes of the log stand in the file.
    std::size_t Written = 0;
    std::string Text;
    /// With this the log is all that was said.
    bool Whole = true;
    /// Why the host could not write it.
    std::string Cause;
};

class LogRests {
  public:
    /// Only logs that lie in this folder are written.
    explicit LogRests(std::string folder) : folder(std::move(folder)) {}

    void Take(LogRest rest);
    /// Tries what is left. False with one line while a log is not whole.
    bool Write(std::string* error);

  private:
    std::string folder;
    std::vector<LogRest> kept;
    std::size_t size = 0;
    /// One line of what is lost for good; empty when nothing is.
    std::string loss;
};
