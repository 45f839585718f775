// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/LastLine.h"

namespace drafthost {

void LastLine::add(std::string_view text) {
    // A script may print without end and without a line end.
    constexpr std::size_t Most = 1024;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view piece = text.substr(0, end);
        open_ += piece.substr(0, Most - open_.size());
        if (end == std::string_view::npos) {
            return;
        }
        if (!open_.empty()) {
            ended_.swap(open_);
            open_.clear();
        }
        text.remove_prefix(end + 1);
    }
}

}  // namespace drafthost
