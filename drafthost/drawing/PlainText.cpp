// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/PlainText.h"

#include <algorithm>

namespace drafthost {

std::vector<std::string> plainLines(std::string_view coded) {
    std::vector<std::string> lines(1);
    for (std::size_t i = 0; i < coded.size(); ++i) {
        const char c = coded[i];
        if (c == '{' || c == '}') {
            continue;
        }
        if (c != '\\' || i + 1 >= coded.size()) {
            lines.back() += c;
            continue;
        }
        const char code = coded[++i];
        switch (code) {
            case 'P':
            case 'N':
                lines.emplace_back();
                break;
            case '~':
                lines.back() += ' ';
                break;
            case '\\':
            case '{':
            case '}':
                lines.back() += code;
                break;
            case 'L':
            case 'l':
            case 'O':
            case 'o':
            case 'K':
            case 'k':
                break;
            case 'U':
            case 'M':
                // A character by its number stays as it is.
                lines.back().append({'\\', code});
                break;
            default: {
                // A code with a value up to the semicolon; of a fraction the value is what is read.
                const std::size_t end = std::min(coded.find(';', i), coded.size());
                if (code == 'S') {
                    std::string fraction(coded.substr(i + 1, end - i - 1));
                    std::replace(fraction.begin(), fraction.end(), '#', '/');
                    std::replace(fraction.begin(), fraction.end(), '^', ' ');
                    lines.back() += fraction;
                }
                i = end;
                break;
            }
        }
    }
    return lines;
}

}  // namespace drafthost
