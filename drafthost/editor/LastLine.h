// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The last line of the command line that holds something: what LASTPROMPT tells.

#include <string>
#include <string_view>

namespace drafthost {

class LastLine {
  public:
    void add(std::string_view text);
    const std::string& text() const { return open_.empty() ? ended_ : open_; }

  private:
    std::string ended_;
    std::string open_;
};

}  // namespace drafthost
