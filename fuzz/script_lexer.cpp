// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a script that an editor colours: each byte gets one style, and wherever at a line's start the
// colouring begins it comes to the same.
#include "script/ScriptLexer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

constexpr ScriptStyle None{99};

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

std::vector<ScriptStyle> lex(std::string_view text, std::size_t start, std::size_t end, ScriptStyle before) {
    std::vector<ScriptStyle> styles(end - start, None);
    LexScript(text, start, end, before, styles);
    require(std::find(styles.begin(), styles.end(), None) == styles.end());
    return styles;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::vector<ScriptStyle> whole = lex(text, 0, size, ScriptStyle::Default);
    std::vector<ScriptStyle> pieces;
    std::size_t start = 0;
    for (std::size_t at = 0; at < size; ++at) {
        if (!EndsLine(text, at) && at + 1 != size) {
            continue;
        }
        const ScriptStyle before = start == 0 ? ScriptStyle::Default : whole[start - 1];
        const std::vector<ScriptStyle> line = lex(text, start, at + 1, before);
        pieces.insert(pieces.end(), line.begin(), line.end());
        start = at + 1;
    }
    require(pieces == whole);
    return 0;
}
